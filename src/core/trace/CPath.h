#pragma once

#include <string>

// A drive and a directory, kept in one normal form so that paths can be joined
// without double separators. This platform has no drives: the drive is always empty.
//
// Normal form of the directory: a leading "/" unless it starts with "/" or ".",
// no trailing "/". An empty directory stands for the current working directory.
// The file system root therefore reads as the empty directory "" once normalised.
class CPath {
public:
    CPath();
    CPath(const std::string& drive, const std::string& directory);
    virtual ~CPath() = default;

    void Set(const std::string& drive, const std::string& directory);

    const std::string& Drive() const { return m_drive; }
    const std::string& Directory() const { return m_directory; }
    // Drive followed by directory, with no trailing "/".
    std::string Text() const { return m_drive + m_directory; }

    // The normal form above, for one directory string.
    static std::string NormaliseDirectory(const std::string& directory);

private:
    std::string m_drive;
    std::string m_directory;
};

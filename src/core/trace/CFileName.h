#pragma once

#include "trace/CPath.h"

#include <string>

// A full file name split into directory, base name and extension, and rebuilt from them.
// The extension is the text from the last "." of the file name on, "." included, so
// ".hidden" has an empty base name. A name without a directory lies in the current
// working directory; a relative directory is anchored at the root (see CPath).
class CFileName : public CPath {
public:
    CFileName() = default;
    explicit CFileName(const std::string& fullPath);

    void Set(const std::string& fullPath);

    const std::string& BaseName() const { return m_baseName; }
    const std::string& Extension() const { return m_extension; }
    // Directory, a "/" when there is a base name, base name and extension.
    std::string FullPath() const;

private:
    std::string m_baseName;
    std::string m_extension;
};

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ZDTAnalyzer::Filter {

// True when every byte of `path` is a letter, a digit or one of "/._-+": such a path
// reaches the engine's doc() and command line unchanged, since nothing in it reads as
// URI syntax or needs a locale.
bool isPlainPath(std::string_view path);

// A private directory for one engine run, made with a plain path and removed with all it
// holds when the object goes.
class ScratchDirectory {
public:
    // Made below `preferredParent` when that is a plain existing directory, else below the
    // system's temporary directory. Empty when no directory could be made.
    static std::optional<ScratchDirectory> create(const std::string& preferredParent = {});

    ScratchDirectory(ScratchDirectory&& other) noexcept;
    ScratchDirectory& operator=(ScratchDirectory&&) = delete;
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory();

    // With a trailing "/".
    const std::string& path() const { return m_path; }

    // A plain name that stands for `documentPath`: a link inside this directory, so that
    // blanks, "#", "%" and non-ASCII letters in the real path never reach the engine.
    // `documentPath` itself when it is plain already or no link can be made.
    std::string plainDocumentPath(const std::string& documentPath, const std::string& linkName = "document.xml") const;

private:
    explicit ScratchDirectory(std::string path) : m_path(std::move(path)) {}
    std::string m_path;
};

} // namespace ZDTAnalyzer::Filter

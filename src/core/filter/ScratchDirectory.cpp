#include "filter/ScratchDirectory.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

namespace ZDTAnalyzer::Filter {

namespace fs = std::filesystem;

namespace {

std::optional<std::string> makeDirectoryIn(const std::string& parent) {
    if (parent.empty() || !isPlainPath(parent))
        return std::nullopt;
    std::error_code error;
    if (!fs::is_directory(parent, error))
        return std::nullopt;
    std::string pattern = parent;
    if (pattern.back() != '/')
        pattern += '/';
    pattern += "zdtfilterXXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (::mkdtemp(buffer.data()) == nullptr)
        return std::nullopt;
    return std::string(buffer.data()) + "/";
}

std::string systemTempDirectory() {
    std::error_code error;
    const fs::path path = fs::temp_directory_path(error);
    return error ? std::string("/tmp") : path.string();
}

} // namespace

bool isPlainPath(std::string_view path) {
    for (const char c : path) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
                           c == '.' || c == '_' || c == '-' || c == '+';
        if (!plain)
            return false;
    }
    return true;
}

std::optional<ScratchDirectory> ScratchDirectory::create(const std::string& preferredParent) {
    for (const std::string& parent : {preferredParent, systemTempDirectory(), std::string("/tmp")}) {
        if (auto made = makeDirectoryIn(parent))
            return ScratchDirectory(std::move(*made));
    }
    return std::nullopt;
}

ScratchDirectory::ScratchDirectory(ScratchDirectory&& other) noexcept : m_path(std::move(other.m_path)) {
    other.m_path.clear();
}

ScratchDirectory::~ScratchDirectory() {
    if (m_path.empty())
        return;
    std::error_code error;
    fs::remove_all(m_path, error);
}

std::string ScratchDirectory::plainDocumentPath(const std::string& documentPath, const std::string& linkName) const {
    std::error_code error;
    const fs::path absolute = fs::absolute(documentPath, error);
    if (error)
        return documentPath;
    if (isPlainPath(absolute.string()))
        return absolute.string();
    const std::string link = m_path + linkName;
    fs::create_symlink(absolute, link, error);
    return error ? documentPath : link;
}

} // namespace ZDTAnalyzer::Filter

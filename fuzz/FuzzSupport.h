#pragma once

// What the document fuzz targets share: scratch directories, the input file and the checks
// every search must pass.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <unistd.h>

namespace fuzzsupport {

// A fresh directory under /tmp for the whole run; without one nothing can be tested.
inline std::string MakeDirectory(const char* name) {
    std::string pattern = std::string("/tmp/") + name + "_XXXXXX";
    const char* made = ::mkdtemp(pattern.data());
    if (made == nullptr)
        std::abort();
    return made;
}

// Writes `prefix` and then the fuzzer's bytes; false when the file cannot be written.
inline bool WriteInput(const std::string& path, std::string_view prefix, const std::uint8_t* data, std::size_t size) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return false;
    std::fwrite(prefix.data(), 1, prefix.size(), file);
    std::fwrite(data, 1, size, file);
    std::fclose(file);
    return true;
}

// The same file that opened must be searchable, and every mark must name a row of the list.
template <typename Document> void RequireMarksInsideList(const Document& doc, bool searched) {
    if (!searched)
        std::abort();
    for (const int row : doc.findResults())
        if (row < 0 || row >= doc.container().rowCount())
            std::abort();
}

// A swap file must not outlive its document.
inline void RequireEmpty(const std::string& swapDirectory) {
    if (!std::filesystem::is_empty(swapDirectory))
        std::abort();
}

} // namespace fuzzsupport

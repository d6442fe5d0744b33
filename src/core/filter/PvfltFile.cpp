#include "filter/PvfltFile.h"
#include "common/OwnedFile.h"

#include <cstdio>
#include <memory>

namespace ZDTAnalyzer::Filter::XPVT_7_01 {

namespace {

using FilePtr = zdt::OwnedFile;

FilePtr openFile(const std::string& path, const char* mode) {
    return FilePtr(std::fopen(path.c_str(), mode));
}

// Reads up to a line feed (not kept) or the end of the file, which is kept as the byte
// 0xFF. Returns true when the end of the file stopped it.
bool readEditLine(std::FILE* file, std::string& text) {
    text.clear();
    for (;;) {
        const int c = std::fgetc(file);
        if (c == '\n')
            return false;
        if (c == EOF) {
            text += '\xFF';
            return true;
        }
        text += static_cast<char>(c);
    }
}

} // namespace

bool writeFilterFile(const std::string& path, const FilterConditionMap& conditions) {
    FilePtr file = openFile(path, "w");
    if (!file)
        return false;
    for (const auto& [key, value] : conditions) {
        if (std::fwrite(key.data(), 1, key.size(), file.get()) != key.size() || std::fputc('\n', file.get()) == EOF ||
            std::fwrite(value.data(), 1, value.size(), file.get()) != value.size() ||
            std::fputc('\n', file.get()) == EOF)
            return false;
    }
    // A full disk often shows only when the buffer goes out.
    return std::fclose(file.release()) == 0;
}

bool readFilterFileForRun(const std::string& path, FilterConditionMap& conditions) {
    FilePtr file = openFile(path, "r");
    if (!file)
        return false;
    std::string key;
    std::string value;
    bool inValue = false;
    for (int c; (c = std::fgetc(file.get())) != EOF;) {
        if (c != '\n') {
            (inValue ? value : key) += static_cast<char>(c);
            continue;
        }
        if (inValue) {
            conditions[key] = value;
            key.clear();
            value.clear();
        }
        inValue = !inValue;
    }
    return true;
}

bool readFilterFileForEdit(const std::string& path, FilterConditionMap& conditions, std::string& errorText) {
    conditions.clear();
    FilePtr file = openFile(path, "r");
    if (!file) {
        errorText = CouldNotOpenInputFileText;
        return false;
    }
    std::string key;
    std::string value;
    for (;;) {
        readEditLine(file.get(), key);
        const bool atEnd = readEditLine(file.get(), value);
        conditions[key] = value;
        if (atEnd)
            return true;
    }
}

} // namespace ZDTAnalyzer::Filter::XPVT_7_01

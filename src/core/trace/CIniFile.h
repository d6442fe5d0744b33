#pragma once

#include "trace/CFileName.h"

#include <string>
#include <vector>

// Reads profile-style files: "[Section]" lines followed by "key=value" lines.
// Sections and keys compare without regard to case; keys and values lose their
// surrounding blanks, and a value wrapped in matching double or single quotes loses
// them. Lines starting with ";" are comments. A missing file, section or key gives
// the default. The file is read once, on the first look-up.
class CIniFile {
public:
    // Values this long or longer are refused: the reader's largest buffer holds 30,000
    // bytes, and a value that fills it may have been cut.
    static constexpr std::size_t MaxValueLength = 29998;

    explicit CIniFile(const std::string& fileName, const std::string& section = {});

    void SetSection(const std::string& section) { m_section = section; }
    const std::string& Section() const { return m_section; }
    const CFileName& FileName() const { return m_fileName; }

    // The value of `key` in `section`, or `defaultValue` (less its trailing blanks)
    // when there is none. An over-long result gives "" and sets the error flag.
    const std::string& GetString(const std::string& key, const std::string& defaultValue, const std::string& section);
    // The same in the current section.
    const std::string& GetString(const std::string& key, const std::string& defaultValue);

    bool HasError() const { return m_error; }

private:
    struct Entry {
        std::string section;
        std::string key;
        std::string value;
    };

    void Load();
    const std::string* Find(const std::string& key, const std::string& section) const;
    void Error();

    CFileName m_fileName;
    std::string m_section;
    std::vector<Entry> m_entries;
    bool m_loaded = false;
    bool m_error = false;
    std::string m_result;
};

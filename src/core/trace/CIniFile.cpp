#include "trace/CIniFile.h"

#include <fstream>
#include <iterator>

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

std::string Trim(const std::string& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsBlank(text[begin]))
        ++begin;
    while (end > begin && IsBlank(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

std::string TrimRight(const std::string& text) {
    std::size_t end = text.size();
    while (end > 0 && IsBlank(text[end - 1]))
        --end;
    return text.substr(0, end);
}

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool EqualNoCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (Lower(a[i]) != Lower(b[i]))
            return false;
    }
    return true;
}

// Quotes around a value are how ini files keep leading or trailing blanks; they are not data.
std::string Unquote(const std::string& value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return {};
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

CIniFile::CIniFile(const std::string& fileName, const std::string& section)
    : m_fileName(fileName), m_section(section) {}

const std::string& CIniFile::GetString(const std::string& key, const std::string& defaultValue) {
    return GetString(key, defaultValue, m_section);
}

const std::string& CIniFile::GetString(const std::string& key, const std::string& defaultValue,
                                       const std::string& section) {
    if (!m_loaded)
        Load();
    const std::string* value = Find(key, section);
    m_result = value != nullptr ? *value : TrimRight(defaultValue);
    if (m_result.size() >= MaxValueLength) {
        m_result.clear();
        Error();
    }
    return m_result;
}

void CIniFile::Load() {
    m_loaded = true;
    std::string text = ReadWholeFile(m_fileName.FullPath());
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0)
        text.erase(0, 3);

    std::string section;
    std::size_t lineStart = 0;
    while (lineStart < text.size()) {
        std::size_t lineEnd = text.find('\n', lineStart);
        if (lineEnd == std::string::npos)
            lineEnd = text.size();
        std::string line = text.substr(lineStart, lineEnd - lineStart);
        lineStart = lineEnd + 1;
        if (!line.empty() && line.back() == '\r')
            line.pop_back();

        line = Trim(line);
        if (line.empty() || line.front() == ';')
            continue;
        if (line.front() == '[') {
            const std::size_t close = line.find(']');
            section = Trim(line.substr(1, close == std::string::npos ? std::string::npos : close - 1));
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        m_entries.push_back({section, Trim(line.substr(0, equals)), Unquote(Trim(line.substr(equals + 1)))});
    }
}

const std::string* CIniFile::Find(const std::string& key, const std::string& section) const {
    // The first definition wins, as with the platform's profile reader.
    for (const Entry& entry : m_entries) {
        if (EqualNoCase(entry.section, section) && EqualNoCase(entry.key, key))
            return &entry.value;
    }
    return nullptr;
}

void CIniFile::Error() {
    m_error = true;
}

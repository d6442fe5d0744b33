#include "classic/FltFile.h"

#include "trace/CIniFile.h"

#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace {

constexpr const char* kSection = "CAN";
constexpr std::uint32_t kFreeSlot = 0xFFFFFFFFu;

// The same reading as the document's: sscanf "%x", 0 when the text is no number.
std::uint32_t ReadHex(const std::string& text) {
    unsigned value = 0;
    std::sscanf(text.c_str(), "%x", &value);
    return value;
}

std::string Hex(std::uint32_t value) {
    char text[16];
    std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(value));
    return text;
}

std::string Trim(const std::string& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && (text[begin] == ' ' || text[begin] == '\t'))
        ++begin;
    while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t'))
        --end;
    return text.substr(begin, end - begin);
}

bool EqualNoCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

bool IsHexDigits(const std::string& text) {
    if (text.empty())
        return false;
    for (char c : text) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
    }
    return true;
}

// Keys the reader takes for entries: a hex number as "%X" writes it, in any case.
bool IsEntryKey(const std::string& key) {
    return IsHexDigits(key) && key.front() != '0';
}

bool IsFilterKey(const std::string& key) {
    return EqualNoCase(key, "Type") || EqualNoCase(key, "NoOfEntries") || IsEntryKey(key);
}

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string::npos)
            end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

std::vector<std::string> FilterLines(const FltFilter& filter) {
    std::vector<std::string> lines;
    lines.push_back(std::string("Type=") + (filter.stopFilter ? "StopFilter" : "PassFilter"));
    lines.push_back("NoOfEntries=" + Hex(static_cast<std::uint32_t>(filter.identifiers.size())));
    for (std::size_t i = 0; i < filter.identifiers.size(); ++i)
        lines.push_back(Hex(static_cast<std::uint32_t>(i + 1)) + "=0x" + Hex(filter.identifiers[i]));
    return lines;
}

} // namespace

FltFilter ReadFltFile(const std::string& path) {
    CIniFile ini(path);
    FltFilter filter;
    filter.stopFilter = ini.GetString("Type", "Unknown", kSection) == "StopFilter";
    const std::uint32_t count = ReadHex(ini.GetString("NoOfEntries", "Unknown", kSection));
    for (std::uint32_t number = 1; number <= count && number <= FltMaxEntries; ++number) {
        const std::uint32_t identifier = ReadHex(ini.GetString(Hex(number), "0xFFFFFFFF", kSection));
        if (identifier != kFreeSlot)
            filter.identifiers.push_back(identifier);
    }
    return filter;
}

std::string FormatFlt(const FltFilter& filter, const std::string& existingText) {
    const bool crLf = existingText.empty() || existingText.find("\r\n") != std::string::npos;
    const std::string eol = crLf ? "\r\n" : "\n";
    const std::vector<std::string> filterLines = FilterLines(filter);

    std::string text;
    bool inFilterSection = false;
    bool written = false;
    for (const std::string& line : SplitLines(existingText)) {
        const std::string trimmed = Trim(line);
        if (!trimmed.empty() && trimmed.front() == '[') {
            const std::size_t close = trimmed.find(']');
            const std::string name =
                Trim(trimmed.substr(1, close == std::string::npos ? std::string::npos : close - 1));
            inFilterSection = EqualNoCase(name, kSection);
            text += line + eol;
            if (inFilterSection && !written) {
                for (const std::string& filterLine : filterLines)
                    text += filterLine + eol;
                written = true;
            }
            continue;
        }
        const std::size_t equals = trimmed.find('=');
        if (inFilterSection && equals != std::string::npos && IsFilterKey(Trim(trimmed.substr(0, equals))))
            continue;
        text += line + eol;
    }
    if (!written) {
        // A blank line sets the new section apart from what went before.
        if (!text.empty() && !EndsWith(text, eol + eol))
            text += eol;
        text += std::string("[") + kSection + "]" + eol;
        for (const std::string& filterLine : filterLines)
            text += filterLine + eol;
    }
    return text;
}

bool WriteFltFile(const std::string& path, const FltFilter& filter) {
    std::string existing;
    {
        std::ifstream in(path, std::ios::binary);
        if (in)
            existing.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out)
        return false;
    out << FormatFlt(filter, existing);
    out.flush();
    return static_cast<bool>(out);
}

std::optional<std::uint32_t> ParseIdentifierText(const std::string& text, bool extended) {
    std::string digits = Trim(text);
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X'))
        digits.erase(0, 2);
    if (!IsHexDigits(digits))
        return std::nullopt;
    std::size_t first = digits.find_first_not_of('0');
    if (first != std::string::npos && digits.size() - first > 8)
        return std::nullopt;
    const std::uint32_t value = static_cast<std::uint32_t>(std::stoul(digits, nullptr, 16));
    if (value > (extended ? FltExtendedMax : FltStandardMax))
        return std::nullopt;
    return extended ? value | FltExtendedFlag : value;
}

std::string FormatIdentifierText(std::uint32_t identifier) {
    if (identifier & FltExtendedFlag)
        return "0x" + Hex(identifier & ~FltExtendedFlag) + " (extended)";
    return "0x" + Hex(identifier);
}

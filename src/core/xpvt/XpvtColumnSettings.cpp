#include "xpvt/XpvtColumnSettings.h"

#include <climits>

namespace ZDTAnalyzer {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

// The leading digits at `pos` as a number; a value past the range of int stays at its
// largest rather than wrapping.
int LeadingNumber(std::string_view text, std::size_t pos) {
    long long value = 0;
    for (; pos < text.size() && IsDigit(text[pos]); ++pos) {
        value = value * 10 + (text[pos] - '0');
        if (value > INT_MAX)
            return INT_MAX;
    }
    return static_cast<int>(value);
}

} // namespace

std::vector<int> XpvtColumnSettings::parse(std::string_view text) {
    std::vector<int> widths;
    std::size_t pos = 0;
    while (pos < text.size()) {
        if (IsDigit(text[pos]))
            widths.push_back(LeadingNumber(text, pos));
        const std::size_t slash = text.find('/', pos);
        if (slash == std::string_view::npos)
            break;
        pos = slash + 1;
    }
    return widths;
}

std::vector<int> XpvtColumnSettings::widths(std::string_view text) {
    std::vector<int> parsed = parse(text);
    if (static_cast<int>(parsed.size()) != ExpectedCount)
        parsed = parse(DefaultText);
    return parsed;
}

} // namespace ZDTAnalyzer

#pragma once

#include <cstdint>
#include <string>

// Small number formatters for the row texts: rows are formatted by the million, and
// the C library's printf costs more than the rest of a row together.
namespace textformat {

// "%u"
inline void AppendUnsigned(std::string& out, std::uint32_t value) {
    char digits[10];
    int count = 0;
    do {
        digits[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    while (count > 0)
        out += digits[--count];
}

// "%*X" / "%0*X": upper-case hex padded on the left to `width` with `pad`.
inline void AppendHex(std::string& out, std::uint32_t value, int width, char pad) {
    static const char kDigits[] = "0123456789ABCDEF";
    char digits[8];
    int count = 0;
    do {
        digits[count++] = kDigits[value & 0xF];
        value >>= 4;
    } while (value != 0);
    for (int i = count; i < width; ++i)
        out += pad;
    while (count > 0)
        out += digits[--count];
}

} // namespace textformat

#pragma once

#include <string>
#include <string_view>

namespace ZDTAnalyzer {

// Removes, in place, the bytes that may not enter a row: 0x00 to 0x1F and 0x7F. That
// keeps column separators (0x01), line feeds and tabs out of the swap file. Every byte
// from 0x80 up stays, so UTF-8 text survives whole.
void PrintableOnly(std::string& text);

// The same filter on a copy.
std::string printableOnlyCopy(std::string_view text);

// Whether a single byte passes the filter.
constexpr bool isPrintableByte(unsigned char byte) {
    return byte >= 0x20 && byte != 0x7F;
}

} // namespace ZDTAnalyzer

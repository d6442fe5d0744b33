#pragma once

#include <array>
#include <cstdint>

// Hexadecimal digit decoding of the fixed-column readers and the index pass:
// a hex digit of either case gives its value, a blank 0, anything else 0xFF.
// Tables rather than branches: every data byte of every row shown passes here.
namespace nibble {
namespace detail {

constexpr std::uint8_t Invalid = 0xFF;

constexpr std::uint8_t DigitValue(unsigned c) {
    if (c >= '0' && c <= '9')
        return static_cast<std::uint8_t>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<std::uint8_t>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<std::uint8_t>(c - 'A' + 10);
    // A blank stands for a leading zero in the fixed columns.
    if (c == ' ')
        return 0;
    return Invalid;
}

constexpr std::array<std::uint8_t, 256> MakeTable(bool high) {
    std::array<std::uint8_t, 256> table{};
    for (unsigned c = 0; c < 256; ++c) {
        const std::uint8_t v = DigitValue(c);
        table[c] = (high && v != Invalid) ? static_cast<std::uint8_t>(v << 4) : v;
    }
    return table;
}

inline constexpr std::array<std::uint8_t, 256> ValueTable = MakeTable(false);
inline constexpr std::array<std::uint8_t, 256> HighTable = MakeTable(true);

} // namespace detail

// Value of one character as a nibble (0..15), 0 for a blank, 0xFF otherwise.
inline std::uint8_t Value(unsigned char c) {
    return detail::ValueTable[c];
}
// The high-nibble table: the value shifted up, 0 for a blank, 0xFF otherwise.
inline std::uint8_t High(unsigned char c) {
    return detail::HighTable[c];
}
// The low-nibble table: the value, 0 for a blank, 0xFF otherwise.
inline std::uint8_t Low(unsigned char c) {
    return detail::ValueTable[c];
}
// One byte from two characters: High + Low, truncated to a byte.
inline std::uint8_t Byte(unsigned char hi, unsigned char lo) {
    return static_cast<std::uint8_t>(High(hi) + Low(lo));
}

} // namespace nibble

#pragma once

#include <cstdint>

// Hexadecimal digit decoding of the fixed-column readers and the index pass:
// a hex digit of either case gives its value, a blank 0, anything else 0xFF.
namespace nibble {

// Value of one character as a nibble (0..15), 0 for a blank, 0xFF otherwise.
std::uint8_t Value(unsigned char c);
// The high-nibble table: the value shifted up, 0 for a blank, 0xFF otherwise.
std::uint8_t High(unsigned char c);
// The low-nibble table: the value, 0 for a blank, 0xFF otherwise.
std::uint8_t Low(unsigned char c);
// One byte from two characters: High + Low, truncated to a byte.
inline std::uint8_t Byte(unsigned char hi, unsigned char lo) {
    return static_cast<std::uint8_t>(High(hi) + Low(lo));
}

} // namespace nibble

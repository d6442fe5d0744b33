#include "trace/NibbleTables.h"

#include <array>

namespace nibble {
namespace {

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

// Tables rather than branches: the readers decode every data byte of every row shown.
constexpr std::array<std::uint8_t, 256> MakeTable(bool high) {
    std::array<std::uint8_t, 256> table{};
    for (unsigned c = 0; c < 256; ++c) {
        const std::uint8_t v = DigitValue(c);
        table[c] = (high && v != Invalid) ? static_cast<std::uint8_t>(v << 4) : v;
    }
    return table;
}

constexpr std::array<std::uint8_t, 256> ValueTable = MakeTable(false);
constexpr std::array<std::uint8_t, 256> HighTable = MakeTable(true);

} // namespace

std::uint8_t Value(unsigned char c) {
    return ValueTable[c];
}

std::uint8_t High(unsigned char c) {
    return HighTable[c];
}

std::uint8_t Low(unsigned char c) {
    return ValueTable[c];
}

} // namespace nibble

#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

// A fast replacement for sscanf that gives the same results for the conversions the
// classic readers use: %d %u %x %X (with l and widths), %s with or without a width, literal
// characters and white space. It returns what sscanf returns. The readers call it
// on every row shown, so it must not cost what the C library's scanner costs.
// Arguments are pointers as for sscanf: int*, unsigned*, long*, unsigned long*, char*.
// %n (int*) and %% are understood as well; any other conversion stops the scan as a
// matching failure would.
int ScanFormat(const char* input, const char* format, ...);

// ScanFormat(input, "%<width>X", &value) == 1 without the walk over a format: the type
// code of every record is read this way. A width of 0 means no limit.
bool ScanHexValue(const char* input, int width, unsigned& value);

// What atol gives in the C locale (leading white space, a sign, decimal digits,
// saturating at the limits of long), without the locale lookups of the library call.
inline long ScanDecimalLong(const char* text) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    while (*p == ' ' || (*p >= '\t' && *p <= '\r'))
        ++p;
    bool negative = false;
    if (*p == '-' || *p == '+')
        negative = *p++ == '-';
    unsigned long magnitude = 0;
    bool overflow = false;
    for (unsigned digit = *p - '0'; digit < 10; digit = *++p - '0')
        if (__builtin_mul_overflow(magnitude, 10UL, &magnitude) || __builtin_add_overflow(magnitude, digit, &magnitude))
            overflow = true;
    const unsigned long limit = negative ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    if (overflow || magnitude > limit)
        return negative ? LONG_MIN : LONG_MAX;
    return negative ? static_cast<long>(0UL - magnitude) : static_cast<long>(magnitude);
}

// A record line as the classic readers scan it: cut at MaxLength characters, so that no %s
// target can overflow, and read as empty beyond its end, so that no field is ever taken
// from the bytes that follow the terminator. A line within the limit is used in place.
struct ScanLine {
    static constexpr unsigned long MaxLength = 256;

    const char* text;
    unsigned long length;

    explicit ScanLine(const char* line);
    ScanLine(const ScanLine&) = delete;
    ScanLine& operator=(const ScanLine&) = delete;

    // The text from `column` on; an empty string when the column lies beyond the end.
    const char* At(unsigned long column) const { return column < length ? text + column : text + length; }
    // The character at `column`, or NUL beyond the end.
    unsigned char CharAt(unsigned long column) const {
        return column < length ? static_cast<unsigned char>(text[column]) : 0;
    }

private:
    char m_cut[MaxLength + 1];
};

// A declared length narrowed to a byte without wrapping: 0x100 stays large, not 0.
inline std::uint8_t NarrowLength(std::uint32_t length) {
    return static_cast<std::uint8_t>(length < 0xFF ? length : 0xFF);
}

// Bytes scanned with %02x into unsigned ints, stored as the bytes a record keeps.
template <std::size_t N, std::size_t M> void NarrowBytes(const unsigned (&values)[N], std::uint8_t (&bytes)[M]) {
    static_assert(N <= M, "the byte array must hold every scanned value");
    for (std::size_t i = 0; i < N; ++i)
        bytes[i] = static_cast<std::uint8_t>(values[i]);
}

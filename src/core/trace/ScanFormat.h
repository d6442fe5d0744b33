#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

namespace scanformat {

constexpr unsigned char NotDigit = 0xFF;

// Digit values (base 16, either case) and white space as the C locale defines it, which is
// what the library's scanner uses; tables keep the inner loops free of class tests.
struct CharTable {
    unsigned char digit[256];
    bool blank[256];
    constexpr CharTable() : digit(), blank() {
        for (unsigned c = 0; c < 256; ++c) {
            digit[c] = NotDigit;
            blank[c] = c == ' ' || (c >= '\t' && c <= '\r');
        }
        for (unsigned c = '0'; c <= '9'; ++c)
            digit[c] = static_cast<unsigned char>(c - '0');
        for (unsigned c = 'a'; c <= 'f'; ++c)
            digit[c] = digit[c - 'a' + 'A'] = static_cast<unsigned char>(c - 'a' + 10);
    }
};
inline constexpr CharTable Chars;

} // namespace scanformat

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
bool ScanHexValueGeneral(const char* input, int width, unsigned& value);
inline bool ScanHexValue(const char* input, int width, unsigned& value) {
    // Nearly every type code is four plain digits at the start of its line; the loop stops at
    // the first other character, so it never reads past a terminator.
    if (width == 4) {
        const auto* in = reinterpret_cast<const unsigned char*>(input);
        unsigned plain = 0;
        int count = 0;
        for (unsigned digit = scanformat::Chars.digit[in[0]]; digit < 16;) {
            plain = plain * 16 + digit;
            if (++count == 4) {
                value = plain;
                return true;
            }
            digit = scanformat::Chars.digit[in[count]];
        }
    }
    return ScanHexValueGeneral(input, width, value);
}

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
    // How many characters the text holds from `column` on.
    unsigned long LengthFrom(unsigned long column) const { return column < length ? length - column : 0; }
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

// Reads the fields of a record line in the one layout its writers give it, so that the readers
// can skip ScanFormat's walk over the format for nearly every line. Each step accepts only
// the plain form of its field; once one fails, Ok() stays false, and the caller drops what
// it read and scans the line with ScanFormat as before. A line that passes every step gives exactly what
// ScanFormat gives for the matching conversions (a digit-only field has no sign, no "0x"
// prefix and too few digits to overflow). `length` is what the text holds before its
// terminator; no step reads beyond it.
class PlainFieldReader {
public:
    PlainFieldReader(const char* text, std::size_t length)
        : m_in(reinterpret_cast<const unsigned char*>(text)), m_left(length) {}

    bool Ok() const { return m_ok; }
    // Exactly `Count` spaces: the separators between fields.
    template <int Count> void Blanks() {
        if (!Take(Count))
            return;
        for (int i = 0; i < Count; ++i)
            if (m_in[i] != ' ')
                Fail();
        m_in += Count;
    }
    // `Count` fields of a blank and two hex digits: " %02x" `Count` times.
    template <int Count> void HexBytes(unsigned (&values)[Count]) {
        if (!Take(3 * Count))
            return;
        for (int i = 0; i < Count; ++i, m_in += 3) {
            const unsigned high = scanformat::Chars.digit[m_in[1]];
            const unsigned low = scanformat::Chars.digit[m_in[2]];
            if ((high | low) >= 16 || m_in[0] != ' ')
                Fail();
            values[i] = high * 16 + low;
        }
    }
    // Exactly `Width` hex digits: a "%0<Width>x" field.
    template <int Width> unsigned Hex() { return static_cast<unsigned>(Digits<16>(Width)); }
    // Exactly `Width` decimal digits: a "%0<Width>d" field.
    template <int Width> unsigned long Decimal() { return Digits<10>(Width); }
    // Blanks, then at least one hex digit, `Width` characters in all: a right-aligned
    // "%<Width>X" field behind a blank of the format.
    template <int Width> unsigned RightAlignedHex() { return static_cast<unsigned>(RightAligned<16>(Width)); }
    // The same with decimal digits: a right-aligned "%<Width>lu" field.
    template <int Width> unsigned long RightAlignedDecimal() { return RightAligned<10>(Width); }

private:
    // Nothing more is read once a step failed.
    void Fail() {
        m_ok = false;
        m_left = 0;
    }
    // Claims the next `width` characters, which the text must hold.
    bool Take(std::size_t width) {
        if (m_left < width) {
            Fail();
            return false;
        }
        m_left -= width;
        return true;
    }
    // With a constant width, the loop unrolls and runs without a branch per digit.
    template <unsigned Base> unsigned long Digits(int width) {
        if (!Take(static_cast<std::size_t>(width)))
            return 0;
        return TakenDigits<Base>(width);
    }
    template <unsigned Base> unsigned long TakenDigits(int width) {
        unsigned long value = 0;
        unsigned bad = 0;
        for (int i = 0; i < width; ++i) {
            const unsigned digit = scanformat::Chars.digit[m_in[i]];
            // A digit of the base stays below 16 once raised by 16 - Base; anything else does not.
            bad |= digit + (16 - Base);
            value = value * Base + digit;
        }
        m_in += width;
        if (bad >= 16)
            Fail();
        return value;
    }
    template <unsigned Base> unsigned long RightAligned(int width) {
        if (!Take(static_cast<std::size_t>(width)))
            return 0;
        int blanks = 0;
        while (blanks < width - 1 && *m_in == ' ') {
            ++m_in;
            ++blanks;
        }
        return TakenDigits<Base>(width - blanks);
    }

    const unsigned char* m_in;
    std::size_t m_left;
    bool m_ok = true;
};

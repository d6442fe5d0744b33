#include "trace/ScanFormat.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

// One walk over the format with the input cursor, the count and the arguments in locals:
// the readers call this for every row shown, so it keeps no state behind pointers that the
// stores into the caller's variables could alias.

namespace {

using Cursor = const unsigned char*;

using scanformat::Chars;

inline Cursor SkipBlanks(Cursor p) {
    while (Chars.blank[*p])
        ++p;
    return p;
}

enum class Field { Read, NoInput, NoMatch };

// The digits of an integer field: sign, magnitude and whether it exceeded unsigned long.
struct Integer {
    unsigned long magnitude = 0;
    bool negative = false;
    bool overflow = false;
};

// Consumes an integer field exactly as the library's scanner does: the width (-1 for none)
// counts the sign and a 0x prefix, and "0x" is taken as a prefix even when no digit follows.
template <unsigned Base> inline Field ReadInteger(Cursor& in, int width, Integer& n) {
    if (*in == '\0')
        return Field::NoInput;
    if (*in == '-' || *in == '+') {
        n.negative = *in++ == '-';
        if (width > 0)
            --width;
    }
    bool any = false;
    if (width != 0 && *in == '0') {
        any = true;
        ++in;
        if (width > 0)
            --width;
        if (Base == 16 && width != 0 && (*in == 'x' || *in == 'X')) {
            ++in;
            if (width > 0)
                --width;
        }
    }
    unsigned long magnitude = 0;
    // The readers' fields are at most ten digits wide, too few to overflow, so the common
    // case runs without the overflow test.
    constexpr int SafeDigits = Base == 16 ? 16 : 19;
    if (width > 0 && width <= SafeDigits) {
        for (unsigned digit = Chars.digit[*in]; width != 0 && digit < Base; digit = Chars.digit[*in]) {
            magnitude = magnitude * Base + digit;
            any = true;
            ++in;
            --width;
        }
    } else {
        for (unsigned digit = Chars.digit[*in]; width != 0 && digit < Base; digit = Chars.digit[*in]) {
            // Past the limit the digits are still consumed, and the value saturates.
            if (__builtin_mul_overflow(magnitude, Base, &magnitude) ||
                __builtin_add_overflow(magnitude, digit, &magnitude))
                n.overflow = true;
            any = true;
            ++in;
            if (width > 0)
                --width;
        }
    }
    n.magnitude = magnitude;
    return any ? Field::Read : Field::NoMatch;
}

// The field of "%02x" when it starts with a digit, as ReadInteger<16> with width 2 reads it:
// a "0x" is a prefix and gives 0. False when the general path must decide (sign, no digit).
inline bool ReadTwoHexDigits(Cursor& in, unsigned& value) {
    const unsigned high = Chars.digit[in[0]];
    if (high >= 16)
        return false;
    const unsigned low = Chars.digit[in[1]];
    if (low < 16) {
        value = high * 16 + low;
        in += 2;
    } else if (in[0] == '0' && (in[1] == 'x' || in[1] == 'X')) {
        value = 0;
        in += 2;
    } else {
        value = high;
        in += 1;
    }
    return true;
}

// strtol's result for the digits: saturated at the limits of long.
inline long SignedValue(const Integer& n) {
    const unsigned long limit = n.negative ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    if (n.overflow || n.magnitude > limit)
        return n.negative ? LONG_MIN : LONG_MAX;
    return static_cast<long>(n.negative ? 0UL - n.magnitude : n.magnitude);
}

// strtoul's result for the digits: a negative value wraps, an overflow saturates.
inline unsigned long UnsignedValue(const Integer& n) {
    if (n.overflow)
        return ULONG_MAX;
    return n.negative ? 0UL - n.magnitude : n.magnitude;
}

// Stores an integer as the conversion's argument type; narrowing keeps the low bits, as the
// library's store into a shorter type does.
inline void StoreInteger(unsigned conversion, bool isLong, const Integer& n, va_list& args) {
    if (conversion == 'd') {
        const long value = SignedValue(n);
        if (isLong)
            *va_arg(args, long*) = value;
        else
            *va_arg(args, int*) = static_cast<int>(value);
    } else {
        const unsigned long value = UnsignedValue(n);
        if (isLong)
            *va_arg(args, unsigned long*) = value;
        else
            *va_arg(args, unsigned*) = static_cast<unsigned>(value);
    }
}

// %s: at least one character, up to the width or the next blank.
inline void ReadString(Cursor& in, int width, char* out) {
    while (*in != '\0' && !Chars.blank[*in]) {
        if (out != nullptr)
            *out++ = static_cast<char>(*in);
        ++in;
        if (width > 0 && --width == 0)
            break;
    }
    if (out != nullptr)
        *out = '\0';
}

inline int Scan(const char* input, const char* format, va_list& args) {
    const Cursor start = reinterpret_cast<Cursor>(input);
    Cursor in = start;
    Cursor f = reinterpret_cast<Cursor>(format);
    int done = 0;
    // What sscanf returns when the input ends before a field could be read.
    const auto inputFailure = [&done] { return done == 0 ? EOF : done; };
    bool skipBlanks = false;
    while (*f != '\0') {
        const unsigned fc = *f++;
        if (fc != '%') {
            if (Chars.blank[fc]) {
                // White space in the format matches any amount of input blanks, none included.
                skipBlanks = true;
                continue;
            }
            if (skipBlanks) {
                in = SkipBlanks(in);
                skipBlanks = false;
            }
            if (*in == '\0')
                return inputFailure();
            if (*in != fc)
                return done;
            ++in;
            continue;
        }

        if (f[0] == '0' && f[1] == '2' && (f[2] == 'x' || f[2] == 'X')) {
            // "%02x" reads every data byte of the readers: a short cut for its plain cases.
            in = SkipBlanks(in);
            skipBlanks = false;
            if (unsigned value; ReadTwoHexDigits(in, value)) {
                *va_arg(args, unsigned*) = value;
                ++done;
                f += 3;
                continue;
            }
        }

        const bool suppress = *f == '*';
        f += suppress ? 1 : 0;
        int width = 0;
        for (unsigned digit = *f - '0'; digit < 10; digit = *++f - '0')
            width = width < 100000 ? width * 10 + static_cast<int>(digit) : width;
        if (width == 0)
            width = -1;
        bool isLong = false;
        if (*f == 'l') {
            isLong = true;
            if (*++f == 'l')
                ++f;
        }
        const unsigned conversion = *f;
        if (conversion == '\0')
            return done;
        ++f;
        if (conversion != 'n' || skipBlanks)
            in = SkipBlanks(in);
        skipBlanks = false;

        switch (conversion) {
        case 'x':
        case 'X':
        case 'd':
        case 'u': {
            Integer n;
            const Field field = (conversion == 'x' || conversion == 'X') ? ReadInteger<16>(in, width, n)
                                                                         : ReadInteger<10>(in, width, n);
            if (field == Field::NoInput)
                return inputFailure();
            if (field == Field::NoMatch)
                return done;
            if (!suppress) {
                StoreInteger(conversion, isLong, n, args);
                ++done;
            }
            break;
        }
        case 's':
            if (*in == '\0')
                return inputFailure();
            ReadString(in, width, suppress ? nullptr : va_arg(args, char*));
            done += suppress ? 0 : 1;
            break;
        case 'n':
            if (!suppress) {
                if (isLong)
                    *va_arg(args, long*) = in - start;
                else
                    *va_arg(args, int*) = static_cast<int>(in - start);
            }
            break;
        case '%':
            if (*in == '\0')
                return inputFailure();
            if (*in != '%')
                return done;
            ++in;
            break;
        default:
            return done;
        }
    }
    return done;
}

} // namespace

bool ScanHexValueGeneral(const char* input, int width, unsigned& value) {
    Cursor in = SkipBlanks(reinterpret_cast<Cursor>(input));
    if (width > 0 && width <= 8) {
        // A type code is almost always `width` plain digits; "0x" and signs take the long way.
        unsigned plain = 0;
        int count = 0;
        for (unsigned digit = Chars.digit[in[0]]; count < width && digit < 16; digit = Chars.digit[in[++count]])
            plain = plain * 16 + digit;
        if (count == width) {
            value = plain;
            return true;
        }
    }
    Integer n;
    if (ReadInteger<16>(in, width > 0 ? width : -1, n) != Field::Read)
        return false;
    value = static_cast<unsigned>(UnsignedValue(n));
    return true;
}

int ScanFormat(const char* input, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = Scan(input, format, args);
    va_end(args);
    return result;
}

ScanLine::ScanLine(const char* line) : text(m_cut), length(0) {
    m_cut[0] = '\0';
    if (line == nullptr)
        return;
    length = strnlen(line, MaxLength + 1);
    if (length <= MaxLength) {
        text = line;
        return;
    }
    length = MaxLength;
    std::memcpy(m_cut, line, MaxLength);
    m_cut[MaxLength] = '\0';
}

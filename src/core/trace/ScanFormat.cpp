#include "trace/ScanFormat.h"

#include <cstdarg>
#include <cstdio>

namespace {

using Cursor = const unsigned char*;

// White space as the C locale defines it; the scanner of the library uses the same set.
inline bool IsBlank(unsigned c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

inline Cursor SkipBlanks(Cursor p) {
    while (IsBlank(*p))
        ++p;
    return p;
}

// Digit values of base 16, 0xFF for a character that is no digit; a table keeps the
// inner loop free of branches on the character class.
constexpr struct DigitTable {
    unsigned char value[256];
    constexpr DigitTable() : value() {
        for (unsigned c = 0; c < 256; ++c)
            value[c] = 0xFF;
        for (unsigned c = '0'; c <= '9'; ++c)
            value[c] = static_cast<unsigned char>(c - '0');
        for (unsigned c = 'a'; c <= 'f'; ++c)
            value[c] = value[c - 'a' + 'A'] = static_cast<unsigned char>(c - 'a' + 10);
    }
} Digit;

enum class Step { Done, InputFailure, MatchingFailure };

struct Conversion {
    int width = -1; // -1: no limit
    bool suppress = false;
    bool isLong = false;
};

// The digits of an integer field: sign, magnitude and whether it exceeded unsigned long.
struct Digits {
    unsigned long magnitude = 0;
    bool negative = false;
    bool overflow = false;
};

// Consumes an integer field exactly as the library's scanner does: the width counts the
// sign and a 0x prefix, and "0x" is taken as a prefix even when no digit follows it.
template <unsigned Base>
Step ReadDigits(Cursor& in, int width, Digits& digits) {
    if (*in == '\0')
        return Step::InputFailure;
    if (*in == '-' || *in == '+') {
        digits.negative = *in++ == '-';
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
    // The readers' fields are at most 10 digits wide: too few to overflow, so the common
    // case runs without the overflow test.
    constexpr int SafeDigits = Base == 16 ? 16 : 19;
    if (width > 0 && width <= SafeDigits) {
        for (unsigned digit = Digit.value[*in]; width != 0 && digit < Base; digit = Digit.value[*in]) {
            magnitude = magnitude * Base + digit;
            any = true;
            ++in;
            --width;
        }
    } else {
        for (unsigned digit = Digit.value[*in]; width != 0 && digit < Base; digit = Digit.value[*in]) {
            // Past the limit the digits are still consumed, and the value saturates.
            if (__builtin_mul_overflow(magnitude, Base, &magnitude) ||
                __builtin_add_overflow(magnitude, digit, &magnitude))
                digits.overflow = true;
            any = true;
            ++in;
            if (width > 0)
                --width;
        }
    }
    digits.magnitude = magnitude;
    return any ? Step::Done : Step::MatchingFailure;
}

// strtol's result for the digits: saturated at the limits of long.
long SignedValue(const Digits& d) {
    const unsigned long limit = d.negative ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    if (d.overflow || d.magnitude > limit)
        return d.negative ? LONG_MIN : LONG_MAX;
    return static_cast<long>(d.negative ? 0UL - d.magnitude : d.magnitude);
}

// strtoul's result for the digits: a negative value wraps, an overflow saturates.
unsigned long UnsignedValue(const Digits& d) {
    if (d.overflow)
        return ULONG_MAX;
    return d.negative ? 0UL - d.magnitude : d.magnitude;
}

class Scanner {
public:
    Scanner(const char* input, va_list& args) : m_start(reinterpret_cast<Cursor>(input)), m_in(m_start), m_args(args) {}

    int Run(const char* format);

private:
    int InputFailure() const { return m_done == 0 ? EOF : m_done; }
    Step Convert(char conversion, const Conversion& spec);
    Step ConvertString(const Conversion& spec);
    Step ConvertInteger(char conversion, const Conversion& spec);
    void StoreCount(const Conversion& spec);

    Cursor m_start;
    Cursor m_in;
    va_list& m_args;
    int m_done = 0;
};

int Scanner::Run(const char* format) {
    Cursor f = reinterpret_cast<Cursor>(format);
    bool skipBlanks = false;
    while (*f != '\0') {
        const unsigned char fc = *f++;
        if (fc != '%') {
            if (IsBlank(fc)) {
                // A run of white space in the format matches any amount of input blanks, none included.
                skipBlanks = true;
                continue;
            }
            if (skipBlanks) {
                m_in = SkipBlanks(m_in);
                skipBlanks = false;
            }
            if (*m_in == '\0')
                return InputFailure();
            if (*m_in != fc)
                return m_done;
            ++m_in;
            continue;
        }
        Conversion spec;
        if (*f == '*') {
            spec.suppress = true;
            ++f;
        }
        int width = 0;
        for (; *f >= '0' && *f <= '9'; ++f)
            width = width < 100000 ? width * 10 + (*f - '0') : width;
        spec.width = width == 0 ? -1 : width;
        if (*f == 'l') {
            spec.isLong = true;
            if (*++f == 'l')
                ++f;
        }
        if (*f == '\0')
            return m_done;
        const char conversion = static_cast<char>(*f++);
        if (conversion != 'n' || skipBlanks)
            m_in = SkipBlanks(m_in);
        skipBlanks = false;
        const Step step = Convert(conversion, spec);
        if (step == Step::InputFailure)
            return InputFailure();
        if (step == Step::MatchingFailure)
            return m_done;
    }
    return m_done;
}

Step Scanner::Convert(char conversion, const Conversion& spec) {
    switch (conversion) {
    case 's': return ConvertString(spec);
    case 'd':
    case 'u':
    case 'x':
    case 'X': return ConvertInteger(conversion, spec);
    case 'n': StoreCount(spec); return Step::Done;
    case '%':
        if (*m_in == '\0')
            return Step::InputFailure;
        if (*m_in != '%')
            return Step::MatchingFailure;
        ++m_in;
        return Step::Done;
    default: return Step::MatchingFailure;
    }
}

Step Scanner::ConvertString(const Conversion& spec) {
    if (*m_in == '\0')
        return Step::InputFailure;
    char* out = spec.suppress ? nullptr : va_arg(m_args, char*);
    int width = spec.width;
    while (*m_in != '\0' && !IsBlank(*m_in)) {
        if (out != nullptr)
            *out++ = static_cast<char>(*m_in);
        ++m_in;
        if (width > 0 && --width == 0)
            break;
    }
    if (out != nullptr) {
        *out = '\0';
        ++m_done;
    }
    return Step::Done;
}

Step Scanner::ConvertInteger(char conversion, const Conversion& spec) {
    Digits digits;
    const bool hex = conversion == 'x' || conversion == 'X';
    const Step step = hex ? ReadDigits<16>(m_in, spec.width, digits) : ReadDigits<10>(m_in, spec.width, digits);
    if (step != Step::Done || spec.suppress)
        return step;
    // Narrowing keeps the low bits, as the library's store into a shorter type does.
    if (conversion == 'd') {
        const long value = SignedValue(digits);
        if (spec.isLong)
            *va_arg(m_args, long*) = value;
        else
            *va_arg(m_args, int*) = static_cast<int>(value);
    } else {
        const unsigned long value = UnsignedValue(digits);
        if (spec.isLong)
            *va_arg(m_args, unsigned long*) = value;
        else
            *va_arg(m_args, unsigned*) = static_cast<unsigned>(value);
    }
    ++m_done;
    return Step::Done;
}

void Scanner::StoreCount(const Conversion& spec) {
    if (spec.suppress)
        return;
    const long consumed = m_in - m_start;
    if (spec.isLong)
        *va_arg(m_args, long*) = consumed;
    else
        *va_arg(m_args, int*) = static_cast<int>(consumed);
}

} // namespace

bool ScanHexValue(const char* input, int width, unsigned& value) {
    Cursor in = SkipBlanks(reinterpret_cast<Cursor>(input));
    Digits digits;
    if (ReadDigits<16>(in, width > 0 ? width : -1, digits) != Step::Done)
        return false;
    value = static_cast<unsigned>(UnsignedValue(digits));
    return true;
}

int ScanFormat(const char* input, const char* format, ...) {
    va_list args;
    va_start(args, format);
    Scanner scanner(input, args);
    const int result = scanner.Run(format);
    va_end(args);
    return result;
}

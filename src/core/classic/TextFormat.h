#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Small number formatters for the row texts: rows are formatted by the million, and
// the C library's printf costs more than the rest of a row together.
namespace textformat {

namespace detail {
// "00" to "99": two digits per step halve the divisions of a number.
inline constexpr struct DigitPairTable {
    char pairs[100][2];
    constexpr DigitPairTable() : pairs() {
        for (unsigned value = 0; value < 100; ++value) {
            pairs[value][0] = static_cast<char>('0' + value / 10);
            pairs[value][1] = static_cast<char>('0' + value % 10);
        }
    }
} DigitPairs;
} // namespace detail

// The decimal digits of `value`, right-aligned in the `count` characters that end at `end`;
// `count` must be at least the number of digits, and the digits are padded with zeros.
inline void WriteDigitsBackwards(char* end, int count, std::uint32_t value) {
    while (count >= 2) {
        end -= 2;
        const char* pair = detail::DigitPairs.pairs[value % 100];
        end[0] = pair[0];
        end[1] = pair[1];
        value /= 100;
        count -= 2;
    }
    if (count == 1)
        end[-1] = static_cast<char>('0' + value);
}

inline int DecimalDigitCount(std::uint32_t value) {
    int count = 1;
    for (; value >= 100; value /= 100)
        count += 2;
    return value >= 10 ? count + 1 : count;
}

// "%u" into `out`, which has room for 10 characters; returns the end of the text.
inline char* WriteUnsigned(char* out, std::uint32_t value) {
    const int count = DecimalDigitCount(value);
    WriteDigitsBackwards(out + count, count, value);
    return out + count;
}

// The decimal text of a number that mostly counts up by one: numbers given in order cost a
// digit or two rather than a conversion each.
class DecimalCounter {
public:
    // "%u" of `value`, valid until the next call.
    std::string_view Text(std::uint32_t value) {
        if (m_length == 0 || m_value == UINT32_MAX || value != m_value + 1)
            m_length = static_cast<std::size_t>(WriteUnsigned(m_text, value) - m_text);
        else
            CountUp();
        m_value = value;
        return {m_text, m_length};
    }

private:
    void CountUp() {
        std::size_t i = m_length;
        while (i > 0 && m_text[i - 1] == '9')
            m_text[--i] = '0';
        if (i > 0) {
            ++m_text[i - 1];
            return;
        }
        // All nines: one digit more, "1" and zeros.
        m_text[m_length++] = '0';
        m_text[0] = '1';
    }

    char m_text[10] = {};
    std::size_t m_length = 0;
    std::uint32_t m_value = 0;
};

// "%*X" / "%0*X": upper-case hex padded on the left to `width` with `pad`, into `out`, which
// has room for the larger of 8 and `width` characters; returns the end of the text.
inline char* WriteHex(char* out, std::uint32_t value, int width, char pad) {
    static const char kDigits[] = "0123456789ABCDEF";
    int count = 1;
    for (std::uint32_t rest = value; rest >= 16; rest >>= 4)
        ++count;
    // The pads in one store; the digits overwrite the ones they do not need.
    std::memset(out, pad, 8);
    for (int i = 8; i < width; ++i)
        out[i] = pad;
    char* const end = out + (count > width ? count : width);
    char* p = end;
    do {
        *--p = kDigits[value & 0xF];
        value >>= 4;
    } while (value != 0);
    return end;
}

// "%u"
inline void AppendUnsigned(std::string& out, std::uint32_t value) {
    char digits[10];
    out.append(digits, static_cast<std::size_t>(WriteUnsigned(digits, value) - digits));
}

// "%*X" / "%0*X"
inline void AppendHex(std::string& out, std::uint32_t value, int width, char pad) {
    if (width > 8) {
        out.append(static_cast<std::size_t>(width - 8), pad);
        width = 8;
    }
    char digits[8];
    out.append(digits, static_cast<std::size_t>(WriteHex(digits, value, width, pad) - digits));
}

} // namespace textformat

#include "trace/IndexTimeReader.h"

#include "trace/IndexLineKinds.h"
#include "trace/NibbleTables.h"

#include <climits>
#include <cstring>

namespace {

using namespace indexline;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Decimal digits only, at most 18 of them: what atol gives without overflow care.
bool ReadPlainDecimal(const char* text, std::size_t length, std::uint32_t& value) {
    if (length == 0 || length > 18)
        return false;
    std::uint64_t result = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const unsigned digit = static_cast<unsigned char>(text[i]) - '0';
        if (digit > 9)
            return false;
        result = result * 10 + digit;
    }
    value = static_cast<std::uint32_t>(result);
    return true;
}

// Eight decimal digits at `p` as a number, or false when one of them is no digit.
bool ReadEightDigits(const char* p, std::uint64_t& value) {
    std::uint64_t v;
    std::memcpy(&v, p, 8);
    const bool digits = ((v & 0xF0F0F0F0F0F0F0F0ull) == 0x3030303030303030ull) &&
                        (((v + 0x0606060606060606ull) & 0xF0F0F0F0F0F0F0F0ull) == 0x3030303030303030ull);
    if (!digits)
        return false;
    v -= 0x3030303030303030ull;
    v = (v * 10) + (v >> 8);
    v = (((v & 0x000000FF000000FFull) * (100 + (1000000ull << 32))) +
         (((v >> 16) & 0x000000FF000000FFull) * (1 + (10000ull << 32)))) >>
        32;
    value = v;
    return true;
}

// True when none of the eight bytes at `p` is a blank.
bool NoBlankIn8(const char* p) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    const std::uint64_t x = word ^ 0x2020202020202020ull;
    return ((x - 0x0101010101010101ull) & ~x & 0x8080808080808080ull) == 0;
}

// The usual layouts "CC IIIIIIII TTTTTTTTTT ..." (a CAN frame) and "CC D TTTTTTTTTT" (a
// K-line byte) read without a general tokenizer; false when the line is laid out otherwise.
bool ReadUsualTokens(const char* text, const char* end, IndexLineFacts& facts) {
    if (end - text < 6 || text[0] == ' ' || text[1] == ' ' || text[2] != ' ' || text[3] == ' ')
        return false;
    const char* time;
    if (text[4] == ' ')
        time = text + 5;
    else if (end - text >= 13 && NoBlankIn8(text + 3) && text[11] == ' ')
        time = text + 12;
    else
        return false;
    if (time == end || *time == ' ')
        return false;
    facts.channelNumber = ParseChannelToken(text, 2);
    // Ten digits, as the writers print the time, read eight at a time.
    std::uint64_t high = 0;
    if (end - time >= 10 && (end - time == 10 || time[10] == ' ') && ReadEightDigits(time, high) &&
        static_cast<unsigned>(time[8] - '0') <= 9 && static_cast<unsigned>(time[9] - '0') <= 9) {
        facts.time = static_cast<std::uint32_t>(high * 100 + static_cast<unsigned>(time[8] - '0') * 10 +
                                                static_cast<unsigned>(time[9] - '0'));
        return true;
    }
    const char* p = time;
    while (p < end && *p != ' ')
        ++p;
    const std::size_t length = static_cast<std::size_t>(p - time);
    if (!ReadPlainDecimal(time, length, facts.time))
        facts.time = AtolTruncated(time, length);
    return true;
}

void ReadTokens(const char* text, const char* end, IndexLineFacts& facts) {
    if (ReadUsualTokens(text, end, facts))
        return;
    const char* token[3] = {nullptr, nullptr, nullptr};
    std::size_t tokenLength[3] = {0, 0, 0};
    int count = 0;
    const char* p = text;
    while (count < 3 && p < end) {
        while (p < end && *p == ' ')
            ++p;
        if (p >= end)
            break;
        const char* begin = p;
        while (p < end && *p != ' ')
            ++p;
        token[count] = begin;
        tokenLength[count] = static_cast<std::size_t>(p - begin);
        ++count;
    }
    if (token[0] != nullptr)
        facts.channelNumber = ParseChannelToken(token[0], tokenLength[0]);
    if (token[2] != nullptr && !ReadPlainDecimal(token[2], tokenLength[2], facts.time))
        facts.time = AtolTruncated(token[2], tokenLength[2]);
}

} // namespace

IndexLineFacts ReadTokenFields(const char* text, const char* end) {
    IndexLineFacts facts;
    ReadTokens(text, end, facts);
    return facts;
}

std::uint16_t IndexLineType(const char* line, std::size_t length) {
    auto at = [&](std::size_t i) -> unsigned char { return i < length ? static_cast<unsigned char>(line[i]) : 0; };
    return static_cast<std::uint16_t>((nibble::Byte(at(0), at(1)) << 8) | nibble::Byte(at(2), at(3)));
}

int ParseChannelToken(const char* token, std::size_t length) {
    // A long token wraps around as the 32-bit arithmetic of the writers did.
    std::uint32_t value = 0;
    int digit = 0;
    for (std::size_t i = 0; i < length; ++i) {
        const char c = token[i];
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        else if (c >= 'a' && c <= 'f')
            digit = c - 0x6B;
        value = value * 16u + static_cast<std::uint32_t>(digit);
    }
    return static_cast<int>(value);
}

std::uint32_t ScanHexField(const char* text, int width) {
    // Eight hex digits in a row, as the writers print times: no blank, sign or "0x" to
    // care about. The field is zero-terminated, so the loop stops at its end.
    if (width == 8) {
        std::uint32_t value = 0;
        int i = 0;
        for (; i < 8; ++i) {
            const int digit = HexDigit(text[i]);
            if (digit < 0)
                break;
            value = value * 16 + static_cast<unsigned>(digit);
        }
        if (i == 8)
            return value;
    }
    const char* p = text;
    while (IsSpace(*p))
        ++p;
    bool negative = false;
    if (*p == '-' || *p == '+') {
        negative = *p == '-';
        ++p;
        if (--width == 0)
            return 0;
    }
    std::uint64_t value = 0;
    bool digits = false;
    if (*p == '0') {
        digits = true;
        ++p;
        --width;
        if (width > 0 && (*p == 'x' || *p == 'X')) {
            ++p;
            --width;
        }
    }
    for (; width > 0; --width, ++p) {
        const int digit = HexDigit(*p);
        if (digit < 0)
            break;
        value = value * 16 + static_cast<unsigned>(digit);
        digits = true;
    }
    if (!digits)
        return 0;
    const auto result = static_cast<std::uint32_t>(value);
    return negative ? 0u - result : result;
}

std::uint32_t AtolTruncated(const char* text, std::size_t length) {
    std::size_t i = 0;
    while (i < length && IsSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < length && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    unsigned long long magnitude = 0;
    bool overflow = false;
    for (; i < length && text[i] >= '0' && text[i] <= '9'; ++i) {
        if (!overflow) {
            magnitude = magnitude * 10 + static_cast<unsigned>(text[i] - '0');
            if (magnitude > static_cast<unsigned long long>(LONG_MAX) + 1)
                overflow = true;
        }
    }
    long value;
    if (negative)
        value = overflow || magnitude > static_cast<unsigned long long>(LONG_MAX) + 1 ? LONG_MIN
                : magnitude == static_cast<unsigned long long>(LONG_MAX) + 1          ? LONG_MIN
                                                                                      : -static_cast<long>(magnitude);
    else
        value =
            overflow || magnitude > static_cast<unsigned long long>(LONG_MAX) ? LONG_MAX : static_cast<long>(magnitude);
    return static_cast<std::uint32_t>(value);
}

void ReadIndexLineFacts(const char* line, std::size_t length, IndexLineFacts& facts) {
    const std::uint16_t type = IndexLineType(line, length);
    const char* fields = length > 5 ? line + 5 : line + length;
    if (IsTokenTimeType(type)) {
        ReadTokens(fields, line + length, facts);
        facts.channel = true;
        facts.identifier = true;
    } else if (IsHexTimeType(type)) {
        facts.time = ScanHexField(fields, 8);
        facts.identifier = SetsIdentifierOnly(type);
        facts.sourceDestinationPriority = type == 0x0034 || type == 0x0035 || type == 0x0036;
    } else if (type == 0x0038 || type == 0x0039 || type == 0x0090 || type == 0x0091) {
        facts.flex = true;
    }
}

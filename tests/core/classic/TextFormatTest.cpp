#include "classic/TextFormat.h"
#include "classic/ClassicTime.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace {

std::vector<std::uint32_t> EdgeAndRandomValues() {
    std::vector<std::uint32_t> values{0, 1, 9, 10, 99, 100, 999, 1000, 65535, 999999, 1000000, 4294967295u};
    for (std::uint32_t power = 10; power < 1000000000u; power *= 10) {
        values.push_back(power - 1);
        values.push_back(power);
        values.push_back(power + 1);
    }
    std::mt19937 random(3);
    for (int i = 0; i < 5000; ++i)
        values.push_back(static_cast<std::uint32_t>(random()) >> (random() % 32));
    return values;
}

std::string Printed(const char* format, int width, std::uint32_t value) {
    char text[64];
    std::snprintf(text, sizeof text, format, width, value);
    return text;
}

// "%0*u" with a dot before each group of three integer digits and a comma before the
// decimals: the time format spelled out the slow way.
std::string ReferenceTime(std::uint32_t value, int digits) {
    const std::string all = Printed("%0*u", digits + 1, value);
    const std::string integer = all.substr(0, all.size() - static_cast<std::size_t>(digits));
    std::string grouped;
    for (std::size_t i = 0; i < integer.size(); ++i) {
        if (i > 0 && (integer.size() - i) % 3 == 0)
            grouped += '.';
        grouped += integer[i];
    }
    return grouped + ',' + all.substr(integer.size());
}

} // namespace

TEST(TextFormat, NumbersMatchPrintf) {
    for (const std::uint32_t value : EdgeAndRandomValues()) {
        std::string text;
        textformat::AppendUnsigned(text, value);
        ASSERT_EQ(text, std::to_string(value));
        for (int width : {1, 2, 8, 11}) {
            std::string hex;
            textformat::AppendHex(hex, value, width, ' ');
            ASSERT_EQ(hex, Printed("%*X", width, value));
            hex.clear();
            textformat::AppendHex(hex, value, width, '0');
            ASSERT_EQ(hex, Printed("%0*X", width, value));
        }
    }
}

TEST(TextFormat, ACounterFollowsItsNumbersInOrderAndOutOfOrder) {
    textformat::DecimalCounter counter;
    for (std::uint32_t value = 0; value < 120000; ++value)
        ASSERT_EQ(counter.Text(value), std::to_string(value));
    // Jumps, steps back and the carries of long runs of nines.
    for (const std::uint32_t value :
         {5u, 4u, 9999999u, 10000000u, 10000001u, 7u, 999999999u, 1000000000u, 4294967294u, 4294967295u, 0u, 1u})
        ASSERT_EQ(counter.Text(value), std::to_string(value));
}

TEST(FormatTime, MatchesTheSpelledOutFormatForEveryDigitCount) {
    for (int digits = 0; digits <= MaxFormattedTimeDigits; ++digits)
        for (const std::uint32_t value : EdgeAndRandomValues()) {
            const std::string text = FormatTime(value, digits);
            ASSERT_EQ(text, ReferenceTime(value, digits)) << value << " with " << digits << " decimals";
            ASSERT_LE(text.size(), MaxFormattedTimeLength);
        }
}

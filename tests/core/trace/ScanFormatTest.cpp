#include "trace/ScanFormat.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

namespace {

// Every format the classic readers apply, as they apply them.
const char* const ReaderFormats[] = {
    "%04X",
    " %08x",
    "%08x %04x %02x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x %02x ",
    "%08x %04x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x",
    " %08x %04x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x %02x ",
    "%02x %01s %010d",
    "%02x %08x %010d %04x %02x %02x %02x %02x %02x %02x %02x %02x",
    "%08x %04x %02x %02x %02x %02x %02x %02x  %02x %02x",
    "%02d %01s %02d %01s %04d %02d %01s %02d %01s %02d",
    "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d %s",
    "%1s  %1s %04d %1s %02d %1s %02d %02d %1s %02d %1s %02d",
    "%1s %1s",
    "%1s %d",
    "%1s %d %04x %02x %02x",
    "%1s %1s %d %d",
    "%1s %d %d %d",
    "%s %d %04x %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  "
    "%02x %02x %02x %02x %02x %02x",
    "%s %d %04x %04x %04x %02x %02x %02x  %02x %02x %02x %02x %02x  %02x %02x %02x %02x %02x  "
    "%02x %02x %02x %02x %02x %02x",
    " %8X",
    "%10lu",
    "%4lu",
    " %1s",
    " %02d",
    " %10lu",
    " %8X %10lu",
    " %8X %10lu %04d  %02x %02x %02x %02x %02x %02x %02x %02x",
    // Not used by the readers, but part of what the scanner promises.
    "%u %ld %lx %x%%",
    "%3u:%2ld-%lx",
};

constexpr std::size_t MaxArgs = 30;
constexpr std::size_t SlotBytes = 320;

// Argument storage for one call, filled with a pattern so that unassigned slots compare too.
struct Slots {
    alignas(16) unsigned char bytes[MaxArgs][SlotBytes];
    Slots() { std::memset(bytes, 0xA5, sizeof bytes); }
    void* at(std::size_t i) { return bytes[i]; }
};

template <typename Scan> int CallWithSlots(Scan scan, const char* input, const char* format, Slots& s) {
    return scan(input, format, s.at(0), s.at(1), s.at(2), s.at(3), s.at(4), s.at(5), s.at(6), s.at(7), s.at(8), s.at(9),
                s.at(10), s.at(11), s.at(12), s.at(13), s.at(14), s.at(15), s.at(16), s.at(17), s.at(18), s.at(19),
                s.at(20), s.at(21), s.at(22), s.at(23), s.at(24), s.at(25), s.at(26), s.at(27), s.at(28), s.at(29));
}

std::string Describe(const std::string& input) {
    std::string out;
    for (unsigned char c : input) {
        if (c >= 0x20 && c < 0x7F) {
            out += static_cast<char>(c);
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", c);
            out += hex;
        }
    }
    return out;
}

// Runs both scanners and compares the result and every byte of every argument slot.
::testing::AssertionResult SameAsLibrary(const std::string& input, const std::string& format) {
    Slots ours, theirs;
    const int ourResult =
        CallWithSlots([](const char* in, const char* f, auto... a) { return ScanFormat(in, f, a...); }, input.c_str(),
                      format.c_str(), ours);
    const int libraryResult =
        CallWithSlots([](const char* in, const char* f, auto... a) { return std::sscanf(in, f, a...); }, input.c_str(),
                      format.c_str(), theirs);
    if (ourResult != libraryResult)
        return ::testing::AssertionFailure() << "return " << ourResult << " vs " << libraryResult << " for \""
                                             << Describe(input) << "\" with \"" << format << "\"";
    for (std::size_t i = 0; i < MaxArgs; ++i)
        if (std::memcmp(ours.bytes[i], theirs.bytes[i], SlotBytes) != 0)
            return ::testing::AssertionFailure()
                   << "argument " << i << " differs for \"" << Describe(input) << "\" with \"" << format << "\"";
    return ::testing::AssertionSuccess();
}

class InputGenerator {
public:
    explicit InputGenerator(unsigned seed) : m_random(seed) {}

    // Characters the readers meet, with the troublemakers weighted up.
    std::string Noise(std::size_t maxLength) {
        static const char Alphabet[] = "0123456789abcdefABCDEF0000xX+-- \t  -:/.gGzZ\r\n\v\f%";
        std::string s;
        const std::size_t length = Pick(maxLength + 1);
        for (std::size_t i = 0; i < length; ++i) {
            if (Pick(40) == 0)
                s += static_cast<char>(0x80 + Pick(0x80));
            else
                s += Alphabet[Pick(sizeof Alphabet - 1)];
        }
        return s;
    }

    // A line shaped by the format, so that scans get deep, then perhaps damaged.
    std::string Shaped(const std::string& format) {
        std::string s;
        for (std::size_t i = 0; i < format.size(); ++i) {
            const char c = format[i];
            if (c == ' ') {
                s += Blanks();
            } else if (c != '%') {
                s += Pick(8) == 0 ? Noise(1) : std::string(1, c);
            } else {
                ++i;
                while (format[i] >= '0' && format[i] <= '9')
                    ++i;
                if (format[i] == 'l')
                    ++i;
                s += Field(format[i]);
            }
        }
        switch (Pick(4)) {
        case 0:
            s.resize(Pick(s.size() + 1));
            break;
        case 1:
            if (!s.empty())
                s.insert(Pick(s.size()), Noise(3));
            break;
        default:
            break;
        }
        return s;
    }

    std::size_t Pick(std::size_t n) {
        return n == 0 ? 0 : std::uniform_int_distribution<std::size_t>(0, n - 1)(m_random);
    }

private:
    std::string Blanks() {
        static const char* const Options[] = {"", " ", " ", "  ", "\t", " \t ", "   "};
        return Options[Pick(7)];
    }

    std::string Digits(const char* set, std::size_t setSize, std::size_t maxCount) {
        std::string s;
        const std::size_t count = Pick(maxCount + 1);
        for (std::size_t i = 0; i < count; ++i)
            s += set[Pick(setSize)];
        return s;
    }

    std::string Field(char conversion) {
        static const char Decimal[] = "0123456789";
        static const char Hex[] = "0123456789abcdefABCDEF";
        std::string s;
        const std::size_t sign = Pick(8);
        if (sign == 0)
            s += '-';
        else if (sign == 1)
            s += '+';
        switch (conversion) {
        case 'd':
        case 'u':
            s += Digits(Decimal, 10, Pick(3) == 0 ? 24 : 11);
            break;
        case 'x':
        case 'X':
            if (Pick(5) == 0)
                s += Pick(2) ? "0x" : "0X";
            s += Digits(Hex, 22, Pick(3) == 0 ? 20 : 9);
            break;
        default:
            s = Noise(6);
            break;
        }
        return s;
    }

    std::mt19937 m_random;
};

} // namespace

TEST(ScanFormat, MatchesTheLibraryOnGeneratedLinesForEveryReaderFormat) {
    InputGenerator generate(20240501);
    for (const char* format : ReaderFormats) {
        const std::string counted = std::string(format) + "%n";
        for (int round = 0; round < 4000; ++round) {
            const std::string input = round % 3 == 0 ? generate.Noise(40) : generate.Shaped(format);
            ASSERT_TRUE(SameAsLibrary(input, format));
            // %n at the end shows where the scan stopped whenever every conversion succeeded.
            ASSERT_TRUE(SameAsLibrary(input, counted));
        }
    }
}

TEST(ScanHexValue, ReadsWhatAOneFieldHexFormatReads) {
    InputGenerator generate(7);
    for (int round = 0; round < 20000; ++round) {
        const std::string input = round % 2 ? generate.Noise(12) : generate.Shaped("%04X tail");
        for (int width : {0, 4, 8}) {
            const std::string format = width ? "%0" + std::to_string(width) + "X" : "%X";
            unsigned expected = 0xA5A5A5A5, value = 0xA5A5A5A5;
            const bool converted = std::sscanf(input.c_str(), format.c_str(), &expected) == 1;
            ASSERT_EQ(ScanHexValue(input.c_str(), width, value), converted) << Describe(input) << " " << format;
            ASSERT_EQ(value, expected) << Describe(input) << " " << format;
        }
    }
}

TEST(ScanFormat, MatchesTheLibraryOnTheEdgesOfIntegerFields) {
    const char* const inputs[] = {
        "",
        " ",
        "\t\n",
        "-",
        "+",
        "- 5",
        "0",
        "-0",
        "0x",
        "0X",
        "0xg",
        "-0x",
        "+0x1f",
        "0x0x5",
        "00x5",
        "x5",
        "12345678901234567890",
        "18446744073709551615",
        "18446744073709551616",
        "-18446744073709551615",
        "-18446744073709551616",
        "9223372036854775807",
        "9223372036854775808",
        "-9223372036854775808",
        "-9223372036854775809",
        "4294967295",
        "4294967296",
        "-2147483648",
        "-2147483649",
        "2147483648",
        "ffffffffffffffff",
        "10000000000000000",
        "-ffffffff",
        "FfFfFfFf",
        "\20012",
        "1\3772",
    };
    const char* const formats[] = {"%d",  "%u",    "%x",   "%X",   "%ld",  "%lu",   "%lx", "%1d",    "%2x",
                                   "%3x", "%010d", "%08x", "%02x", "%4lu", "%10lu", "%0d", "%*d %d", "%d%n"};
    for (const char* input : inputs)
        for (const char* format : formats)
            EXPECT_TRUE(SameAsLibrary(input, format));
}

TEST(ScanFormat, MatchesTheLibraryOnStringsAndLiterals) {
    const char* const inputs[] = {"",     "a",   "ab cd",      "  -  - ",  "-",
                                  "\t-x", "abc", "a:b",        "a :b",     "a: b",
                                  "%",    " %",  "\xe4\xf6 x", "12:34:56", "05.04.2023 12:34:56"};
    const char* const formats[] = {
        "%1s",     "%01s",     "%s",    "%2s %1s", "%1s %1s",
        "%1s:%1s", "%1s :%1s", "%%%1s", " %%",     "%02d %01s %02d %01s %04d %02d %01s %02d %01s %02d",
        "%s%n",    " %n",      "a%n",   "%1s %n"};
    for (const char* input : inputs)
        for (const char* format : formats)
            EXPECT_TRUE(SameAsLibrary(input, format));
}

TEST(ScanFormat, StopsAtTheTerminatorOfAnInputThatIsNotCopied) {
    // The scanner reads in place; a heap block of exactly the string's size lets ASan
    // catch any look past the terminator.
    const char text[] = "00001234 0008 01";
    char* exact = static_cast<char*>(std::malloc(sizeof text));
    std::memcpy(exact, text, sizeof text);
    unsigned a = 0, b = 0, c = 0, d = 0;
    EXPECT_EQ(ScanFormat(exact, "%08x %04x %02x %02x", &a, &b, &c, &d), 3);
    EXPECT_EQ(a, 0x1234u);
    EXPECT_EQ(b, 8u);
    EXPECT_EQ(c, 1u);
    std::free(exact);
}

TEST(ScanDecimalLong, GivesWhatAtolGives) {
    const char* const inputs[] = {"",
                                  "   ",
                                  "0",
                                  "0000012345",
                                  "  42abc",
                                  "-17",
                                  "+17",
                                  "- 1",
                                  "4294967296",
                                  "9223372036854775807",
                                  "9223372036854775808",
                                  "-9223372036854775808",
                                  "-9223372036854775809",
                                  "99999999999999999999999",
                                  "\t\v123",
                                  "12 34",
                                  "x1"};
    for (const char* input : inputs)
        EXPECT_EQ(ScanDecimalLong(input), std::strtol(input, nullptr, 10)) << '"' << input << '"';
}

TEST(ScanLine, CutsLongLinesAndReadsEmptyBeyondTheEnd) {
    const std::string longLine(300, '7');
    const ScanLine cut(longLine.c_str());
    EXPECT_EQ(cut.length, 256u);
    EXPECT_EQ(std::strlen(cut.text), 256u);

    const ScanLine shortLine("0005 x");
    EXPECT_STREQ(shortLine.At(5), "x");
    EXPECT_STREQ(shortLine.At(6), "");
    EXPECT_STREQ(shortLine.At(30), "");
    EXPECT_EQ(shortLine.CharAt(5), 'x');
    EXPECT_EQ(shortLine.CharAt(6), 0);
    EXPECT_EQ(shortLine.CharAt(200), 0);

    const ScanLine none(nullptr);
    EXPECT_EQ(none.length, 0u);
    EXPECT_STREQ(none.At(0), "");
}

namespace {

// Random lines in the plain layout of a format, each then damaged at most once.
class PlainLineMaker {
public:
    explicit PlainLineMaker(unsigned seed) : m_random(seed) {}

    std::string HexDigits(int count) { return Pick("0123456789abcdefABCDEF", count); }
    std::string DecimalDigits(int count) { return Pick("0123456789", count); }
    // `digits` digits right-aligned in `width` columns.
    std::string RightAligned(const char* set, int width) {
        const int digits = 1 + static_cast<int>(Below(static_cast<unsigned>(width)));
        return std::string(static_cast<std::size_t>(width - digits), ' ') + Pick(set, digits);
    }
    std::string Damaged(std::string line) {
        static const char Troublemakers[] = " \t-+xX0g\xb5";
        const std::size_t at = Below(static_cast<unsigned>(line.size()));
        switch (Below(5)) {
        case 0:
            line[at] = Troublemakers[Below(sizeof Troublemakers - 1)];
            break;
        case 1:
            line.insert(at, 1, Troublemakers[Below(sizeof Troublemakers - 1)]);
            break;
        case 2:
            line.erase(at, 1);
            break;
        case 3:
            line.resize(at);
            break;
        default: // left whole
            break;
        }
        return line;
    }

private:
    unsigned Below(unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(m_random); }
    std::string Pick(const char* set, int count) {
        const auto size = static_cast<unsigned>(std::strlen(set));
        std::string s;
        for (int i = 0; i < count; ++i)
            s += set[Below(size)];
        return s;
    }

    std::mt19937 m_random;
};

} // namespace

// Where the plain reader accepts a line, the library's scanner reads the same values from it;
// the lines in the plain layout are all accepted.
TEST(PlainFieldReader, AgreesWithTheLibraryOnEveryLineItAccepts) {
    PlainLineMaker make(99);
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string plain =
            make.HexDigits(2) + " " + make.HexDigits(8) + " " + make.DecimalDigits(10) + " " + make.HexDigits(4);
        for (int i = 0; i < 8; ++i)
            plain += " " + make.HexDigits(2);
        const std::string line = round % 4 == 0 ? plain : make.Damaged(plain);
        SCOPED_TRACE(Describe(line));

        PlainFieldReader in(line.c_str(), line.size());
        const unsigned channel = in.Hex<2>();
        in.Blanks<1>();
        const unsigned identifier = in.Hex<8>();
        in.Blanks<1>();
        const auto time = static_cast<int>(in.Decimal<10>());
        in.Blanks<1>();
        const unsigned length = in.Hex<4>();
        unsigned bytes[8];
        in.HexBytes(bytes);
        if (line == plain) {
            ASSERT_TRUE(in.Ok());
        }
        if (!in.Ok())
            continue;
        ++accepted;
        unsigned c = 0, id = 0, len = 0, b[8] = {};
        int t = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%02x %08x %010d %04x %02x %02x %02x %02x %02x %02x %02x %02x", &c, &id, &t,
                              &len, &b[0], &b[1], &b[2], &b[3], &b[4], &b[5], &b[6], &b[7]),
                  12);
        EXPECT_EQ(channel, c);
        EXPECT_EQ(identifier, id);
        EXPECT_EQ(time, t);
        EXPECT_EQ(length, len);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(bytes[i], b[i]);
    }
    EXPECT_GT(accepted, 5000);
}

TEST(PlainFieldReader, RightAlignedFieldsAgreeWithTheLibrary) {
    PlainLineMaker make(5);
    int accepted = 0;
    for (int round = 0; round < 20000; ++round) {
        const std::string plain = make.RightAligned("0123456789ABCDEF", 8) + " " + make.RightAligned("0123456789", 10) +
                                  " " + make.DecimalDigits(4) + "  " + make.HexDigits(2);
        const std::string line = round % 4 == 0 ? plain : make.Damaged(plain);
        SCOPED_TRACE(Describe(line));

        PlainFieldReader in(line.c_str(), line.size());
        const unsigned identifier = in.RightAlignedHex<8>();
        in.Blanks<1>();
        const unsigned long time = in.RightAlignedDecimal<10>();
        in.Blanks<1>();
        const auto length = static_cast<int>(in.Decimal<4>());
        in.Blanks<1>();
        unsigned byte[1];
        in.HexBytes(byte);
        if (line == plain) {
            ASSERT_TRUE(in.Ok());
        }
        if (!in.Ok())
            continue;
        ++accepted;
        unsigned id = 0, b = 0;
        unsigned long t = 0;
        int len = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), " %8X %10lu %04d  %02x", &id, &t, &len, &b), 4);
        EXPECT_EQ(identifier, id);
        EXPECT_EQ(time, t);
        EXPECT_EQ(length, len);
        EXPECT_EQ(byte[0], b);
    }
    EXPECT_GT(accepted, 5000);
}

TEST(PlainFieldReader, ReadsNothingBeyondTheLengthItIsGiven) {
    // The text goes on, but the reader is told it ends one character early.
    const char text[] = "0A 000007E8 0000001234 0008";
    PlainFieldReader in(text, sizeof text - 2);
    in.Hex<2>();
    in.Blanks<1>();
    in.Hex<8>();
    in.Blanks<1>();
    in.Decimal<10>();
    in.Blanks<1>();
    in.Hex<4>();
    EXPECT_FALSE(in.Ok());

    // A failed step leaves the reader failed, whatever follows.
    PlainFieldReader failed("x 12", 4);
    failed.Hex<1>();
    failed.Blanks<1>();
    failed.Decimal<2>();
    EXPECT_FALSE(failed.Ok());

    // A right-aligned field needs at least one digit.
    PlainFieldReader blank("        12", 10);
    blank.RightAlignedHex<8>();
    EXPECT_FALSE(blank.Ok());
}

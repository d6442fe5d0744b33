// CAN frame lines come in one layout from every writer, and the readers take a short way
// through that layout; any other spacing goes the general way. Both must give the same record.

#include "support/RecordProbe.h"
#include "trace/CTraceItemI.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

std::string Describe(const CTraceItemI& item) {
    RecordProbe probe;
    probe.item = item;
    std::ostringstream text;
    text << "kind " << int(probe.Kind()) << " time " << probe.Time() << " timed " << item.HasTime() << " channel "
         << int(probe.Channel()) << " id " << probe.Identifier() << " ext " << int(probe.Extended()) << " dir "
         << int(probe.Direction()) << " code " << probe.Code() << " data";
    for (const std::uint8_t byte : probe.Data())
        text << ' ' << int(byte);
    return text.str();
}

class FrameLines {
public:
    explicit FrameLines(unsigned seed) : m_random(seed) {}

    std::string Hex(int count) { return Pick("0123456789abcdefABCDEF", count); }
    std::string Decimal(int count) { return Pick("0123456789", count); }
    std::string RightAligned(const char* set, int width) {
        const int digits = 1 + static_cast<int>(Below(static_cast<unsigned>(width)));
        return std::string(static_cast<std::size_t>(width - digits), ' ') + Pick(set, digits);
    }
    // Lengths mostly of a frame, sometimes anything the field can hold.
    std::string Length(int width, bool decimal) {
        if (Below(4) == 0)
            return decimal ? Decimal(width) : Hex(width);
        return std::string(static_cast<std::size_t>(width - 1), '0') + (decimal ? Decimal(1) : Hex(1));
    }
    std::string Bytes(int count) {
        std::string s;
        for (int i = 0; i < count; ++i)
            s += " " + Hex(2);
        return s;
    }
    // The same fields with one separating blank made wider, which the library's scanner
    // reads alike but the plain layout does not allow.
    std::string Respaced(const std::string& line) {
        std::vector<std::size_t> blanks;
        for (std::size_t i = 5; i < line.size(); ++i)
            if (line[i] == ' ' && line[i - 1] != ' ')
                blanks.push_back(i);
        std::string wider = line;
        wider.insert(blanks[Below(static_cast<unsigned>(blanks.size()))], Below(2) ? " " : "\t");
        return wider;
    }

private:
    unsigned Below(unsigned n) { return std::uniform_int_distribution<unsigned>(0, n - 1)(m_random); }
    std::string Pick(const char* set, int count) {
        std::string s;
        const std::string chars(set);
        for (int i = 0; i < count; ++i)
            s += chars[Below(static_cast<unsigned>(chars.size()))];
        return s;
    }

    std::mt19937 m_random;
};

std::string Read(const std::string& line, bool v701) {
    CTraceItemI item;
    if (v701)
        item.ParseLineV701(line.c_str(), 1);
    else
        item.ParseLine(line.c_str(), 1);
    return Describe(item);
}

void ExpectSameEitherWay(FrameLines& make, const std::string& line, bool v701) {
    const std::string wider = make.Respaced(line);
    ASSERT_NE(wider, line);
    EXPECT_EQ(Read(line, v701), Read(wider, v701)) << '"' << line << "\" and \"" << wider << '"';
}

} // namespace

TEST(FrameLines, ChannelFramesReadTheSameInAnySpacing) {
    FrameLines make(1);
    for (const char* type : {"5000", "5800", "6000", "6800"})
        for (int round = 0; round < 500; ++round)
            ExpectSameEitherWay(make,
                                std::string(type) + " " + make.Hex(2) + " " + make.Hex(8) + " " + make.Decimal(10) +
                                    " " + make.Length(4, false) + make.Bytes(8),
                                false);
}

TEST(FrameLines, LegacyFramesReadTheSameInAnySpacing) {
    FrameLines make(2);
    for (const char* type : {"0020", "0021"})
        for (int round = 0; round < 500; ++round)
            ExpectSameEitherWay(make,
                                std::string(type) + " " + make.Hex(8) + " " + make.Hex(4) + " " +
                                    make.Length(2, false) + make.Bytes(12),
                                false);
    for (const char* type : {"8012", "8013"})
        for (int round = 0; round < 500; ++round)
            ExpectSameEitherWay(
                make, std::string(type) + " " + make.Hex(8) + " " + make.Length(4, false) + make.Bytes(12) + " ",
                false);
}

TEST(FrameLines, V701FramesReadTheSameInAnySpacing) {
    FrameLines make(3);
    for (const char* type : {"5000", "5800", "6000", "6800"})
        for (int round = 0; round < 500; ++round)
            ExpectSameEitherWay(make,
                                std::string(type) + " " + make.RightAligned("0123456789ABCDEF", 8) + " " +
                                    make.RightAligned("0123456789", 10) + " " + make.Length(4, true) + " " +
                                    make.Bytes(8),
                                true);
}

// The short way still reads fields by their width, not by the blanks around them.
TEST(FrameLines, PlainLinesGiveTheirFields) {
    RecordProbe channel;
    channel.item.ParseLine("6800 0a 16426F3F 0000391088 0003 E3 ff F2 CB 0E 21 54 F6", 1);
    EXPECT_EQ(channel.Channel(), 10);
    EXPECT_EQ(channel.Identifier(), 0x16426F3Fu);
    EXPECT_EQ(channel.Extended(), 1);
    EXPECT_EQ(channel.Time(), 391088u);
    EXPECT_EQ(channel.Data(), (std::vector<std::uint8_t>{0xE3, 0xFF, 0xF2}));

    RecordProbe legacy;
    legacy.item.ParseLine("0020 0005F863 AEEA 0D D2 62 E1 87 33 42 C6 13 4D 45 31 4B", 1);
    EXPECT_EQ(legacy.Time(), 0x5F863u);
    EXPECT_EQ(legacy.Identifier(), 0x07E162D2u); // low byte first, bit 31 the extended flag
    EXPECT_EQ(legacy.Extended(), 1);
    EXPECT_EQ(legacy.Data(), (std::vector<std::uint8_t>{0x33, 0x42, 0xC6, 0x13, 0x4D, 0x45, 0x31, 0x4B}));

    RecordProbe v701;
    v701.item.ParseLineV701("6800  6B509D8     391174 0007  EF F4 65 FB 5D 57 8B 9D", 1);
    EXPECT_EQ(v701.Identifier(), 0x6B509D8u);
    EXPECT_EQ(v701.Time(), 391174u);
    EXPECT_EQ(v701.Data().size(), 7u);
}

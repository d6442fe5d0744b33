#include "xpvt/BitFieldImpl.h"

#include <gtest/gtest.h>

#include <string>

using ZDTAnalyzer::Xpvt::BitFieldImpl;

namespace {

std::string formatted(const BitFieldImpl& bits, unsigned start, unsigned count, char separator = ' ') {
    char buffer[3 * 32 + 1];
    const std::size_t length = bits.formatBytes(buffer, start, count, separator);
    EXPECT_EQ(length, std::string(buffer).size()) << "returned length must match the NUL";
    return buffer;
}

std::string lineOf(const char* text, unsigned start = 0) {
    BitFieldImpl bits;
    bits.init(text);
    std::string line = "stale text from an earlier line";
    bits.formatLine(line, start);
    return line;
}

} // namespace

TEST(BitFieldImplTest, ReadsHexPairsSkippingEverythingElse) {
    BitFieldImpl bits;
    bits.init("22 f1-90,0xAb");
    // In "0xAb" the x is skipped: 0 and A pair up, and the lone b is a byte of its own.
    EXPECT_EQ(bits.getLength(), 5u);
    EXPECT_EQ(formatted(bits, 0, 8), "22 F1 90 0A 0B");

    bits.init("1");
    EXPECT_EQ(bits.getLength(), 1u);
    EXPECT_EQ(formatted(bits, 0, 8), "01");

    bits.init("");
    EXPECT_EQ(bits.getLength(), 0u);
    EXPECT_EQ(formatted(bits, 0, 8), "");

    bits.init("zz  ..");
    EXPECT_EQ(bits.getLength(), 0u);

    bits.init(nullptr);
    EXPECT_EQ(bits.getLength(), 0u);
}

TEST(BitFieldImplTest, InitReplacesThePreviousMessage) {
    BitFieldImpl bits;
    bits.init("0102030405");
    bits.init("FF");
    EXPECT_EQ(bits.getLength(), 1u);
    EXPECT_EQ(formatted(bits, 0, 8), "FF");
}

TEST(BitFieldImplTest, FormatBytesStopsAtCountAndAtTheEnd) {
    BitFieldImpl bits;
    bits.init("000102030405060708090a0b");
    EXPECT_EQ(formatted(bits, 0, 8), "00 01 02 03 04 05 06 07");
    EXPECT_EQ(formatted(bits, 8, 8), "08 09 0A 0B");
    EXPECT_EQ(formatted(bits, 10, 1), "0A");
    EXPECT_EQ(formatted(bits, 12, 8), "");
    EXPECT_EQ(formatted(bits, 40, 8), "");
    EXPECT_EQ(formatted(bits, 0, 0), "");
    EXPECT_EQ(formatted(bits, 0, 3, ':'), "00:01:02");
}

TEST(BitFieldImplTest, LineLayoutKeepsTheSecondGroupAtColumn26) {
    // Full line: 8 bytes (23 characters), three blanks, 8 bytes.
    const std::string full = lineOf("000102030405060708090A0B0C0D0E0F1011");
    EXPECT_EQ(full, "00 01 02 03 04 05 06 07   08 09 0A 0B 0C 0D 0E 0F");
    EXPECT_EQ(full.size(), 26u + 23u);
    // A short second group still starts at 26, and nothing trails.
    EXPECT_EQ(lineOf("000102030405060708"), "00 01 02 03 04 05 06 07   08");
    // Eight bytes or fewer: no separator blanks at all.
    EXPECT_EQ(lineOf("0001020304050607"), "00 01 02 03 04 05 06 07");
    EXPECT_EQ(lineOf("AB"), "AB");
    EXPECT_EQ(lineOf(""), "");
    // Later lines start at their own byte.
    EXPECT_EQ(lineOf("000102030405060708090A0B0C0D0E0F1011", 16), "10 11");
    EXPECT_EQ(lineOf("000102030405060708090A0B0C0D0E0F1011", 32), "");
}

TEST(BitFieldImplTest, LineCountRoundsUpBySixteen) {
    BitFieldImpl bits;
    const std::pair<const char*, unsigned> cases[] = {
        {"", 0}, {"01", 1}, {"000102030405060708090A0B0C0D0E0F", 1}, {"000102030405060708090A0B0C0D0E0F10", 2}};
    for (const auto& [text, lines] : cases) {
        bits.init(text);
        EXPECT_EQ(bits.lineCount(), lines) << text;
    }
}

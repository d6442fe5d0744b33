#include "support/TempDir.h"
#include "trace/CBufFile.h"
#include "trace/ChannelTimes.h"
#include "trace/ChunkedArray.h"
#include "trace/IndexTimeReader.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>

namespace {

TEST(ChunkedArray, KeepsValuesAcrossChunksAndClears) {
    ChunkedArray array;
    const std::uint32_t count = ChunkedArray::ChunkEntries * 3 + 17;
    for (std::uint32_t i = 0; i < count; ++i)
        ASSERT_TRUE(array.Append(i * 7u));
    EXPECT_EQ(array.Size(), count);
    for (std::uint32_t i : {0u, 16383u, 16384u, 49151u, 49152u, count - 1})
        EXPECT_EQ(array.Get(i), i * 7u);
    EXPECT_GE(array.BytesAllocated(), std::size_t(4) * ChunkedArray::ChunkEntries * 4);
    array.Clear();
    EXPECT_EQ(array.Size(), 0u);
    ASSERT_TRUE(array.Append(5));
    EXPECT_EQ(array.Get(0), 5u);
}

TEST(OffsetArray, HoldsOffsetsBeyondFourGibibytesInFourBytesEach) {
    OffsetArray offsets;
    std::vector<std::uint64_t> expected;
    std::uint64_t offset = 0xFFFF0000ull;
    for (int i = 0; i < 100000; ++i) {
        expected.push_back(offset);
        ASSERT_TRUE(offsets.Append(offset));
        offset += (i % 1000 == 999) ? 0x100000000ull * 3 + 5 : 57; // occasional jumps of several 4 GiB steps
    }
    for (std::uint32_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(offsets.Get(i), expected[i]) << i;
    EXPECT_LT(offsets.BytesAllocated(), expected.size() * 4 + 64 * 1024);
}

TEST(ChannelTimes, ReturnsThePreviousTimeOfTheSameChannel) {
    ChannelTimes times;
    EXPECT_EQ(times.Exchange(1, 100), 0u);
    EXPECT_EQ(times.Exchange(2, 150), 0u);
    EXPECT_EQ(times.Exchange(1, 200), 100u);
    EXPECT_EQ(times.Exchange(-10, 300), 0u);
    EXPECT_EQ(times.Exchange(1, 400), 200u);
    EXPECT_EQ(times.Size(), 3u);
}

TEST(BufFile, ReadsLinesAcrossWindowBordersAndBackwards) {
    TempDir dir;
    std::string text;
    std::vector<std::uint64_t> starts;
    for (int i = 0; i < 3000; ++i) {
        starts.push_back(text.size());
        text += "line " + std::to_string(i) + std::string(i % 37, '.') + "\r\n";
    }
    CBufFile file(256);
    ASSERT_TRUE(file.Open(dir.Write("lines.txt", text)));
    std::uint64_t offset = 0;
    for (int i = 0; i < 3000; ++i) {
        const char* line = file.GetLine(offset);
        ASSERT_NE(line, nullptr) << i;
        ASSERT_EQ(std::string(line), "line " + std::to_string(i) + std::string(i % 37, '.'));
        offset = file.LineEndOffset() + 2;
    }
    EXPECT_EQ(file.GetLine(offset), nullptr);
    for (int i = 2999; i >= 0; i -= 7) {
        const char* line = file.GetLine(starts[i]);
        ASSERT_NE(line, nullptr) << i;
        ASSERT_EQ(std::string(line), "line " + std::to_string(i) + std::string(i % 37, '.'));
    }
}

TEST(BufFile, LinesThatDoNotFitOrDoNotEndGiveNull) {
    TempDir dir;
    CBufFile file;
    ASSERT_TRUE(file.Open(dir.Write("a", std::string(8191, 'a') + "\r\n" + std::string(8192, 'b') + "\r\nlast")));
    ASSERT_NE(file.GetLine(0), nullptr);
    EXPECT_EQ(file.GetLine(8193), nullptr);
    EXPECT_EQ(file.GetLine(8193 + 8194), nullptr);   // last line without a carriage return
    EXPECT_EQ(file.GetLine(1u << 30), nullptr);
    CBufFile closed;
    EXPECT_EQ(closed.GetLine(0), nullptr);
    EXPECT_FALSE(closed.Open(dir.File("missing")));
}

TEST(IndexTimeReader, ChannelTokensKeepTheirArithmetic) {
    EXPECT_EQ(ParseChannelToken("01", 2), 1);
    EXPECT_EQ(ParseChannelToken("0A", 2), 10);
    EXPECT_EQ(ParseChannelToken("0a", 2), -10);
    EXPECT_EQ(ParseChannelToken("0f", 2), -5);
    EXPECT_EQ(ParseChannelToken("1x", 2), 17); // a non-digit repeats the digit before it
    EXPECT_EQ(ParseChannelToken("", 0), 0);
    EXPECT_EQ(ParseChannelToken("18DAF1101", 9), static_cast<int>(0x8DAF1101u)); // wraps, as 32 bits do
}

TEST(IndexTimeReader, ReadsTimesByType) {
    auto facts = [](const char* line) {
        IndexLineFacts read;
        ReadIndexLineFacts(line, std::strlen(line), read);
        return read;
    };
    EXPECT_EQ(facts("0000 000000FF").time, 0xFFu);
    EXPECT_EQ(facts("0000 00000100 trailing").time, 0x100u);
    EXPECT_EQ(facts("00FF 00000100").time, 0u);
    EXPECT_EQ(facts("FF01 00000100").time, 0u);
    EXPECT_EQ(facts("4408 01 X 0000001000").time, 0u);
    EXPECT_EQ(facts("4407 01 X 0000001000").time, 1000u);
    EXPECT_EQ(facts("440C 01 X 0000001000").time, 1000u);
    EXPECT_EQ(facts("5800 02  000007E8   0000002000 0008").time, 2000u);
    EXPECT_EQ(facts("6800 02").time, 0u);
    EXPECT_EQ(facts("0038 00000100").time, 0u);
    EXPECT_TRUE(facts("0091").flex);
    EXPECT_TRUE(facts("8026 00000001").identifier);
    EXPECT_FALSE(facts("8024 00000001").identifier);
    EXPECT_TRUE(facts("0035 00000001").sourceDestinationPriority);
    EXPECT_EQ(facts("").time, 0u);
    EXPECT_EQ(facts("00").time, 0u);
    EXPECT_EQ(IndexLineType("8013", 4), 0x8013);
    EXPECT_EQ(IndexLineType("80", 2), 0x80FE); // missing characters read as NUL
}

// The hand-written field readers must agree with the C library on any input.
TEST(IndexTimeReader, FieldReadersAgreeWithTheCLibrary) {
    std::mt19937 random(7);
    const std::string alphabet = "0123456789abcdefABCDEFxX+- \t";
    for (int round = 0; round < 20000; ++round) {
        std::string text;
        const int length = static_cast<int>(random() % 14);
        for (int i = 0; i < length; ++i)
            text += alphabet[random() % alphabet.size()];
        unsigned expected = 0;
        std::sscanf(text.c_str(), "%8x", &expected);
        ASSERT_EQ(ScanHexField(text.c_str(), 8), expected) << '"' << text << '"';
        ASSERT_EQ(AtolTruncated(text.c_str(), text.size()), static_cast<std::uint32_t>(std::atol(text.c_str())))
            << '"' << text << '"';
    }
    for (const char* big : {"99999999999999999999", "-99999999999999999999", "4294967296", "-1"})
        EXPECT_EQ(AtolTruncated(big, std::strlen(big)), static_cast<std::uint32_t>(std::atol(big))) << big;
}

} // namespace

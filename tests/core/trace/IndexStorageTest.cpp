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

TEST(OffsetArray, BulkAppendsAgreeWithSingleOnesAcrossHighWordSteps) {
    std::vector<std::uint64_t> offsets;
    std::uint64_t offset = 0xFFFFF000ull;
    for (int i = 0; i < 70000; ++i) {
        offsets.push_back(offset);
        offset += (i % 20000 == 19999) ? 0x100000000ull * 2 + 3 : (i % 7 == 0 ? 0 : 29);
    }
    OffsetArray single, bulk;
    for (const std::uint64_t o : offsets)
        ASSERT_TRUE(single.Append(o));
    // Runs of every size, some across chunk borders and high-word steps.
    for (std::size_t at = 0, run = 1; at < offsets.size(); at += run, run = run * 3 % 40000 + 1)
        ASSERT_TRUE(bulk.AppendRange(offsets.data() + at, std::min(run, offsets.size() - at)));
    ASSERT_EQ(bulk.Size(), offsets.size());
    for (std::uint32_t i = 0; i < offsets.size(); ++i) {
        ASSERT_EQ(bulk.Get(i), offsets[i]) << i;
        ASSERT_EQ(single.Get(i), offsets[i]) << i;
    }
}

TEST(OffsetArray, ASharedArrayShowsTheOtherUntilWrittenAnew) {
    OffsetArray all, visible;
    visible.ShareWith(all);
    const std::uint64_t big = 0x100000000ull * 5;
    for (std::uint64_t i = 0; i < 40000; ++i)
        ASSERT_TRUE(all.Append(big + i * 10));
    // Appended after the share began, and shown all the same, without memory of its own.
    EXPECT_TRUE(visible.IsShared());
    EXPECT_EQ(visible.Size(), 40000u);
    EXPECT_EQ(visible.Get(39999), big + 399990);
    EXPECT_EQ(visible.BytesAllocated(), 0u);

    // Appending takes a copy first, so the two part ways.
    ASSERT_TRUE(visible.Append(big + 400000));
    EXPECT_FALSE(visible.IsShared());
    EXPECT_EQ(visible.Size(), 40001u);
    EXPECT_EQ(all.Size(), 40000u);
    EXPECT_EQ(visible.Get(12345), big + 123450);
    EXPECT_EQ(visible.Get(40000), big + 400000);

    // Clearing ends a share without a copy.
    visible.ShareWith(all);
    visible.Clear();
    EXPECT_EQ(visible.Size(), 0u);
    ASSERT_TRUE(visible.Append(7));
    EXPECT_EQ(visible.Get(0), 7u);
    EXPECT_EQ(all.Get(0), big);
}

TEST(ChunkedArray, SharedStepsAreTheDifferencesOfTheOther) {
    ChunkedArray absolute, steps;
    steps.ShareStepsOf(absolute);
    const std::uint32_t values[] = {100, 100, 250, 0xFFFFFFF0u, 5, 5, 0}; // steps wrap as 32 bits do
    for (const std::uint32_t value : values)
        ASSERT_TRUE(absolute.Append(value));
    ASSERT_EQ(steps.Size(), 7u);
    const std::uint32_t expected[] = {100, 0, 150, 0xFFFFFFF0u - 250, 5 - 0xFFFFFFF0u, 0, 0u - 5};
    for (std::uint32_t i = 0; i < 7; ++i)
        EXPECT_EQ(steps.Get(i), expected[i]) << i;
    EXPECT_EQ(steps.BytesAllocated(), 0u);

    // Written out on the first append, then on its own.
    ASSERT_TRUE(steps.Append(42));
    EXPECT_FALSE(steps.IsShared());
    ASSERT_TRUE(absolute.Append(1000));
    ASSERT_EQ(steps.Size(), 8u);
    for (std::uint32_t i = 0; i < 7; ++i)
        EXPECT_EQ(steps.Get(i), expected[i]) << i;
    EXPECT_EQ(steps.Get(7), 42u);

    steps.ShareStepsOf(absolute);
    steps.Clear();
    EXPECT_EQ(steps.Size(), 0u);
    EXPECT_EQ(absolute.Size(), 8u);
}

TEST(ChunkedArray, GeneratedAppendsFillChunkByChunk) {
    ChunkedArray array;
    ASSERT_TRUE(array.Append(1));
    std::size_t calls = 0;
    const std::size_t count = ChunkedArray::ChunkEntries * 2 + 5;
    ASSERT_TRUE(array.AppendGenerated(count, [&](std::uint32_t* into, std::size_t first, std::uint32_t n) {
        ++calls;
        for (std::uint32_t i = 0; i < n; ++i)
            into[i] = static_cast<std::uint32_t>(first + i) * 3;
    }));
    EXPECT_EQ(calls, 3u); // the rest of the first chunk, one whole, and the start of a third
    ASSERT_EQ(array.Size(), count + 1);
    EXPECT_EQ(array.Get(0), 1u);
    for (std::uint32_t i = 0; i < count; ++i)
        ASSERT_EQ(array.Get(i + 1), i * 3) << i;
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
    EXPECT_EQ(file.GetLine(8193 + 8194), nullptr); // last line without a carriage return
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

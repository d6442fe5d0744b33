#include "support/TempDir.h"
#include "trace/CBufFile.h"
#include "trace/CTraceFile.h"
#include "trace/IndexTimeReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace {

// The walk as the line window defines it, one GetLine after the other: the reference
// the block-wise, two-threaded index pass must agree with.
std::vector<std::uint64_t> ReferenceRecordOffsets(const std::string& path, std::uint64_t start) {
    CBufFile file;
    EXPECT_TRUE(file.Open(path));
    std::vector<std::uint64_t> records;
    std::uint64_t offset = start;
    for (const char* line = file.GetLine(offset); line != nullptr; line = file.GetLine(offset)) {
        if (std::strncmp(line, "[AnalyzerHistory]", 17) == 0) {
            offset = file.LineEndOffset() + 2;
            int lines = 0;
            for (line = file.GetLine(offset); line != nullptr && *line != '\0' && ++lines <= 200;
                 line = file.GetLine(offset))
                offset = file.LineEndOffset() + 2;
            continue;
        }
        const char c = line[0];
        const bool record = c == ' ' || c == '0' || (c >= '4' && c <= '8') || c == 'F' || c == 'f';
        if (record)
            records.push_back(offset);
        offset = file.LineEndOffset() + 2;
    }
    return records;
}

// Mostly CAN frames, with the odd line end, empty line, history section and overlong
// line sprinkled in, so that the block borders and the guessed split fall on them.
std::string AwkwardTrace(unsigned seed, std::size_t bytes) {
    std::mt19937 random(seed);
    std::string text = "[TraceData]\r\n";
    unsigned time = 1000;
    while (text.size() < bytes) {
        char line[96];
        time += random() % 3000;
        std::snprintf(line, sizeof line, "%04X %02x %08X %010u 0008 01 02 03 04 05 06 07 08",
                      (random() % 4 == 0) ? 0x6000u : 0x5000u, static_cast<unsigned>(random() % 4),
                      static_cast<unsigned>(random() % 0x800), time);
        text += line;
        switch (random() % 200) {
        case 0:
            text += "\r\r\n";
            break; // the next line starts at the second carriage return's LF
        case 1:
            text += "\r";
            break; // a lone carriage return swallows a character
        case 2:
            text += "\r\n\r\n";
            break; // an empty line
        case 3:
            text += "\r\n[AnalyzerHistory]\r\nCANFilter=1:a.flt\r\n\r\n";
            break;
        case 4:
            text += "\r\n1000 not a record\r\nFF01\r\n 000 00000010\r\n";
            break;
        default:
            text += "\r\n";
            break;
        }
    }
    return text;
}

TEST(ParallelIndex, AgreesWithTheLineWindowWalkOnAwkwardFiles) {
    TempDir dir;
    for (unsigned seed = 1; seed <= 6; ++seed) {
        const std::size_t size = (1u << 20) + seed * 700001u; // past the size that is walked by two threads
        const std::string path = dir.Write("awkward.trc", AwkwardTrace(seed, size));
        const auto expected = ReferenceRecordOffsets(path, 13);
        CTraceFile file;
        ASSERT_TRUE(file.OpenTrace(path));
        ASSERT_EQ(file.TotalCount(), expected.size()) << "seed " << seed;
        for (std::uint32_t i = 0; i < expected.size(); ++i)
            ASSERT_EQ(file.AllOffsets().Get(i), expected[i]) << "seed " << seed << " record " << i;
        EXPECT_TRUE(file.HasHistory());
        EXPECT_EQ(file.GetLastFilter(), "a.flt");
    }
}

// A carriage return doubled right where the second thread guesses a line start: the
// guess is wrong, and only the first thread's walk may count.
TEST(ParallelIndex, AWrongGuessAtTheSplitIsThrownAway) {
    TempDir dir;
    const std::string record = "5000 01 000007E8 0000001000 0008 01 02 03 04 05 06 07 08";
    const std::size_t total = 2000013, middle = 13 + (total - 13) / 2;
    std::string text = "[TraceData]\r\n";
    while (text.size() + record.size() + 2 < middle - 200)
        text += record + "\r\n";
    text += record + std::string(middle - 1 - text.size() - record.size(), ' ') + "\r\r\n";
    ASSERT_EQ(text.size(), middle + 2);
    while (text.size() + record.size() + 2 < total - 100)
        text += record + "\r\n";
    text += "0000" + std::string(total - text.size() - 6, ' ') + "\r\n";
    ASSERT_EQ(text.size(), total);
    const std::string path = dir.Write("split.trc", text);
    const auto expected = ReferenceRecordOffsets(path, 13);
    CTraceFile file;
    ASSERT_TRUE(file.OpenTrace(path));
    ASSERT_EQ(file.TotalCount(), expected.size());
    for (std::uint32_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(file.AllOffsets().Get(i), expected[i]) << i;
    // The line behind the doubled carriage return starts with its line feed: no record.
    EXPECT_EQ(std::count(expected.begin(), expected.end(), middle + 2), 0);
}

TEST(ParallelIndex, TimesRunInFileOrderAcrossTheSplit) {
    TempDir dir;
    std::string text = "[Description]\r\nTitle=CAN\r\nSchema=601\r\n[TraceData]\r\n";
    std::vector<std::uint32_t> times;
    std::mt19937 random(3);
    std::uint32_t time = 0;
    while (text.size() < (3u << 20)) {
        time += 1 + random() % 5000;
        char line[96];
        std::snprintf(line, sizeof line, "5000 %02x 000007E8 %010u 0008 01 02 03 04 05 06 07 08\r\n",
                      static_cast<unsigned>(times.size() % 3), time);
        text += line;
        times.push_back(time);
    }
    CTraceFile file;
    ASSERT_TRUE(file.OpenTrace(dir.Write("t.trc", text)));
    ASSERT_EQ(file.TotalCount(), times.size());
    for (std::uint32_t i = 0; i < times.size(); ++i) {
        ASSERT_EQ(file.AbsoluteTimes().Get(i), times[i]) << i;
        ASSERT_EQ(file.DeltaTimes().Get(i), times[i] - (i > 0 ? times[i - 1] : 0)) << i;
        ASSERT_EQ(file.ChannelDeltas().Get(i), i >= 3 ? times[i - 3] : 0) << i;
    }
}

} // namespace

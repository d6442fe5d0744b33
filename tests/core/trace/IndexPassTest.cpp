#include "ClassicTraceGenerator.h"
#include "support/TempDir.h"
#include "trace/CBufFile.h"
#include "trace/CTraceFile.h"
#include "trace/ChannelTimes.h"
#include "trace/IndexTimeReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// The index of a trace worked out line by line with the window reader and the general
// field reader: what the block-wise, two-threaded pass with its quick readers must give.
struct ReferenceIndex {
    std::vector<std::uint64_t> offsets;
    std::vector<std::uint32_t> absolute;
    std::vector<std::uint32_t> delta;
    std::vector<std::uint32_t> channelDeltas;
    bool channel = false, identifier = false, source = false, flex = false;
    bool class0 = false, class8 = false, class4 = false;
};

ReferenceIndex IndexLineByLine(const std::string& path, const CTraceFile& opened) {
    CBufFile file;
    EXPECT_TRUE(file.Open(path));
    ReferenceIndex index;
    ChannelTimes channelTimes;
    std::uint32_t absolute = 0, previous = 0;
    std::uint64_t offset = 0;
    const char* line = file.GetLine(offset);
    while (line != nullptr && std::strncmp(line, "[TraceData]", 11) != 0) {
        offset = file.LineEndOffset() + 2;
        line = file.GetLine(offset);
    }
    offset = file.LineEndOffset() + 2;
    for (line = file.GetLine(offset); line != nullptr; line = file.GetLine(offset)) {
        offset = file.LineEndOffset() + 2;
        if (std::strncmp(line, "[AnalyzerHistory]", 17) == 0) {
            int lines = 0;
            for (line = file.GetLine(offset); line != nullptr && *line != '\0' && ++lines <= 200;
                 line = file.GetLine(offset))
                offset = file.LineEndOffset() + 2;
            continue;
        }
        const char c = line[0];
        const bool class0 = c == 'F' || c == 'f', class1 = c == ' ' || c == '0', class2 = c == '8',
                   class3 = c >= '4' && c <= '7';
        if (!class0 && !class1 && !class2 && !class3)
            continue;
        index.offsets.push_back(file.LineOffset());
        index.class0 = index.class0 || class1;
        index.class8 = index.class8 || class2;
        index.class4 = index.class4 || class3;
        if (class3 && opened.GetSchemaNumber() >= 701) {
            index.channel = index.identifier = true;
            continue;
        }
        // The whole line up to its carriage return, a zero byte in it included.
        IndexLineFacts facts;
        ReadIndexLineFacts(line, file.LineEndOffset() - file.LineOffset(), facts);
        index.channel = index.channel || facts.channel;
        index.identifier = index.identifier || facts.identifier;
        index.source = index.source || facts.sourceDestinationPriority;
        index.flex = index.flex || facts.flex;
        std::uint32_t step = 0;
        if (facts.time != 0 && !opened.IsDeltaTimes()) {
            absolute = facts.time;
            step = facts.time - previous;
            previous = facts.time;
        } else if (facts.time != 0) {
            step = facts.time;
            absolute += facts.time;
        }
        index.absolute.push_back(absolute);
        index.delta.push_back(step);
        if (opened.IsOtherTrace())
            index.channelDeltas.push_back(channelTimes.Exchange(facts.channelNumber, absolute));
    }
    return index;
}

void ExpectSameIndex(const CTraceFile& file, const ReferenceIndex& expected, const std::string& label) {
    ASSERT_EQ(file.TotalCount(), expected.offsets.size()) << label;
    ASSERT_EQ(file.VisibleOffsets().Size(), expected.offsets.size()) << label;
    for (std::uint32_t i = 0; i < expected.offsets.size(); ++i) {
        ASSERT_EQ(file.AllOffsets().Get(i), expected.offsets[i]) << label << " record " << i;
        ASSERT_EQ(file.VisibleOffsets().Get(i), expected.offsets[i]) << label << " record " << i;
    }
    ASSERT_EQ(file.AbsoluteTimes().Size(), expected.absolute.size()) << label;
    ASSERT_EQ(file.DeltaTimes().Size(), expected.delta.size()) << label;
    ASSERT_EQ(file.ChannelDeltas().Size(), expected.channelDeltas.size()) << label;
    for (std::uint32_t i = 0; i < expected.absolute.size(); ++i) {
        ASSERT_EQ(file.AbsoluteTimes().Get(i), expected.absolute[i]) << label << " time " << i;
        ASSERT_EQ(file.DeltaTimes().Get(i), expected.delta[i]) << label << " time " << i;
    }
    for (std::uint32_t i = 0; i < expected.channelDeltas.size(); ++i)
        ASSERT_EQ(file.ChannelDeltas().Get(i), expected.channelDeltas[i]) << label << " time " << i;
    EXPECT_EQ(file.SeenChannel(), expected.channel) << label;
    EXPECT_EQ(file.SeenIdentifier(), expected.identifier) << label;
    EXPECT_EQ(file.SeenSource(), expected.source) << label;
    EXPECT_EQ(file.SeenFlex(), expected.flex) << label;
    EXPECT_EQ(file.SeenClass0(), expected.class0) << label;
    EXPECT_EQ(file.SeenClass8(), expected.class8) << label;
    EXPECT_EQ(file.SeenClass4(), expected.class4) << label;
}

// Every schema and both kinds of title, with every record type and every hostile line,
// large enough for the two-threaded pass.
TEST(IndexPass, AgreesWithALineByLineIndexOnEverySchemaAndMix) {
    TempDir dir;
    struct Case {
        const char* schema;
        const char* title;
        zdtgen::RecordMix mix;
    };
    const Case cases[] = {
        {"601", "ZDT Trace File", zdtgen::RecordMix::All},   {"2", "ZDT Trace File", zdtgen::RecordMix::All},
        {"501", "ZDT Trace File", zdtgen::RecordMix::KLine}, {"701", "ZDT Trace File", zdtgen::RecordMix::All},
        {"5", "CAN Onboard", zdtgen::RecordMix::Traffic},    {"701", "CAN Onboard", zdtgen::RecordMix::Can},
        {"601", "CAN Onboard", zdtgen::RecordMix::All},
    };
    std::uint64_t seed = 20;
    for (const Case& c : cases) {
        zdtgen::ClassicTraceOptions options;
        options.schema = c.schema;
        options.title = std::string(c.title);
        options.mix = c.mix;
        options.seed = ++seed;
        options.targetBytes = 2500000;
        options.hostile = zdtgen::HostileExtras::AllKinds();
        options.hostile.every = 97;
        options.historyPlacement = zdtgen::HistoryPlacement::InTraceData;
        options.history = {{"/x/y.flt", '1'}};
        const std::string label = std::string(c.schema) + " " + c.title;
        const std::string path = dir.Write("mixed.trc", zdtgen::MakeClassicTrace(options));
        CTraceFile file;
        ASSERT_TRUE(file.OpenTrace(path)) << label;
        ExpectSameIndex(file, IndexLineByLine(path, file), label);
        EXPECT_TRUE(file.HasHistory()) << label;
    }
}

// After the pass the visible rows are all rows and the time steps follow from the absolute
// times without lists of their own; a filter pass writes both anew.
TEST(IndexPass, VisibleOffsetsAndTimeStepsTakeNoMemoryUntilWrittenAnew) {
    TempDir dir;
    zdtgen::ClassicTraceOptions options;
    options.targetBytes = 3000000;
    const std::string path = dir.Write("t.trc", zdtgen::MakeClassicTrace(options));
    CTraceFile file;
    ASSERT_TRUE(file.OpenTrace(path));
    const std::uint32_t rows = file.AllOffsets().Size();
    ASSERT_GT(rows, 100000u);
    EXPECT_LT(file.IndexBytes(), std::size_t(rows) * 8 + 2 * 1024 * 1024); // offsets and absolute times
    const std::uint64_t third = file.AllOffsets().Get(2);
    const std::uint32_t step = file.DeltaTimes().Get(2);

    // As the document's filter pass does: empty the lists, then append the rows kept.
    file.VisibleOffsets().Clear();
    file.DeltaTimes().Clear();
    EXPECT_EQ(file.VisibleOffsets().Size(), 0u);
    EXPECT_EQ(file.DeltaTimes().Size(), 0u);
    EXPECT_EQ(file.AllOffsets().Size(), rows);
    file.VisibleOffsets().Append(third);
    file.DeltaTimes().Append(step + 1);
    EXPECT_EQ(file.VisibleOffsets().Get(0), third);
    EXPECT_EQ(file.DeltaTimes().Get(0), step + 1);

    // A new open shares again.
    ASSERT_TRUE(file.OpenTrace(path));
    EXPECT_EQ(file.VisibleOffsets().Size(), rows);
    EXPECT_EQ(file.DeltaTimes().Get(2), step);
}

} // namespace

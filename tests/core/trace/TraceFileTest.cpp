#include "support/RecordingMessages.h"
#include "support/TempDir.h"
#include "trace/CTraceFile.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

std::string Head(const std::string& title, const std::string& schema) {
    return CrLf({"[Description]", "Title=" + title, "Schema=" + schema, "Creator=unit test", "ProductVersion=7.1.2",
                 "InterfaceBoard=VCI-4", "Date=21.11.2026", "Time=14:05:09"});
}

struct Opened {
    std::unique_ptr<CTraceFile> file = std::make_unique<CTraceFile>();
    RecordingMessages messages;
    bool ok = false;
};

std::unique_ptr<Opened> OpenText(const TempDir& dir, const std::string& text) {
    auto opened = std::make_unique<Opened>();
    opened->ok = opened->file->OpenTrace(dir.Write("t.trc", text), &opened->messages);
    return opened;
}

TEST(TraceFileOpen, RejectsFilesWithoutTraceDataOrWithUnknownSchema) {
    TempDir dir;
    const struct {
        std::string text;
        std::vector<std::string> boxes;
    } cases[] = {
        {"", {"No valid ZDT - Trace File"}},
        {Head("ZDT Trace File", "601"), {"No valid ZDT - Trace File"}},
        {Head("ZDT Trace File", "702") + CrLf({"[TraceData]"}), {"Invalid Version of Trace File"}},
        {Head("ZDT Trace File", "601 ") + CrLf({"[TraceData]"}), {"Invalid Version of Trace File"}},
        // LF-only: no carriage return, so not even a first line.
        {"[Description]\nSchema=601\n[TraceData]\n0000 00000010\n", {"No valid ZDT - Trace File"}},
        {std::string("\x00\x01\xff\xfe garbage", 12), {"No valid ZDT - Trace File"}},
    };
    for (const auto& c : cases) {
        auto opened = OpenText(dir, c.text);
        EXPECT_FALSE(opened->ok);
        EXPECT_EQ(opened->messages.Texts(), c.boxes);
    }
}

TEST(TraceFileOpen, MoreThan200HeadLinesFailWithoutMessage) {
    TempDir dir;
    std::string text = "[Description]\r\n";
    for (int i = 0; i < 201; ++i)
        text += "Key" + std::to_string(i) + "=x\r\n";
    text += "[TraceData]\r\n0000 00000010\r\n";
    auto opened = OpenText(dir, text);
    EXPECT_FALSE(opened->ok);
    EXPECT_TRUE(opened->messages.shown.empty());

    std::string fits = "[Description]\r\n";
    for (int i = 0; i < 199; ++i)
        fits += "Key" + std::to_string(i) + "=x\r\n";
    fits += "[TraceData]\r\n0000 00000010\r\n";
    EXPECT_TRUE(OpenText(dir, fits)->ok);
}

TEST(TraceFileOpen, ReadsHeadKeysWithoutRegardToCase) {
    TempDir dir;
    auto opened = OpenText(dir, CrLf({"junk before", "[Description]", "TITLE=ZDT Trace File", "schema=501",
                                      "creator=me", "Unknown=1", "date=1.1.2020", "[TraceData]"}));
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    EXPECT_EQ(f.GetTitle(), "ZDT Trace File");
    EXPECT_EQ(f.GetSchemaNumber(), 501);
    EXPECT_EQ(f.GetCreator(), "me");
    EXPECT_EQ(f.GetProductVersion(), "Unknown");
    EXPECT_EQ(f.GetInterfaceBoard(), "Unknown");
    EXPECT_EQ(f.GetDate(), "1.1.2020");
    EXPECT_TRUE(f.IsZdtTrace());
    EXPECT_TRUE(f.IsDeltaTimes());
    EXPECT_EQ(f.VisibleCount(), 0u);
}

TEST(TraceFileOpen, TitleAndSchemaDecideDeltaTimes) {
    TempDir dir;
    const struct {
        std::string title, schema;
        bool delta, zdt;
    } cases[] = {{"ZDT Trace File", "2", true, true},    {"ZDT Trace File", "5", true, true},
                 {"ZDT Trace File", "501", true, true},  {"ZDT Trace File", "601", false, true},
                 {"ZDT Trace File", "701", false, true}, {"CAN Trace", "2", false, false}};
    for (const auto& c : cases) {
        auto opened = OpenText(dir, Head(c.title, c.schema) + CrLf({"[TraceData]"}));
        ASSERT_TRUE(opened->ok);
        EXPECT_EQ(opened->file->IsDeltaTimes(), c.delta) << c.title << " " << c.schema;
        EXPECT_EQ(opened->file->IsZdtTrace(), c.zdt);
        EXPECT_EQ(opened->file->IsOtherTrace(), !c.zdt);
    }
}

TEST(TraceFileOpen, WithoutDescriptionNeitherZdtNorOther) {
    TempDir dir;
    auto opened = OpenText(dir, CrLf({"[TraceData]", "0000 00000010"}));
    ASSERT_TRUE(opened->ok);
    EXPECT_EQ(opened->file->GetTitle(), "");
    EXPECT_FALSE(opened->file->IsZdtTrace());
    EXPECT_FALSE(opened->file->IsOtherTrace());
    EXPECT_EQ(opened->file->ChannelDeltas().Size(), 0u);
    // No Schema key: the 701 reader fetches records.
    EXPECT_FALSE(opened->file->UsesLegacyReader());
}

TEST(TraceFileIndex, ClassifiesLinesByTheirFirstCharacter) {
    TempDir dir;
    auto opened =
        OpenText(dir, Head("ZDT Trace File", "601") +
                          CrLf({"[TraceData]", "0000 00000010", " 000 00000020", "1000 x", "", "[foo]", "8000 00000030",
                                "4400 01 X 0000000040", "7FFF", "FF01", "f001 lower case", "9000 no", "A000 no"}) +
                          "0000 00000099");
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    // 0000, blank, 8000, 4400, 7FFF, FF01, f001; the last line has no carriage return.
    EXPECT_EQ(f.VisibleCount(), 7u);
    EXPECT_EQ(f.TotalCount(), 7u);
    EXPECT_TRUE(f.SeenClass0());
    EXPECT_TRUE(f.SeenClass8());
    EXPECT_TRUE(f.SeenClass4());
    EXPECT_TRUE(f.SeenChannel());
    EXPECT_EQ(f.AbsoluteTimes().Size(), 7u);
}

TEST(TraceFileIndex, ZeroTimesInheritTheRunningAbsoluteTime) {
    TempDir dir;
    auto opened = OpenText(dir, Head("ZDT Trace File", "601") +
                                    CrLf({"[TraceData]", "0000 00000100", "FF01", "FF02", "FF03", "0000 00000250"}));
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    ASSERT_EQ(f.VisibleCount(), 5u);
    const std::uint32_t absolute[] = {0x100, 0x100, 0x100, 0x100, 0x250};
    const std::uint32_t delta[] = {0x100, 0, 0, 0, 0x150};
    for (std::uint32_t i = 0; i < 5; ++i) {
        EXPECT_EQ(f.AbsoluteTimes().Get(i), absolute[i]) << i;
        EXPECT_EQ(f.DeltaTimes().Get(i), delta[i]) << i;
    }
}

TEST(TraceFileIndex, DeltaFilesAccumulateAbsoluteTimes) {
    TempDir dir;
    auto opened =
        OpenText(dir, Head("ZDT Trace File", "2") +
                          CrLf({"[TraceData]", "0005 00000010", "0003 00000020 0001 41 00", "FF01", "0006 00000005"}));
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    const std::uint32_t absolute[] = {0x10, 0x30, 0x30, 0x35};
    const std::uint32_t delta[] = {0x10, 0x20, 0, 0x5};
    for (std::uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(f.AbsoluteTimes().Get(i), absolute[i]) << i;
        EXPECT_EQ(f.DeltaTimes().Get(i), delta[i]) << i;
    }
}

TEST(TraceFileIndex, TokenLinesGiveChannelTimesInOtherTraces) {
    TempDir dir;
    auto opened = OpenText(dir, Head("CAN Onboard", "601") +
                                    CrLf({"[TraceData]", "5000 01 000007E8 0000001000 0008 01 02 03 04 05 06 07 08",
                                          "5000 02 000007E8 0000001500 0008 01 02 03 04 05 06 07 08",
                                          "6000 01 000007E0 0000002000 0002 01 02 00 00 00 00 00 00",
                                          "0034 00003000 0006 10 F1 33 01 02 03 00 00 00 00 00 00",
                                          "6000 0a 000007E0 0000004000 0002 01 02 00 00 00 00 00 00"}));
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    ASSERT_EQ(f.VisibleCount(), 5u);
    EXPECT_TRUE(f.SeenChannel());
    EXPECT_TRUE(f.SeenIdentifier());
    EXPECT_TRUE(f.SeenSource());
    EXPECT_TRUE(f.SeenPriority());
    EXPECT_TRUE(f.SeenDestination());
    // Previous time of the same channel; the 0034 line has no channel token (channel 0).
    const std::uint32_t channelDeltas[] = {0, 0, 1000, 0, 0};
    for (std::uint32_t i = 0; i < 5; ++i)
        EXPECT_EQ(f.ChannelDeltas().Get(i), channelDeltas[i]) << i;
    EXPECT_EQ(f.AbsoluteTimes().Get(3), 0x3000u);
    EXPECT_EQ(f.DeltaTimes().Get(4), 4000u - 0x3000u);
}

TEST(TraceFileIndex, ClassThreeLinesOf701SkipTheTimePass) {
    TempDir dir;
    auto opened = OpenText(
        dir, Head("ZDT Trace File", "701") +
                 CrLf({"[TraceData]", "0005 X 12345", "5000  000007E8 0000001000 0008  01 02", "8004", "0038 1"}));
    ASSERT_TRUE(opened->ok);
    const CTraceFile& f = *opened->file;
    EXPECT_EQ(f.VisibleCount(), 4u);
    EXPECT_EQ(f.AbsoluteTimes().Size(), 3u);
    EXPECT_TRUE(f.SeenChannel());
    EXPECT_TRUE(f.SeenIdentifier());
    EXPECT_TRUE(f.SeenFlex());
}

TEST(TraceFileIndex, ALineLongerThanTheWindowEndsTheWalk) {
    TempDir dir;
    const std::string longLine = "0000 " + std::string(8192, 'x');
    auto opened = OpenText(dir, Head("ZDT Trace File", "601") +
                                    CrLf({"[TraceData]", "0000 00000010", longLine, "0000 00000020"}));
    ASSERT_TRUE(opened->ok);
    EXPECT_EQ(opened->file->VisibleCount(), 1u);

    const std::string fits = "0000 " + std::string(8186, 'x'); // 8,191 characters and its carriage return
    opened =
        OpenText(dir, Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "0000 00000010", fits, "0000 00000020"}));
    ASSERT_TRUE(opened->ok);
    EXPECT_EQ(opened->file->VisibleCount(), 3u);
}

TEST(TraceFileRecords, GetItemCutsAt256AndStopsAtTheEnd) {
    TempDir dir;
    const std::string longLine = "0000 00000010" + std::string(287, ' ');
    auto opened = OpenText(dir, Head("ZDT Trace File", "601") + CrLf({"[TraceData]", longLine, "0005 00000020"}));
    ASSERT_TRUE(opened->ok);
    CTraceFile& f = *opened->file;
    ASSERT_EQ(f.VisibleCount(), 2u);
    char line[CTraceFile::MaxRecordLine + 1];
    ASSERT_TRUE(f.ReadRecordLine(f.VisibleOffsets().Get(0), line));
    EXPECT_EQ(std::string(line).size(), 256u);
    ASSERT_TRUE(f.ReadRecordLine(f.VisibleOffsets().Get(1), line));
    EXPECT_STREQ(line, "0005 00000020");

    std::unique_ptr<CTraceItemI> second(f.GetItem(1));
    ASSERT_TRUE(second);
    std::uint32_t code = 0;
    second->GetEventCode(code);
    EXPECT_EQ(code, 0x40020002u);
    EXPECT_EQ(f.GetItem(2), nullptr);
    f.ReleaseItem(nullptr);
}

TEST(TraceFileHistory, ReadsTheLastEntryAndAppendsOnce) {
    TempDir dir;
    const std::string path =
        dir.Write("h.trc", Head("ZDT Trace File", "601") +
                               CrLf({"[TraceData]", "0000 00000010", "[AnalyzerHistory]", "CANFilter=1:C:\\flt\\a.flt",
                                     "canfilter=0:b.flt", "CANFilter=plain\\c.flt", "", "0000 00000020"}));
    CTraceFile f;
    ASSERT_TRUE(f.OpenTrace(path));
    EXPECT_TRUE(f.HasHistory());
    EXPECT_EQ(f.GetLastFilter(), "c.flt");
    EXPECT_FALSE(f.GetFilterActive());
    EXPECT_EQ(f.VisibleCount(), 2u); // the walk goes on behind the section

    const std::string fresh =
        dir.Write("n.trc", Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "0000 00000010"}));
    CTraceFile g;
    ASSERT_TRUE(g.OpenTrace(fresh));
    EXPECT_FALSE(g.HasHistory());
    g.CloseTrace();
    ASSERT_TRUE(g.AppendFilterHistory("ids.flt", true));
    EXPECT_EQ(TempDir::Read(fresh), Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "0000 00000010"}) +
                                        "\r\n\r\n[AnalyzerHistory]\r\nCANFilter=1:ids.flt\r\n");
    CTraceFile h;
    ASSERT_TRUE(h.OpenTrace(fresh));
    EXPECT_TRUE(h.HasHistory());
    EXPECT_TRUE(h.GetFilterActive());
    EXPECT_EQ(h.GetLastFilter(), "ids.flt");
    h.CloseTrace();
    ASSERT_TRUE(h.AppendFilterHistory("", false));
    const std::string after = TempDir::Read(fresh);
    const std::string tail = "[AnalyzerHistory]\r\nCANFilter=1:ids.flt\r\nCANFilter=0:\r\n";
    ASSERT_GE(after.size(), tail.size());
    EXPECT_EQ(after.substr(after.size() - tail.size()), tail);
}

TEST(TraceFileHistory, MoreThan200LinesLeaveNoHistory) {
    TempDir dir;
    std::string text = Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "[AnalyzerHistory]"});
    for (int i = 0; i < 201; ++i)
        text += "CANFilter=1:f" + std::to_string(i) + ".flt\r\n";
    CTraceFile f;
    ASSERT_TRUE(f.OpenTrace(dir.Write("t.trc", text)));
    EXPECT_FALSE(f.HasHistory());
    EXPECT_EQ(f.GetLastFilter(), "f199.flt");
}

class CancelAtFirstReport final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long, unsigned long long) override { return false; }
};

TEST(TraceFileOpen, CancelledIndexPassLeavesNothingOpen) {
    TempDir dir;
    std::string text = Head("ZDT Trace File", "601") + "[TraceData]\r\n";
    const std::string record = "0000 00000010 padding padding padding padding padding padding\r\n";
    while (text.size() < 20u * 1024 * 1024)
        text += record;
    CancelAtFirstReport cancel;
    RecordingMessages messages;
    CTraceFile f;
    EXPECT_FALSE(f.OpenTrace(dir.Write("big.trc", text), &messages, &cancel));
    EXPECT_TRUE(f.WasCancelled());
    EXPECT_FALSE(f.IsOpen());
    EXPECT_TRUE(messages.shown.empty());
}

} // namespace

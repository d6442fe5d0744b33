#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"
#include "support/RecordingMessages.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;

class ScriptedFilterDialog final : public CanFilterPrompt {
public:
    explicit ScriptedFilterDialog(const TempDir& dir) : m_dir(dir) {}
    Answer Run(const Request& request) override {
        requests.push_back(request);
        return answer;
    }
    std::string FilterPath(const std::string& name) override { return m_dir.File(name); }

    Answer answer;
    std::vector<Request> requests;

private:
    const TempDir& m_dir;
};

std::vector<std::uint64_t> VisibleOffsets(CAnalyzerDoc& doc) {
    std::vector<std::uint64_t> offsets;
    for (zdt::RowIndex i = 0; i < doc.GetVisibleCount(); ++i)
        offsets.push_back(doc.TraceFile()->VisibleOffsets().Get(i));
    return offsets;
}

std::vector<std::uint32_t> RowTypes(CAnalyzerDoc& doc) {
    std::vector<std::uint32_t> types;
    for (zdt::RowIndex i = 0; i < doc.GetVisibleCount(); ++i) {
        std::unique_ptr<CTraceItemI> item(doc.GetItem(i));
        types.push_back(item ? item->GetTypeCode() : 0xFFFFFFFF);
    }
    return types;
}

TEST(AnalyzerDoc, ClassifiesDiagnosticAndCanTraces) {
    TempDir dir;
    CAnalyzerDoc diagnostic;
    ASSERT_TRUE(diagnostic.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    EXPECT_TRUE(diagnostic.IsDiagnosticTrace());
    EXPECT_FALSE(diagnostic.IsCanTrace());
    EXPECT_FALSE(diagnostic.HasIdentifierColumn());
    EXPECT_EQ(diagnostic.GetVisibleCount(), 3u);

    CAnalyzerDoc can;
    ASSERT_TRUE(can.OnOpenDocument(dir.Write("c.trc", Can601())));
    EXPECT_TRUE(can.IsCanTrace());
    EXPECT_TRUE(can.HasChannelColumn());
    EXPECT_TRUE(can.HasIdentifierColumn());
    EXPECT_TRUE(can.HasClass4());
    EXPECT_FALSE(can.HasClass8());

    CAnalyzerDoc zdtWithFrames;
    ASSERT_TRUE(zdtWithFrames.OnOpenDocument(
        dir.Write("z.trc", Head("ZDT Trace File", "2") + CrLf({"[TraceData]", "0020 00000010 0000 0C E8 07 00 00"}))));
    EXPECT_TRUE(zdtWithFrames.IsCanTrace());
    EXPECT_TRUE(zdtWithFrames.IsDeltaFile());
}

TEST(AnalyzerDoc, InvalidFileSaysSoTwice) {
    TempDir dir;
    RecordingMessages messages;
    CAnalyzerDoc doc;
    const std::string path = dir.Write("bad.trc", "no trace at all\r\n");
    EXPECT_FALSE(doc.OnOpenDocument(path, &messages));
    EXPECT_EQ(messages.Texts(), (std::vector<std::string>{"No valid ZDT - Trace File",
                                                          "The TraceFile " + path + " is an invalid trace file!"}));
    EXPECT_EQ(doc.GetVisibleCount(), 0u);
    EXPECT_EQ(doc.GetItem(0), nullptr);
}

TEST(AnalyzerDocFilter, PassFilterKeepsListedIdentifiersEventsAndRecordsWithoutIdentifier) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    const auto all = VisibleOffsets(doc);
    doc.ToggleBookmark(1);
    doc.ApplyFilter(dir.Write("pass.flt", Filter("PassFilter", {"7E8", "0x98DAF110"})), "pass.flt");
    EXPECT_TRUE(doc.IsFilterActive());
    EXPECT_FALSE(doc.IsStopFilter());
    EXPECT_TRUE(doc.Bookmarks().empty());
    EXPECT_EQ(VisibleOffsets(doc), (std::vector<std::uint64_t>{all[0], all[2], all[3]}));
    // Times of the kept rows, the dropped row's gap counted into the next delta.
    EXPECT_EQ(doc.TraceFile()->DeltaTimes().Get(0), 1000u);
    EXPECT_EQ(doc.TraceFile()->DeltaTimes().Get(1), 2000u);
    EXPECT_EQ(doc.TraceFile()->DeltaTimes().Get(2), 1000u);
    EXPECT_EQ(doc.TraceFile()->ChannelDeltas().Get(1), 1000u);
    EXPECT_EQ(doc.IdTable()[0], CAnalyzerDoc::FreeSlot); // the table serves one pass only
}

TEST(AnalyzerDocFilter, StopFilterWithoutEntriesShowsAllFramesAndNoEvents) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    doc.ApplyFilter(dir.Write("stop.flt", Filter("StopFilter", {})), "stop.flt");
    EXPECT_TRUE(doc.IsStopFilter());
    EXPECT_EQ(RowTypes(doc), (std::vector<std::uint32_t>{0x5000, 0x6000, 0x5800}));

    doc.ApplyFilter(dir.Write("stop2.flt", Filter("StopFilter", {"7e0"})), "stop2.flt");
    EXPECT_EQ(RowTypes(doc), (std::vector<std::uint32_t>{0x5000, 0x5800}));
}

TEST(AnalyzerDocFilter, UnreadableAndOversizedFilterFilesDoNoHarm) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    doc.ApplyFilter(dir.File("missing.flt"), "missing.flt");
    EXPECT_EQ(RowTypes(doc), (std::vector<std::uint32_t>{0x4403}));

    std::string big = "[CAN]\r\nType=PassFilter\r\nNoOfEntries=1F4\r\n";
    for (int i = 1; i <= 500; ++i) {
        char line[64];
        const unsigned id = i == 100 ? 0x7E8 : i == 300 ? 0x7E0 : 0x100 + i;
        std::snprintf(line, sizeof line, "%X=%X\r\n", i, id);
        big += line;
    }
    doc.ApplyFilter(dir.Write("big.flt", big), "big.flt");
    // 0x7E8 is entry 100 and stands in the table; 0x7E0 is entry 300, past its end.
    EXPECT_EQ(RowTypes(doc), (std::vector<std::uint32_t>{0x5000, 0x4403}));
}

TEST(AnalyzerDocFilter, HistoryFilterIsOfferedAtOpenAndAppliedOnlyWhenChanged) {
    TempDir dir;
    dir.Write("ids.flt", Filter("PassFilter", {"7E8"}));
    const std::string path = dir.Write("h.trc", Can601() + CrLf({"", "[AnalyzerHistory]", "CANFilter=1:ids.flt"}));
    ScriptedFilterDialog dialog(dir);
    dialog.answer = {true, true, false, "ids.flt"};
    CAnalyzerDoc unchanged;
    ASSERT_TRUE(unchanged.OnOpenDocument(path, nullptr, nullptr, &dialog));
    ASSERT_EQ(dialog.requests.size(), 1u);
    EXPECT_TRUE(dialog.requests[0].activate);
    EXPECT_TRUE(dialog.requests[0].automatic);
    EXPECT_EQ(dialog.requests[0].name, "ids.flt");
    EXPECT_EQ(unchanged.GetVisibleCount(), 4u);

    dialog.answer = {true, true, true, "ids.flt"};
    CAnalyzerDoc applied;
    ASSERT_TRUE(applied.OnOpenDocument(path, nullptr, nullptr, &dialog));
    EXPECT_EQ(RowTypes(applied), (std::vector<std::uint32_t>{0x5000, 0x4403}));
    const std::string before = TempDir::Read(path);
    applied.OnCloseDocument();
    EXPECT_EQ(TempDir::Read(path), before); // same filter, same flag: nothing to append
}

TEST(AnalyzerDocFilter, FilterCommandTurnsOffByReadingTheFileAnewAndCloseRecordsIt) {
    TempDir dir;
    dir.Write("ids.flt", Filter("PassFilter", {"7E8"}));
    const std::string path = dir.Write("c.trc", Can601());
    ScriptedFilterDialog dialog(dir);
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(path));

    dialog.answer = {false, true, true, "ids.flt"};
    doc.OnCanFilter(dialog);
    EXPECT_EQ(doc.GetVisibleCount(), 4u); // cancelled: nothing happens

    dialog.answer = {true, true, true, "ids.flt"};
    doc.OnCanFilter(dialog);
    EXPECT_EQ(doc.GetVisibleCount(), 2u);
    EXPECT_EQ(dialog.requests.back().name, "");

    dialog.answer = {true, true, false, "ids.flt"};
    doc.OnCanFilter(dialog);
    EXPECT_EQ(dialog.requests.back().name, "ids.flt");
    EXPECT_EQ(doc.GetVisibleCount(), 2u); // unchanged: nothing happens

    dialog.answer = {true, false, false, ""};
    doc.OnCanFilter(dialog);
    EXPECT_FALSE(doc.IsFilterActive());
    EXPECT_EQ(doc.GetVisibleCount(), 4u);

    doc.ApplyFilter(dir.File("ids.flt"), "ids.flt");
    doc.OnCloseDocument();
    EXPECT_NE(TempDir::Read(path).find("\r\n\r\n[AnalyzerHistory]\r\nCANFilter=1:ids.flt\r\n"), std::string::npos);
}

TEST(AnalyzerDoc, BookmarksToggleInRowOrderAndWrap) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    EXPECT_EQ(doc.NextBookmark(0), -1);
    doc.ToggleBookmark(3);
    doc.ToggleBookmark(1);
    doc.ToggleBookmark(2);
    doc.ToggleBookmark(2);
    EXPECT_EQ(doc.Bookmarks(), (std::vector<zdt::RowIndex>{1, 3}));
    EXPECT_EQ(doc.NextBookmark(1), 3);
    EXPECT_EQ(doc.NextBookmark(3), 1);
    EXPECT_EQ(doc.PreviousBookmark(3), 1);
    EXPECT_EQ(doc.PreviousBookmark(1), 3);
}

TEST(AnalyzerDoc, ByteTimeCountsStartDataAndStopBits) {
    EXPECT_EQ(static_cast<std::uint32_t>(ByteTimeMicros(10400, 8, 1)), 961u);
    EXPECT_EQ(static_cast<std::uint32_t>(ByteTimeMicros(10400, 7, 2)), 961u);
    EXPECT_EQ(static_cast<std::uint32_t>(ByteTimeMicros(9600, 8, 2)), 1145u);
    EXPECT_EQ(ByteTimeMicros(0, 8, 1), 0.0);
}

} // namespace

#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"
#include "support/RecordingMessages.h"

#include <gtest/gtest.h>

// Opening and the filter command taken apart into their steps, as the desktop runs them:
// the dialog on its thread, the long work on another.
namespace {

using namespace classic_traces;

class CountingProgress final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long, unsigned long long) override {
        ++calls;
        return true;
    }
    int calls = 0;
};

std::string HistoryTrace(const TempDir& dir, const std::string& entry) {
    dir.Write("ids.flt", Filter("PassFilter", {"7E8"}));
    return dir.Write("h.trc", Can601() + CrLf({"", "[AnalyzerHistory]", "CANFilter=" + entry}));
}

TEST(AnalyzerDocSteps, HistoryOfferIsMadeOnlyForANamedFilter) {
    TempDir dir;
    CAnalyzerDoc unopened;
    EXPECT_FALSE(unopened.HistoryFilterRequest());

    CAnalyzerDoc plain;
    ASSERT_TRUE(plain.OnOpenDocument(dir.Write("c.trc", Can601())));
    EXPECT_FALSE(plain.HistoryFilterRequest());

    CAnalyzerDoc named;
    ASSERT_TRUE(named.OnOpenDocument(HistoryTrace(dir, "0:ids.flt")));
    const auto request = named.HistoryFilterRequest();
    ASSERT_TRUE(request);
    EXPECT_FALSE(request->activate); // the flag as the file's history wrote it
    EXPECT_TRUE(request->automatic);
    EXPECT_EQ(request->name, "ids.flt");
}

TEST(AnalyzerDocSteps, HistoryAnswerAppliesOnlyAChangedActiveFilter) {
    TempDir dir;
    const std::string path = HistoryTrace(dir, "1:ids.flt");
    const std::string flt = dir.File("ids.flt");

    CAnalyzerDoc cancelled;
    ASSERT_TRUE(cancelled.OnOpenDocument(path));
    cancelled.ApplyHistoryFilterAnswer({false, true, true, "ids.flt"}, flt);
    EXPECT_EQ(cancelled.GetVisibleCount(), 4u);
    EXPECT_FALSE(cancelled.IsFilterActive());

    CAnalyzerDoc unchanged;
    ASSERT_TRUE(unchanged.OnOpenDocument(path));
    unchanged.ApplyHistoryFilterAnswer({true, true, false, "ids.flt"}, flt);
    EXPECT_EQ(unchanged.GetVisibleCount(), 4u);

    CAnalyzerDoc applied;
    ASSERT_TRUE(applied.OnOpenDocument(path));
    CountingProgress progress;
    applied.ApplyHistoryFilterAnswer({true, true, true, "ids.flt"}, flt, &progress);
    EXPECT_EQ(applied.GetVisibleCount(), 2u);
    EXPECT_TRUE(applied.IsFilterActive());
    EXPECT_EQ(applied.CurrentFilterName(), "ids.flt");
    EXPECT_GE(progress.calls, 1);
    // The offer is made once: with a filter in use there is nothing left to offer.
    EXPECT_FALSE(applied.HistoryFilterRequest());
}

TEST(AnalyzerDocSteps, FilterCommandStepsMatchTheWholeCommand) {
    TempDir dir;
    const std::string path = HistoryTrace(dir, "1:ids.flt");
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(path));
    CanFilterPrompt::Request request = doc.BeginCanFilter();
    EXPECT_TRUE(request.activate); // the history's filter is proposed
    EXPECT_EQ(request.name, "ids.flt");
    EXPECT_FALSE(request.automatic);

    const CanFilterPrompt::Answer apply{true, true, true, "ids.flt"};
    ASSERT_TRUE(CAnalyzerDoc::CanFilterAnswerActs(apply));
    ASSERT_TRUE(CAnalyzerDoc::AnswerAppliesFilter(apply));
    doc.FinishCanFilter(apply, dir.File("ids.flt"));
    EXPECT_EQ(doc.GetVisibleCount(), 2u);
    EXPECT_TRUE(doc.NeedsHeaderUpdate());
    doc.ClearHeaderUpdate();

    request = doc.BeginCanFilter();
    EXPECT_EQ(request.name, "ids.flt");
    const CanFilterPrompt::Answer keep{true, true, false, "ids.flt"};
    EXPECT_FALSE(CAnalyzerDoc::CanFilterAnswerActs(keep));
    EXPECT_FALSE(CAnalyzerDoc::CanFilterAnswerActs({false, false, true, ""}));

    doc.ToggleBookmark(1);
    doc.FindResults().push_back(0);
    const CanFilterPrompt::Answer off{true, false, false, ""};
    ASSERT_TRUE(CAnalyzerDoc::CanFilterAnswerActs(off));
    EXPECT_FALSE(CAnalyzerDoc::AnswerAppliesFilter(off));
    RecordingMessages messages;
    CountingProgress progress;
    doc.FinishCanFilter(off, "", &messages, &progress);
    EXPECT_EQ(doc.GetVisibleCount(), 4u); // read anew
    EXPECT_FALSE(doc.IsFilterActive());
    EXPECT_TRUE(doc.Bookmarks().empty());
    EXPECT_TRUE(doc.FindResults().empty());
    EXPECT_TRUE(doc.NeedsHeaderUpdate());
    EXPECT_GE(progress.calls, 1);
    EXPECT_TRUE(messages.shown.empty());
}

TEST(AnalyzerDocSteps, TurningOffWhenTheFileVanishedReportsItAndLeavesNoRows) {
    TempDir dir;
    const std::string path = dir.Write("c.trc", Can601());
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(path));
    std::remove(path.c_str());
    RecordingMessages messages;
    doc.FinishCanFilter({true, false, false, ""}, "", &messages);
    EXPECT_EQ(doc.GetVisibleCount(), 0u);
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_EQ(messages.shown[0].text, "The TraceFile " + path + " is an invalid trace file!");
}

} // namespace

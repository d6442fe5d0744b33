#include "classic/ClassicPrintLayout.h"
#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;

TEST(ClassicPrintLayout, RowsPerPageLeaveNineLinesAndPagesCountOneExtra) {
    // 1070 - 70 = 1000 pixels, 20 per line: 50 lines, 41 of them rows.
    const ClassicPrintLayout layout = MakeClassicPrintLayout(1070, 20, 100);
    EXPECT_EQ(layout.pageHeight, 1000);
    EXPECT_EQ(layout.rowsPerPage, 41u);
    EXPECT_EQ(layout.pageCount, 3u);
    EXPECT_EQ(MakeClassicPrintLayout(1070, 20, 82).pageCount, 3u); // an exact fit still adds a page
    EXPECT_EQ(MakeClassicPrintLayout(1070, 20, 0).pageCount, 1u);
    EXPECT_EQ(MakeClassicPrintLayout(1069, 20, 0).rowsPerPage, 40u);
}

TEST(ClassicPrintLayout, TinyPagesStillTakeOneRowSoPrintingEnds) {
    const ClassicPrintLayout layout = MakeClassicPrintLayout(100, 20, 7);
    EXPECT_EQ(layout.rowsPerPage, 1u);
    EXPECT_EQ(layout.pageCount, 8u);
    EXPECT_EQ(MakeClassicPrintLayout(50, 0, 3).rowsPerPage, 1u);
}

TEST(ClassicPrintLayout, PagesSplitRowsWithoutGapsOrOverlap) {
    const ClassicPrintLayout layout = MakeClassicPrintLayout(1070, 20, 100);
    const PrintPageRows first = RowsOfPage(layout, 1, 100);
    const PrintPageRows second = RowsOfPage(layout, 2, 100);
    const PrintPageRows third = RowsOfPage(layout, 3, 100);
    EXPECT_EQ(first.first, 0u);
    EXPECT_EQ(first.count, 41u);
    EXPECT_EQ(second.first, 41u);
    EXPECT_EQ(third.first, 82u);
    EXPECT_EQ(third.count, 18u);
    EXPECT_EQ(RowsOfPage(layout, 4, 100).count, 0u);
    EXPECT_EQ(RowsOfPage(layout, 0, 100).count, 0u);
    // The extra page of an exact fit is empty.
    EXPECT_EQ(RowsOfPage(MakeClassicPrintLayout(1070, 20, 82), 3, 82).count, 0u);
}

TEST(ClassicPrintLayout, RowsStayBetweenHeadAndFoot) {
    const ClassicPrintLayout layout = MakeClassicPrintLayout(1070, 20, 1000);
    EXPECT_GT(PrintRowTop(layout, 0), PrintHeadLineTop(layout, 2) + layout.lineHeight);
    const int lastRowBottom = PrintRowTop(layout, layout.rowsPerPage - 1) + layout.lineHeight;
    EXPECT_LE(lastRowBottom, PrintFootTop(layout));
    EXPECT_LE(PrintFootTop(layout) + layout.lineHeight, layout.pageHeight);
}

TEST(ClassicPrintLayout, FontScalesScreenPixelsAsPoints) {
    EXPECT_EQ(PrintFontPixelHeight(12, 72), 12);
    EXPECT_EQ(PrintFontPixelHeight(12, 600), 100);
    EXPECT_EQ(PrintFontPixelHeight(12, 1200), 200);
}

TEST(ClassicPrintLayout, HeadByEditionAndPage) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    EXPECT_EQ(PrintPageHead(doc, 1, 1),
              (std::vector<std::string>{"***** 7.1.2 - ZDT Trace File *****", "Interface: VCI-4",
                                        "Date: 21.11.2026,     Time: 14:05:09"}));
    EXPECT_EQ(PrintPageHead(doc, 4, 1)[0], "***** 7.1.2 - ZDT Trace File *****");
    EXPECT_EQ(PrintPageHead(doc, 2, 1)[0], "*****  OVX Product Family V1.0.0 - OVX Trace File *****");
    EXPECT_EQ(PrintPageHead(doc, 2, 1)[1], "Interface: VCI-4");
    EXPECT_EQ(PrintPageHead(doc, 1, 2), (std::vector<std::string>{"***** ZDT Bytes & Timings Trace *****"}));
    EXPECT_EQ(PrintPageHead(doc, 2, 7), (std::vector<std::string>{"***** OVX Bytes & Timings Trace *****"}));
    EXPECT_EQ(PrintPageFoot(12), "- 12 -");
}

} // namespace

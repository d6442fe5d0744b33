#include "classic/ClassicViewLayout.h"
#include "support/ClassicTraces.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;

constexpr std::size_t At(ClassicColumn column) {
    return static_cast<std::size_t>(column);
}

TEST(ClassicViewLayout, StartWidthsWidenOnlyTheColumnsTheFileFills) {
    const auto plain = InitialColumnWidths({});
    EXPECT_EQ(plain, (std::array<int, ClassicColumnCount>{120, 0, 0, 0, 0, 0, 210, 200}));

    ClassicColumnContent all;
    all.identifier = all.channel = all.priority = all.source = all.destination = true;
    EXPECT_EQ(InitialColumnWidths(all), (std::array<int, ClassicColumnCount>{120, 60, 120, 50, 50, 70, 210, 200}));

    ClassicColumnContent some;
    some.destination = true;
    const auto widths = InitialColumnWidths(some);
    EXPECT_EQ(widths[At(ClassicColumn::Destination)], 70);
    EXPECT_EQ(widths[At(ClassicColumn::Source)], 0);
}

TEST(ClassicViewLayout, ContentFollowsWhatTheTraceHolds) {
    TempDir dir;
    CAnalyzerDoc can;
    ASSERT_TRUE(can.OnOpenDocument(dir.Write("c.trc", Can601())));
    const ClassicColumnContent canContent = ColumnContentOf(can);
    EXPECT_TRUE(canContent.identifier);
    EXPECT_TRUE(canContent.channel);
    CAnalyzerDoc diagnostic;
    ASSERT_TRUE(diagnostic.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    const ClassicColumnContent diagnosticContent = ColumnContentOf(diagnostic);
    EXPECT_FALSE(diagnosticContent.identifier);
    EXPECT_EQ(InitialColumnWidths(diagnosticContent)[At(ClassicColumn::Identifier)], 0);
}

TEST(ClassicViewLayout, ColumnMenuHidesShownColumnsAndSizesHiddenOnesToTheirText) {
    EXPECT_FALSE(IsColumnMenuChecked(0));
    EXPECT_FALSE(IsColumnMenuChecked(10)); // a sliver still counts as hidden
    EXPECT_TRUE(IsColumnMenuChecked(11));

    EXPECT_EQ(ColumnWidthAfterMenuChoice(11, 500), 0);
    EXPECT_EQ(ColumnWidthAfterMenuChoice(120, 0), 0);
    EXPECT_EQ(ColumnWidthAfterMenuChoice(10, 0), 52); // at least 40 of text
    EXPECT_EQ(ColumnWidthAfterMenuChoice(0, 39), 52);
    EXPECT_EQ(ColumnWidthAfterMenuChoice(0, 41), 53);
    EXPECT_EQ(ColumnWidthAfterMenuChoice(0, 300), 312);
}

TEST(ClassicViewLayout, TitlesFollowModeAndTraceKind) {
    EXPECT_STREQ(TimeColumnTitle(TimeMode::Absolute), "Time [sec]");
    EXPECT_STREQ(TimeColumnTitle(TimeMode::Relative), "Time [ms]");
    EXPECT_STREQ(TimeColumnTitle(TimeMode::RelativeChannel), "Time [ms]");
    EXPECT_STREQ(TimeColumnTitle(TimeMode::InterByte), "Time [ms]");
    EXPECT_EQ(ClassicWindowTitle("ZDT Trace File", "/t/a.trc"), "Diagnostic Channel /t/a.trc");
    EXPECT_EQ(ClassicWindowTitle("CAN Onboard", "/t/a.trc"), "CAN Onboard Channel  /t/a.trc");
    EXPECT_EQ(ClassicWindowTitle("", "/t/a.trc"), "CAN Onboard Channel  /t/a.trc");
}

} // namespace

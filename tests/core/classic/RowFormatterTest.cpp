#include "ClassicTraceGenerator.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicRowFormatter.h"
#include "support/ClassicTraces.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace {

using namespace classic_traces;

std::vector<std::string> Times(CAnalyzerDoc& doc) {
    ClassicRowFormatter formatter(doc);
    std::vector<std::string> times;
    for (zdt::RowIndex row = 0; row < doc.GetVisibleCount(); ++row)
        times.push_back(formatter.Format(row).columns[0]);
    return times;
}

using Texts = std::vector<std::string>;

TEST(FormatTime, GroupsThousandsWithDotsBeforeTheComma) {
    EXPECT_EQ(FormatTime(1234567, 3), "1.234,567");
    EXPECT_EQ(FormatTime(123, 3), "0,123");
    EXPECT_EQ(FormatTime(0, 6), "0,000000");
    EXPECT_EQ(FormatTime(1234, 6), "0,001234");
    EXPECT_EQ(FormatTime(4294967295u, 3), "4.294.967,295");
    EXPECT_EQ(FormatTime(999999, 3), "999,999");
    EXPECT_EQ(FormatTime(1000000, 3), "1.000,000");
}

TEST(ClassicRows, DiagnosticTraceColumnsColoursAndAlarms) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    ClassicRowFormatter formatter(doc);
    const ClassicRow sent = formatter.Format(0);
    EXPECT_EQ(sent.columns, (std::array<std::string, 8>{"4,096", "", "", "", "", "", "83", ""}));
    EXPECT_EQ(sent.mark, " ");
    EXPECT_EQ(sent.foreground, 0x000000u);
    const ClassicRow received = formatter.Format(1, 1);
    EXPECT_EQ(received.columns[0], "12,288");
    EXPECT_EQ(received.mark, "A"); // a gap of at least 10 ms
    EXPECT_EQ(received.foreground, ColourDirectionBlue);
    EXPECT_EQ(received.background, ColourSelectedRow);
    doc.ToggleBookmark(2);
    const ClassicRow event = formatter.Format(2);
    EXPECT_EQ(event.columns[6], "Received corrupted byte");
    EXPECT_EQ(event.mark, "BA");
    EXPECT_EQ(event.foreground, ColourRed);
    EXPECT_EQ(event.background, 0xFFFFFFu);
    doc.SetAlarmThreshold(0);
    EXPECT_EQ(formatter.Format(2).mark, "B");
    EXPECT_EQ(formatter.Format(7).columns[0], ""); // no record: a blank row
}

TEST(ClassicRows, TimeModesOfAFileOfAbsoluteTimes) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    EXPECT_EQ(Times(doc), (Texts{"4,096", "12,288", "10,000"}));
    doc.SetTimeMode(TimeMode::Absolute);
    EXPECT_EQ(Times(doc), (Texts{"0,004096", "0,016384", "0,026384"}));
    doc.SetTimeMode(TimeMode::InterByte, 961);
    EXPECT_EQ(Times(doc), (Texts{"3,135", "11,327", "10,000"}));
    doc.SetTimeMode(TimeMode::InterByte, 20000);
    EXPECT_EQ(Times(doc), (Texts{"0,000", "0,000", "10,000"}));
}

TEST(ClassicRows, TimeModesOfAFileOfDeltaTimes) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(
        dir.Write("d.trc", Head("ZDT Trace File", "501") +
                               CrLf({"[TraceData]", "0003 00000100 0001 83 00", "FF01", "0004 00000200 0001 F1 00"}))));
    EXPECT_EQ(Times(doc), (Texts{"0,256", " ", "0,512"}));
    doc.SetTimeMode(TimeMode::Absolute);
    EXPECT_EQ(Times(doc), (Texts{"0,000256", " ", "0,000768"}));
}

TEST(ClassicRows, CanTraceColumns) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    ClassicRowFormatter formatter(doc);
    EXPECT_EQ(formatter.Format(0).columns,
              (std::array<std::string, 8>{"1,000", "1", "     7E8   ", "", "", "", "01 02 03 04 05 06 07 08", ""}));
    EXPECT_EQ(formatter.Format(1).columns[6], "AA BB");
    EXPECT_EQ(formatter.Format(2).columns[2], "18DAF110(x)");
    EXPECT_EQ(formatter.Format(2).foreground, 0x000000u);
    const ClassicRow busOff = formatter.Format(3);
    EXPECT_EQ(busOff.columns[1], "1");
    EXPECT_EQ(busOff.columns[6], "Bus off       (bus state changed)");
    EXPECT_EQ(busOff.mark, " "); // CAN traces raise no alarm
    doc.SetTimeMode(TimeMode::RelativeChannel);
    EXPECT_EQ(Times(doc), (Texts{"1,000", "0,500", "1,500", "1,000"}));
}

TEST(ClassicRows, PriorityFramesAndZeroChannels) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write(
        "p.trc", Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "0034 00000100 0007 68 6A F1  3E 01 02 00 00 00",
                                                       "5000 00 00000123 0000000300 0001 55 00 00 00 00 00 00 00"}))));
    ClassicRowFormatter formatter(doc);
    const ClassicRow frame = formatter.Format(0);
    EXPECT_EQ(frame.columns[3], "68");
    EXPECT_EQ(frame.columns[4], "6A");
    EXPECT_EQ(frame.columns[5], "F1");
    EXPECT_EQ(frame.columns[6], "3E 01 02 00");
    EXPECT_EQ(formatter.Format(1).columns[1], ""); // channel 0 shows nothing
}

TEST(ClassicRows, Schema701WalksBackToTheLastTimedRecord) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("v.trc", Diagnostic701())));
    ClassicRowFormatter formatter(doc);
    const ClassicRow stamp = formatter.Format(0);
    EXPECT_EQ(stamp.columns[0], "");
    EXPECT_EQ(stamp.columns[6], "[Start Trace Recording]");
    EXPECT_EQ(Times(doc), (Texts{"", "--", "", "7,655"}));
    EXPECT_EQ(formatter.Format(3).columns[0], "7,655"); // asked out of order
    doc.SetTimeMode(TimeMode::InterByte, 655);
    EXPECT_EQ(Times(doc), (Texts{"", "--", "", "7,000"}));
    doc.SetTimeMode(TimeMode::Absolute);
    EXPECT_EQ(Times(doc), (Texts{"", "12,345", "", "20,000"}));
}

// A row's line holds its number, mark and columns as Format gives them, for every kind of
// record, time mode and order of asking, and for rows that cannot be read.
std::string GeneratedTrace(const char* schema, zdtgen::RecordMix mix, const char* title) {
    zdtgen::ClassicTraceOptions options;
    options.schema = schema;
    options.mix = mix;
    options.title = std::string(title);
    options.records = 400;
    options.seed = 17;
    options.hostile = zdtgen::HostileExtras::AllKinds();
    options.hostile.every = 9;
    return zdtgen::MakeClassicTrace(options);
}

// A row's line holds its number, mark and columns as Format gives them, for every kind of
// record, time mode and order of asking, and for rows that cannot be read.
TEST(ClassicRows, RowLinesHoldWhatFormatGives) {
    const std::string traces[] = {
        GeneratedTrace("601", zdtgen::RecordMix::All, "ZDT Trace File"),
        GeneratedTrace("701", zdtgen::RecordMix::All, "ZDT Trace File"),
        GeneratedTrace("501", zdtgen::RecordMix::KLine, "ZDT Trace File"),
        GeneratedTrace("2", zdtgen::RecordMix::Events, "ZDT Trace File"),
        GeneratedTrace("601", zdtgen::RecordMix::Traffic, "ZDT Trace File"),
        GeneratedTrace("5", zdtgen::RecordMix::Can, "CAN Onboard Trace"),
        Diagnostic601(),
        Diagnostic701(),
    };
    std::set<std::string> marks;
    for (const std::string& trace : traces) {
        TempDir dir;
        CAnalyzerDoc doc;
        ASSERT_TRUE(doc.OnOpenDocument(dir.Write("t.trc", trace)));
        SCOPED_TRACE(doc.SchemaNumber());
        for (zdt::RowIndex row = 0; row < doc.GetVisibleCount(); row += 2)
            doc.ToggleBookmark(row);
        // Every row in order, a few beyond the last, then all of them again shuffled.
        std::vector<zdt::RowIndex> order;
        for (zdt::RowIndex row = 0; row < doc.GetVisibleCount() + 3; ++row)
            order.push_back(row);
        std::vector<zdt::RowIndex> shuffled = order;
        std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(5));
        order.insert(order.end(), shuffled.begin(), shuffled.end());

        for (const TimeMode mode :
             {TimeMode::Relative, TimeMode::Absolute, TimeMode::RelativeChannel, TimeMode::InterByte}) {
            doc.SetTimeMode(mode, 961);
            ClassicRowFormatter columns(doc), lines(doc);
            for (const zdt::RowIndex row : order) {
                const ClassicRow formatted = columns.Format(row);
                std::string expected = std::to_string(row + 1) + "\t" + formatted.mark;
                for (const std::string& column : formatted.columns)
                    expected += "\t" + column;
                expected += "\n";
                std::string line = "before ";
                lines.AppendRowLine(row, line);
                ASSERT_EQ(line, "before " + expected) << "row " << row;
                marks.insert(formatted.mark);
            }
        }
    }
    EXPECT_EQ(marks, (std::set<std::string>{" ", "A", "B", "BA"}));
}

// Runs of rows, in and out of order, of every size from one row to past the last, give the
// lines that AppendRowLine gives row by row.
TEST(ClassicRows, RunsOfRowLinesHoldWhatSingleLinesGive) {
    const std::string traces[] = {
        GeneratedTrace("601", zdtgen::RecordMix::All, "ZDT Trace File"),
        GeneratedTrace("701", zdtgen::RecordMix::All, "ZDT Trace File"),
        GeneratedTrace("501", zdtgen::RecordMix::KLine, "ZDT Trace File"),
        GeneratedTrace("5", zdtgen::RecordMix::Can, "CAN Onboard Trace"),
        Diagnostic601(),
    };
    for (const std::string& trace : traces) {
        TempDir dir;
        CAnalyzerDoc doc;
        ASSERT_TRUE(doc.OnOpenDocument(dir.Write("t.trc", trace)));
        SCOPED_TRACE(doc.SchemaNumber());
        const zdt::RowCount rows = doc.GetVisibleCount();
        for (zdt::RowIndex row = 1; row < rows; row += 3)
            doc.ToggleBookmark(row);
        // Runs cut at random, one beyond the end, taken in a shuffled order.
        std::mt19937 random(9);
        std::vector<std::pair<zdt::RowIndex, zdt::RowIndex>> runs;
        for (zdt::RowIndex first = 0; first < rows + 2;) {
            const zdt::RowIndex end = first + 1 + static_cast<zdt::RowIndex>(random() % 40);
            runs.emplace_back(first, end);
            first = end;
        }
        runs.emplace_back(3, 3);
        std::shuffle(runs.begin(), runs.end(), random);
        for (const TimeMode mode : {TimeMode::Relative, TimeMode::Absolute, TimeMode::InterByte}) {
            doc.SetTimeMode(mode, 961);
            ClassicRowFormatter single(doc), runsFormatter(doc);
            for (const auto& [first, end] : runs) {
                std::string expected = "before ";
                for (zdt::RowIndex row = first; row < end; ++row)
                    single.AppendRowLine(row, expected);
                std::string text = "before ";
                runsFormatter.AppendRowLines(first, end, text);
                ASSERT_EQ(text, expected) << "rows " << first << " to " << end;
            }
        }
    }
}

TEST(ClassicRows, ColumnRegistrationMatchesTheColumns) {
    std::string built = "|";
    for (const auto& column : ClassicColumns())
        built += std::string(column.name) + ":" + std::to_string(column.width) + ":" + std::to_string(column.field) +
                 ":" + (column.rightAligned ? "1" : "0") + "||";
    built.pop_back();
    // Only the PC Time entry carries a blank before its width.
    EXPECT_EQ(built, std::string(ClassicColumnRegistration()).replace(built.find("PC Time:") + 8, 1, ""));
}

} // namespace

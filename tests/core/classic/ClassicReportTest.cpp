#include "classic/ClassicReport.h"
#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;

std::string Report(CAnalyzerDoc& doc, const TempDir& dir, int edition = 1) {
    const std::string out = dir.File("report.sbt");
    EXPECT_TRUE(WriteSbtReport(doc, out, edition));
    return TempDir::Read(out);
}

const std::string kStandardHead = "Title: ZDT Trace File\nProduct Version: 7.1.2\nInterfaceBoard: VCI-4\n"
                                  "Date: 21.11.2026\nTime: 14:05:09\n\n";

TEST(ClassicReport, DiagnosticTracePadsEveryColumn) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("d.trc", Diagnostic601())));
    const std::string blanks31(31, ' ');
    const std::string expected =
        kStandardHead +
        // alarm mark, time in 13 + 3, channel and identifier absent (2 + 2), data in 31, type word, line feed
        " " + "        4,096   " + "  " + "  " + "83" + std::string(29, ' ') + "K line byte sent" + "\n" + "A" +
        "       12,288   " + "  " + "  " + "F1" + std::string(29, ' ') + "K line byte received" + "\n" + "A" +
        "       10,000   " + "  " + "  " + "Received corrupted byte" + std::string(8, ' ') + "\n";
    EXPECT_EQ(Report(doc, dir), expected);
}

TEST(ClassicReport, CanTraceUsesChannelDeltasForRelativeChannelTimes) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    doc.SetAlarmThreshold(0);
    doc.SetTimeMode(TimeMode::RelativeChannel);
    const std::string report = Report(doc, dir);
    const std::string sp8(8, ' ');
    const std::string expected =
        "Title: CAN Onboard\nProduct Version: 7.1.2\nInterfaceBoard: VCI-4\nDate: 21.11.2026\nTime: 14:05:09\n\n" +
        sp8 + "1,000   " + " 1  " + "     7E8   " + "01 02 03 04 05 06 07 08" + sp8 + "\n" + sp8 + "1,500   " + " 2  " +
        "     7E0   " + "AA BB" + std::string(26, ' ') + "\n" + sp8 + "2,000   " + " 1  " + "18DAF110 x " + "10 20 30" +
        std::string(23, ' ') + "\n" + sp8 + "1,000   " + " 1  " + std::string(11, ' ') +
        "Bus off       (bus state changed)" + " \n";
    EXPECT_EQ(report, expected);
}

TEST(ClassicReport, HeadsByEditionAndEmptyTraces) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("e.trc", Head("ZDT Trace File", "601") + CrLf({"[TraceData]"}))));
    EXPECT_EQ(Report(doc, dir), kStandardHead);
    EXPECT_EQ(Report(doc, dir, 4), kStandardHead);
    EXPECT_EQ(Report(doc, dir, 2), "Title: OVX Trace File\nProduct Version: V1.0.0\nZDT Version: 7.1.2\n"
                                   "InterfaceBoard: VCI-4\nDate: 21.11.2026\nTime: 14:05:09\n\n");
    EXPECT_FALSE(WriteSbtReport(doc, dir.File("missing/dir/out.sbt"), 1));
}

TEST(ClassicReport, PcTimeStampsAndSessionInformation) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(
        dir.Write("p.trc", Head("ZDT Trace File", "601") + CrLf({"[TraceData]", "FF07 21/11/2026 14:05:09"}))));
    doc.SetAlarmThreshold(0);
    // A time stamp is an event first: its data column is the event text.
    EXPECT_EQ(Report(doc, dir), kStandardHead + std::string(16, ' ') + "  " + "  " + "[PC Time Stamp]" +
                                    std::string(16, ' ') + "21/11/2026   14:05:09\n");

    const auto fields = SessionInfoFields(doc, 1);
    ASSERT_EQ(fields.size(), 7u);
    EXPECT_EQ(fields[0], (std::pair<std::string, std::string>{"Title:", "ZDT Trace File"}));
    EXPECT_EQ(fields[5], (std::pair<std::string, std::string>{"No.Items:", "1"}));
    EXPECT_EQ(fields[6].first, "Last CANFilter:");
    const auto partner = SessionInfoFields(doc, 2);
    EXPECT_EQ(partner[0].second, "OVX Trace File");
    EXPECT_EQ(partner[1].second, "V1.0.0  (ZDT Version: 7.1.2)");
}

} // namespace

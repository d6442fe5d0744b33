#include "ClassicTraceGenerator.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicRowFormatter.h"
#include "support/ClassicTraces.h"
#include "support/CliRunner.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;

CliRun Cli(const TempDir& dir, const std::vector<std::string>& args, const std::string& environment = "") {
    return RunCli(dir, args, environment);
}

TEST(CliRows, PrintsEveryColumnTabSeparated) {
    TempDir dir;
    const std::string trace = dir.Write("c.trc", Can601());
    const CliRun run = Cli(dir, {"rows", trace});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "1\t \t1,000\t1\t     7E8   \t\t\t\t01 02 03 04 05 06 07 08\t\n"
                       "2\t \t0,500\t2\t     7E0   \t\t\t\tAA BB\t\n"
                       "3\t \t1,500\t1\t18DAF110(x)\t\t\t\t10 20 30\t\n"
                       "4\t \t1,000\t1\t\t\t\t\tBus off       (bus state changed)\t\n");
    // Options may follow the file.
    const CliRun absolute = Cli(dir, {"rows", trace, "--time", "absolute"});
    EXPECT_EQ(absolute.out.substr(0, 19), "1\t \t0,001000\t1\t    ");
    const CliRun diagnostic =
        Cli(dir, {"rows", "--time=inter-byte", "--baud", "9600", dir.Write("d.trc", Diagnostic601())});
    EXPECT_EQ(diagnostic.out, "1\t \t3,055\t\t\t\t\t\t83\t\n2\tA\t11,247\t\t\t\t\t\tF1\t\n"
                              "3\tA\t10,000\t\t\t\t\t\tReceived corrupted byte\t\n");
}

// Rows are formatted in blocks on two threads; the output must be the rows in order.
TEST(CliRows, LongTracesComeOutInRowOrder) {
    TempDir dir;
    for (const char* schema : {"601", "701"}) {
        zdtgen::ClassicTraceOptions options;
        options.schema = schema;
        options.records = 100000;
        options.seed = 11;
        const std::string trace = dir.Write("long.trc", zdtgen::MakeClassicTrace(options));
        CAnalyzerDoc doc;
        ASSERT_TRUE(doc.OnOpenDocument(trace));
        ClassicRowFormatter formatter(doc);
        std::string expected;
        for (zdt::RowIndex row = 0; row < doc.GetVisibleCount(); ++row) {
            const ClassicRow formatted = formatter.Format(row);
            expected += std::to_string(row + 1) + "\t" + formatted.mark;
            for (const auto& column : formatted.columns)
                expected += "\t" + column;
            expected += "\n";
        }
        EXPECT_GT(doc.GetVisibleCount(), 70000u);
        const CliRun run = Cli(dir, {"rows", trace});
        ASSERT_EQ(run.status, 0);
        EXPECT_TRUE(run.out == expected) << schema;
    }
}

TEST(CliRows, ACanFilterChangesTheRowsButNeverTheTrace) {
    TempDir dir;
    const std::string trace = dir.Write("h.trc", Can601() + CrLf({"", "[AnalyzerHistory]", "CANFilter=0:old.flt"}));
    const std::string before = TempDir::Read(trace);
    const std::string filter = dir.Write("ids.flt", Filter("PassFilter", {"7E0"}));
    const CliRun run = Cli(dir, {"rows", "--can-filter", filter, trace});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "1\t \t1,500\t2\t     7E0   \t\t\t\tAA BB\t\n"
                       "2\t \t2,500\t1\t\t\t\t\tBus off       (bus state changed)\t\n");
    EXPECT_EQ(TempDir::Read(trace), before);
    const CliRun info = Cli(dir, {"info", trace});
    EXPECT_NE(info.out.find("Last CANFilter: old.flt\n"), std::string::npos);
}

TEST(CliInfo, PrintsTheSessionInformationByEdition) {
    TempDir dir;
    const std::string trace = dir.Write("d.trc", Diagnostic601());
    EXPECT_EQ(Cli(dir, {"info", trace}).out, "Title: ZDT Trace File\nProduct Version: 7.1.2\nInterface Board: VCI-4\n"
                                             "Date: 21.11.2026\nTime: 14:05:09\nNo.Items: 3\nLast CANFilter: \n");
    const CliRun partner = Cli(dir, {"info", trace}, "ZDT_BRAND=ELAS-7");
    EXPECT_EQ(partner.out.substr(0, 64), "Title: OVX Trace File\nProduct Version: V1.0.0  (ZDT Version: 7.1");
}

TEST(CliSbt, WritesTheReport) {
    TempDir dir;
    const std::string trace = dir.Write("d.trc", Diagnostic601());
    const CliRun run = Cli(dir, {"sbt", trace, dir.File("out.sbt")});
    EXPECT_EQ(run.status, 0);
    const std::string report = TempDir::Read(dir.File("out.sbt"));
    EXPECT_EQ(report.substr(0, 22), "Title: ZDT Trace File\n");
    EXPECT_NE(report.find("A       12,288       F1"), std::string::npos);
    EXPECT_EQ(Cli(dir, {"sbt", trace, dir.File("no/such/dir.sbt")}).status, 1);
}

TEST(CliFind, PrintsLineNumbersOfHits) {
    TempDir dir;
    const std::string trace = dir.Write("c.trc", Can601());
    EXPECT_EQ(Cli(dir, {"find", "--use-identifier", "--identifier-text", "7E0", trace}).out, "2\n");
    EXPECT_EQ(Cli(dir, {"find", trace, "--bus-off", "--use-data", "--data-text", "AA,BB"}).out, "2\n4\n");
    const CliRun none = Cli(dir, {"find", "--use-data", "--data-text", "1,2", trace});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "Nothing Found!\n");
    const CliRun bounds = Cli(dir, {"find", "--use-time", "--min-time", "5", "--max-time", "1", trace});
    EXPECT_EQ(bounds.status, 1);
    EXPECT_EQ(bounds.err, "Maximum time must be greater than minimum time!\n");
    const CliRun times = Cli(dir, {"find", "--use-time", "--min-time", "1", "--max-time", "1", trace});
    EXPECT_EQ(times.out, "1\n2\n4\n"); // 1.0, 0.5 and 1.0 ms; row 3 is 1.5 ms
}

TEST(CliErrors, BadFilesGiveTheUsersMessageAndBadArgumentsUsage) {
    TempDir dir;
    const std::string bad = dir.Write("bad.trc", "");
    const CliRun run = Cli(dir, {"rows", bad});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "No valid ZDT - Trace File\nThe TraceFile " + bad + " is an invalid trace file!\n");
    EXPECT_EQ(Cli(dir, {"rows", dir.File("missing.trc")}).status, 1);
    EXPECT_EQ(
        Cli(dir, {"info", dir.Write("v.trc", Head("ZDT Trace File", "702") + "[TraceData]\r\n")}).err.substr(0, 29),
        "Invalid Version of Trace File");
    for (const std::vector<std::string>& args :
         std::vector<std::vector<std::string>>{{},
                                               {"frobnicate", "x.trc"},
                                               {"rows"},
                                               {"rows", "a.trc", "b.trc"},
                                               {"rows", "--time", "sometimes", "a.trc"},
                                               {"rows", "--baud", "-3", "a.trc"},
                                               {"rows", "--unknown", "a.trc"},
                                               {"sbt", "a.trc"}}) {
        const CliRun usage = Cli(dir, args);
        EXPECT_EQ(usage.status, 2);
        EXPECT_NE(usage.err.find("usage: zdt-cli"), std::string::npos);
    }
    const CliRun help = Cli(dir, {"find", "--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("--identifier-text"), std::string::npos);
}

TEST(CliSamples, EveryBundledSampleOpens) {
    TempDir dir;
    int opened = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZDT_SAMPLES_DIR)) {
        const std::string extension = entry.path().extension().string();
        if (extension.rfind(".tr", 0) != 0 && extension != ".crc")
            continue;
        const CliRun run = Cli(dir, {"info", entry.path().string()});
        EXPECT_EQ(run.status, 0) << entry.path() << run.err;
        ++opened;
    }
    EXPECT_GT(opened, 0);
}

} // namespace

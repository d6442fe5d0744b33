// zdt-cli query, filter and services end to end on generated traces.
#include "XpvtTraceGenerator.h"
#include "filter/FilterCondition702.h"
#include "filter/FilterConditionMap.h"
#include "filter/FilterXQuery701.h"
#include "filter/FilterXQuery702.h"
#include "filter/PvfltFile.h"
#include "filter/XQueryEngine.h"
#include "support/CliRunner.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using namespace ZDTAnalyzer::Filter;

#define SKIP_WITHOUT_XQUERY_ENGINE()                                                                                   \
    if (!findXQueryEngine())                                                                                           \
    GTEST_SKIP() << "no XQuery engine: java or /usr/share/java/Saxon-HE.jar is not installed"

const char* const Snapshot = "<?xml version=\"1.0\"?>\n<SnapList Created=\"t\"><SnapShot ShortName=\"A\">"
                             "<Service Name=\"Zeta\"/><LogicalLink Name=\"L\"><Service Name=\"Alpha\"/>"
                             "<Service Name=\"Beta\"/></LogicalLink></SnapShot></SnapList>\n";

std::string xpvt(const TempDir& dir, const std::string& name, zdtgen::XpvtSchema schema) {
    zdtgen::XpvtTraceOptions options;
    options.schema = schema;
    options.results = 6;
    options.seed = 7;
    return dir.Write(name, zdtgen::MakeXpvtTrace(options));
}

std::string pvflt(const TempDir& dir) {
    XPVT_7_01::FilterConditionMap conditions = XPVT_7_01::defaultFilterConditionMap();
    conditions["ExcludeItems"] = "0";
    conditions["AfterStartStopTrace"] = "1";
    conditions["RequestParameterName"] = "1";
    conditions["ParameterNameRequest"] = "P";
    XPVT_7_01::writeFilterFile(dir.File("f.pvflt"), conditions);
    return dir.File("f.pvflt");
}

std::string pvflt2(const TempDir& dir) {
    XPVT_7_02::FilterCondition702 record;
    record.includeResults = true;
    record.responseShortName = {false, true, "Resp_3"};
    XPVT_7_02::saveFilter702(dir.File("f.pvflt2"), record);
    return dir.File("f.pvflt2");
}

TEST(FilterCli, QueryPrintsTheBuildersTextWithTheFileAsGiven) {
    TempDir dir;
    const std::string t701 = xpvt(dir, "a b #1.xpvt", zdtgen::XpvtSchema::V701);
    const std::string t702 = xpvt(dir, "c.xpvt", zdtgen::XpvtSchema::V702);
    XPVT_7_01::FilterConditionMap conditions;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForRun(pvflt(dir), conditions));
    CliRun run = RunCliInHome(dir, {"query", t701, "--pvflt", dir.File("f.pvflt")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, XPVT_7_01::buildFilterXQuery701(t701, conditions));

    XPVT_7_02::FilterCondition702 record;
    ASSERT_TRUE(XPVT_7_02::loadFilter702(pvflt2(dir), record));
    run = RunCliInHome(dir, {"query", t702, "--pvflt2", dir.File("f.pvflt2")});
    EXPECT_EQ(run.status, 0) << run.err;
    // As the filter shows it, with the multi-value tests as written.
    EXPECT_EQ(run.out, XPVT_7_02::buildFilterXQuery702(t702, record));
    EXPECT_NE(run.out.find("contains($z/Response/@ShortName, string ($RRPSNS))"), std::string::npos);
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(FilterCli, SnapshotQueriesNameTheChosenServicesInByteOrder) {
    TempDir dir;
    const std::string snp = dir.Write("s.snp", Snapshot);
    CliRun run = RunCliInHome(dir, {"query", snp, "--list-services"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "for $x in doc (\"" + snp + "\")//Service return  fn:concat(data($x/@Name), '#')");
    run = RunCliInHome(dir, {"query", snp, "--service", "b", "--service", "B", "--service", "a", "--service", "b"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("where $w/@Name = \"B\" or $w/@Name = \"a\" or $w/@Name = \"b\"return $w"),
              std::string::npos);
    run = RunCliInHome(dir, {"query", snp, "--no-services"});
    EXPECT_EQ(run.out,
              "for $x in doc (\"" + snp + "\")/SnapList return <SnapList Created=\"{ $x/@Created }\"> </SnapList>");
}

TEST(FilterCli, UsageErrorsExitWithTwo) {
    TempDir dir;
    const std::string t701 = xpvt(dir, "a.xpvt", zdtgen::XpvtSchema::V701);
    const std::string t702 = xpvt(dir, "b.xpvt", zdtgen::XpvtSchema::V702);
    const std::string snp = dir.Write("s.snp", Snapshot);
    for (const std::vector<std::string>& args : {std::vector<std::string>{"query", t702, "--pvflt", pvflt(dir)},
                                                 {"query", t701, "--pvflt2", pvflt2(dir)},
                                                 {"filter", t702, "--pvflt", pvflt(dir), dir.File("out.xpvt")},
                                                 {"query", t701},
                                                 {"query", t701, "--pvflt", pvflt(dir), "--pvflt2", pvflt2(dir)},
                                                 {"query", snp, "--pvflt", pvflt(dir)},
                                                 {"query", snp, "--service", "A", "--no-services"},
                                                 {"filter", snp},
                                                 {"services", t701},
                                                 {"query", dir.Write("c.trc", "x")}}) {
        const CliRun run = RunCliInHome(dir, args);
        EXPECT_EQ(run.status, 2) << args[0] << " " << args.back() << run.err;
        EXPECT_NE(run.err.find("usage:"), std::string::npos);
        EXPECT_EQ(run.out, "");
    }
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.xpvt")));
}

TEST(FilterCli, FilterWritesTheResultAndServicesListsTheNames) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string snp = dir.Write("s.snp", Snapshot);
    CliRun run = RunCliInHome(dir, {"services", snp});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Alpha\nBeta\nZeta\n");

    // Without --service every service counts, as the dialog starts.
    run = RunCliInHome(dir, {"query", snp});
    EXPECT_NE(run.out.find("$w/@Name = \"Alpha\" or $w/@Name = \"Beta\" or $w/@Name = \"Zeta\""), std::string::npos);

    run = RunCliInHome(dir, {"filter", snp, "--service", "Beta", dir.File("out.snp")});
    EXPECT_EQ(run.status, 0) << run.err;
    const std::string out = TempDir::Read(dir.File("out.snp"));
    EXPECT_NE(out.find("<LogicalLink Name=\"L\"><Service Name=\"Beta\"/></LogicalLink>"), std::string::npos) << out;
    EXPECT_EQ(out.find("Zeta"), std::string::npos);

    const std::string t701 = xpvt(dir, "a.xpvt", zdtgen::XpvtSchema::V701);
    run = RunCliInHome(dir, {"filter", t701, "--pvflt", pvflt(dir), dir.File("out701.xpvt")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(TempDir::Read(dir.File("out701.xpvt")).find("<StartTrace>"), std::string::npos);
    const std::string t702 = xpvt(dir, "b.xpvt", zdtgen::XpvtSchema::V702);
    run = RunCliInHome(dir, {"filter", t702, "--pvflt2", pvflt2(dir), dir.File("out702.xpvt")});
    EXPECT_EQ(run.status, 0) << run.err;
    // The filtered trace opens as a trace of its own.
    run = RunCliInHome(dir, {"info", dir.File("out702.xpvt")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("Schema: 7,02"), std::string::npos);
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(FilterCli, FailuresExitWithOneAndLeaveNoOutput) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string t702 = xpvt(dir, "b.xpvt", zdtgen::XpvtSchema::V702);
    CliRun run = RunCliInHome(dir, {"filter", t702, "--pvflt2", dir.Write("bad.pvflt2", "true\n"), dir.File("o")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err,
              "Filter error : Could not load filter conditions from file: " + dir.File("bad.pvflt2") + " ! !\n");

    XPVT_7_02::FilterCondition702 record;
    record.logicalLink = {false, true, "quote\"d"};
    XPVT_7_02::saveFilter702(dir.File("q.pvflt2"), record);
    run = RunCliInHome(dir, {"filter", t702, "--pvflt2", dir.File("q.pvflt2"), dir.File("o")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.rfind("Filter error : Altova XQuery Error:\n", 0), 0u) << run.err;

    run = RunCliInHome(dir, {"filter", dir.File("gone.xpvt"), "--pvflt2", pvflt2(dir), dir.File("o")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "Could not open input xml file.\n");

    run = RunCli(dir, {"filter", t702, "--pvflt2", pvflt2(dir), dir.File("o")},
                 "ZDT_XQUERY_JAR=/nonexistent ZDT_ANALYZER_HOME=" + ShellQuote(dir.File("home")));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "Filter error : Altova XQuery Component initialization failed! !\n");

    run = RunCliInHome(dir, {"filter", t702, "--pvflt2", pvflt2(dir), dir.File("no-dir/o")});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("no-dir/o"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(dir.File("o")));
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

} // namespace

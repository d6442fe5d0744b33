#include "SnapshotGenerator.h"
#include "support/CliRunner.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

TEST(SnpCli, RowsMatchTheGeneratorsSideFile) {
    TempDir dir;
    zdtgen::SnapshotOptions options;
    options.snapshots = 10;
    options.hostile = zdtgen::SnapshotHostile::InFileKinds();
    options.hostile.hugeAttributeBytes = 15000;
    options.hostile.nestingDepth = 210;
    std::ostringstream xml, side;
    zdtgen::WriteSnapshotWithRows(xml, &side, options);
    const std::string path = dir.Write("Mixed.SNP", xml.str()); // the extension in any case

    std::string expected;
    std::istringstream lines(side.str());
    std::string line;
    int number = 0;
    while (std::getline(lines, line))
        if (line.rfind("#DateTime", 0) != 0)
            expected += std::to_string(++number) + "\t" + line + "\n";

    const CliRun run = RunCliInHome(dir, {"rows", path});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, expected);
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(SnpCli, InfoAndFind) {
    TempDir dir;
    const std::string path =
        dir.Write("s.snp", "<SnapList Created='14:05:09,21.11.2023'><SnapShot ShortName='A'><LogicalLink Name='L'>"
                           "<Service Name='ReadData'/><Service Name='Write'/><Service Name='Read'/>"
                           "</LogicalLink></SnapShot></SnapList>");
    const CliRun info = RunCliInHome(dir, {"info", path});
    EXPECT_EQ(info.status, 0);
    EXPECT_EQ(info.out, "File name: " + path + "\nDate: 21.11.2023\nTime: 14:05:09\nAuthor: ZDT V7\nRows: 7\n");

    const CliRun find = RunCliInHome(dir, {"find", path, "searchService=1", "serviceNameOn=1", "serviceName=Read"});
    EXPECT_EQ(find.status, 0) << find.err;
    EXPECT_EQ(find.out, "3\n5\n");
    const CliRun none = RunCliInHome(dir, {"find", path, "searchService=1", "serviceName=Read"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(SnpCli, FailuresAndBadArguments) {
    TempDir dir;
    const CliRun truncated = RunCliInHome(dir, {"rows", dir.Write("t.snp", "<SnapList>\n<SnapShot ShortName='A")});
    EXPECT_EQ(truncated.status, 1);
    EXPECT_EQ(truncated.out, "");
    EXPECT_EQ(truncated.err, "XML error: 2 unclosed token\n");

    const CliRun missing = RunCliInHome(dir, {"info", dir.File("none.snp")});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "Could not open input xml file.\n");
    EXPECT_EQ(LeftoverFiles(dir), 0u);

    const std::string good = dir.Write("g.snp", "<SnapList/>");
    for (const std::vector<std::string>& args : {std::vector<std::string>{"find", good, "unknownField=1"},
                                                 {"find", good, "searchService=yes"},
                                                 {"find", good, "serviceName"},
                                                 {"rows", good, good},
                                                 {"sbt", good, dir.File("out.sbt")}}) {
        const CliRun run = RunCliInHome(dir, args);
        EXPECT_EQ(run.status, 2) << args[0] << " " << args.back();
        EXPECT_NE(run.err.find("usage:"), std::string::npos);
    }
}

// An interrupted run removes its swap file and per-run directory on the way out.
TEST(SnpCli, InterruptLeavesNoSwapFile) {
    TempDir dir;
    zdtgen::SnapshotOptions options;
    options.targetBytes = 60u << 20;
    std::ofstream out(dir.File("big.snp"), std::ios::binary);
    zdtgen::WriteSnapshot(out, options);
    out.close();
    EXPECT_EQ(InterruptedRowsStatus(dir, dir.File("big.snp")), "130\n");
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

} // namespace

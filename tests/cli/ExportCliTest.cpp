#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "common/ChildProcess.h"
#include "support/CliRunner.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

namespace {

namespace fs = std::filesystem;

bool HasXalan() {
    return !zdt::FindProgramOnPath("Xalan").empty();
}

// Every file below `folder`, hidden ones included.
std::vector<std::string> FilesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST(ExportCli, ArgumentsThatDoNotFitAreUsageErrors) {
    TempDir dir;
    const std::string trace = std::string(ZDT_SAMPLES_DIR) + "/snapshots_basic.snp";
    const std::vector<std::vector<std::string>> calls = {
        {"export", trace, dir.File("o.html")},
        {"export", trace, "--to", "doc", dir.File("o.doc")},
        {"export", trace, "--to", "csv", dir.File("o.csv"), "--list-separator", "|"},
        {"export", trace, "--to", "csv"},
        {"export", trace, "--to", "html", dir.File("a"), dir.File("b")},
        {"export", trace, "--to"},
        {"export", trace, "--to", "html", dir.File("o.html"), "--colour"},
    };
    for (const auto& call : calls) {
        const CliRun run = RunCliInHome(dir, call);
        EXPECT_EQ(run.status, 2) << call.back();
        EXPECT_NE(run.err.find("zdt-cli export FILE --to html|rtf|csv|pdf OUT"), std::string::npos) << run.err;
    }
    EXPECT_EQ(FilesIn(dir.Path().string()), (std::vector<std::string>{"stderr.txt", "stdout.txt"}));
}

TEST(ExportCli, WhatCannotBeExportedSaysWhyAndWritesNothing) {
    TempDir dir;
    // Classic traces have no conversion: the proxy's words.
    CliRun run = RunCliInHome(
        dir, {"export", std::string(ZDT_SAMPLES_DIR) + "/can_bus_601.trc", "--to", "html", dir.File("o.html")});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("Converion of this type not implemented yet."), std::string::npos) << run.err;

    run = RunCliInHome(dir, {"export", dir.File("missing.xpvt"), "--to", "csv", dir.File("o.csv")});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("missing.xpvt"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(dir.File("o.html")) || fs::exists(dir.File("o.csv")));
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(ExportCli, FailuresEndInTheirBoxOnStandardErrorAndExitOne) {
    if (!HasXalan())
        GTEST_SKIP() << "Xalan is not installed";
    TempDir dir;
    const std::string trace = std::string(ZDT_SAMPLES_DIR) + "/snapshots_basic.snp";
    // No folder of that name: nothing can be written there, and no tool is run for it.
    CliRun run = RunCliInHome(dir, {"export", trace, "--to", "html", dir.File("no folder/o.html")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "The export could not be written to \"" + dir.File("no folder/o.html") +
                           "\": No such file or directory\n");

    // A document without declaration loses its third "<" on the way: the tool's words.
    std::string bare = TempDir::Read(trace);
    bare = bare.substr(bare.find("?>") + 2);
    run = RunCliInHome(dir, {"export", dir.Write("bare.snp", bare), "--to", "csv", dir.File("o.csv")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err.rfind("E011_001 [XSL Transformation failed.]\nError messages:\n\nstandard output stream:\n", 0),
              0u)
        << run.err;
    EXPECT_NE(run.err.find("Fatal Error"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(dir.File("o.csv")));
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(ExportCli, ExportsOfEveryFormatLandUnderTheChosenNameOnly) {
    if (!HasXalan())
        GTEST_SKIP() << "Xalan is not installed";
    TempDir dir;
    zdtgen::SnapshotOptions options;
    options.snapshots = 6;
    options.hostile = zdtgen::SnapshotHostile::InFileKinds();
    options.hostile.hugeAttributes = false;
    const std::string folder = dir.File("blank 'quote' \xC3\xBC #%");
    fs::create_directories(folder);
    const std::string trace =
        dir.Write(fs::path(folder).filename().string() + "/trace.snp", zdtgen::MakeSnapshot(options));
    std::vector<std::string> expected{"trace.snp"};
    for (const char* format : {"html", "rtf", "csv"}) {
        const std::string name = std::string("out \xC3\xA9 '") + format + "'." + format;
        const CliRun run = RunCliInHome(dir, {"export", trace, "--to", format, folder + "/" + name});
        EXPECT_EQ(run.status, 0) << format << ": " << run.err;
        EXPECT_GT(fs::file_size(folder + "/" + name), 500u) << format;
        expected.push_back(name);
    }
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(FilesIn(folder), expected);
    EXPECT_EQ(LeftoverFiles(dir), 0u);
}

TEST(ExportCli, TheListSeparatorChoosesTheCsvSheet) {
    if (!HasXalan())
        GTEST_SKIP() << "Xalan is not installed";
    TempDir dir;
    const std::string trace = std::string(ZDT_SAMPLES_DIR) + "/snapshots_basic.snp";
    const auto titleLine = [&](const std::vector<std::string>& options, const std::string& environment) {
        std::vector<std::string> call{"export", trace, "--to", "csv", dir.File("o.csv")};
        call.insert(call.end(), options.begin(), options.end());
        const CliRun run = RunCli(dir, call, "ZDT_ANALYZER_HOME=" + ShellQuote(dir.File("home")) + " " + environment);
        EXPECT_EQ(run.status, 0) << run.err;
        const std::string csv = TempDir::Read(dir.File("o.csv"));
        const std::size_t at = csv.find("Line");
        // Records end in CR LF.
        return at == std::string::npos ? csv : csv.substr(at, csv.find("\r\n", at) - at);
    };
    EXPECT_EQ(titleLine({"--list-separator", ";"}, ""), "Line;Event;Description;Name;Value;Unit");
    EXPECT_EQ(titleLine({"--list-separator", ","}, ""), "Line,Event,Description,Name,Value,Unit");
    // Without the option the C locale's decimal point decides: "." gives ",".
    EXPECT_EQ(titleLine({}, "LC_ALL=C"), "Line,Event,Description,Name,Value,Unit");
}

TEST(ExportCli, TheSchemaOfAProcessValueTraceChoosesItsSheets) {
    if (!HasXalan())
        GTEST_SKIP() << "Xalan is not installed";
    TempDir dir;
    zdtgen::XpvtTraceOptions options;
    options.results = 3;
    for (const auto& [schema, folder, titles] :
         {std::tuple{zdtgen::XpvtSchema::V701, "/xsl/xpvt/", "Line,Event,LogicalLink,CANID[hex],Abs.Time[ms]"},
          std::tuple{zdtgen::XpvtSchema::V702, "/xsl/xpvt_7_02/", "Line,Event,LogicalLink,Location,ID,Time"}}) {
        options.schema = schema;
        const std::string trace = dir.Write("t.xpvt", zdtgen::MakeXpvtTrace(options));
        fs::remove(dir.File("t.csv"));
        const CliRun run =
            RunCliInHome(dir, {"export", trace, "--to", "csv", dir.File("t.csv"), "--list-separator", ","});
        // Either the schema's sheet made the export, or its failure names that sheet.
        if (run.status == 0) {
            EXPECT_NE(TempDir::Read(dir.File("t.csv")).find(titles), std::string::npos)
                << TempDir::Read(dir.File("t.csv"));
        } else {
            EXPECT_NE(run.err.find(folder), std::string::npos) << run.err;
        }
    }
}

} // namespace

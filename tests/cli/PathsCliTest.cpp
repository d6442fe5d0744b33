#include "support/CliRunner.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path CliProgram = fs::path(ZDT_CLI_PATH);

std::string Expected(const std::string& installation, const std::string& dataRoot) {
    return "Installation files: " + installation + "\nTemporary root: " + dataRoot +
           "Temp/\nFilter files: " + dataRoot + "FilterDefaultDir/\n";
}

// A copy of zdt-cli at `program`, run there: it resolves its files from its own place.
CliRun RunCopiedCli(const TempDir& dir, const fs::path& program, const std::string& environment) {
    fs::create_directories(program.parent_path());
    fs::copy_file(CliProgram, program, fs::copy_options::overwrite_existing);
    const std::string out = dir.File("stdout.txt"), err = dir.File("stderr.txt");
    const std::string command = "env -u ZDT_ANALYZER_HOME " + environment + " " + ShellQuote(program.string()) +
                                " paths >" + ShellQuote(out) + " 2>" + ShellQuote(err);
    const int raw = std::system(command.c_str());
    CliRun run;
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = TempDir::Read(out);
    run.err = TempDir::Read(err);
    return run;
}

TEST(CliPaths, BuildTreeToolHasTheInstallationFilesBesideIt) {
    TempDir dir;
    const CliRun run = RunCliInHome(dir, {"paths"});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::string installation = CliProgram.parent_path().string() + "/Analyzer/";
    EXPECT_EQ(run.out, Expected(installation, dir.File("home") + "/"));
    // Asking resolves and creates nothing.
    EXPECT_FALSE(fs::exists(dir.File("home")));

    // The build copies every installation file for the tool itself, desktop or not.
    const fs::path source = fs::path(ZDT_SAMPLES_DIR).parent_path() / "Analyzer";
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(source)) {
        if (!entry.is_regular_file())
            continue;
        ++files;
        const fs::path copy = fs::path(installation) / fs::relative(entry.path(), source);
        EXPECT_TRUE(fs::is_regular_file(copy)) << copy;
    }
    EXPECT_GT(files, 0u);
}

TEST(CliPaths, InstalledToolReadsUnderItsPrefixAndKeepsDataInTheUsersFolder) {
    TempDir dir;
    const std::string prefix = dir.File("usr");
    fs::create_directories(prefix + "/share/zdt-analyzer/Analyzer/help");
    const std::string data = dir.File("data");

    const CliRun run = RunCopiedCli(dir, prefix + "/bin/zdt-cli", "XDG_DATA_HOME=" + ShellQuote(data));
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, Expected(prefix + "/share/zdt-analyzer/Analyzer/", data + "/ZDT-Analyzer/"));
}

TEST(CliPaths, MissingInstallationFilesAndStrayArgumentsFail) {
    TempDir dir;
    const CliRun missing = RunCopiedCli(dir, dir.Path() / "bin" / "zdt-cli", "HOME=" + ShellQuote(dir.File("user")));
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, "zdt-cli: the installation files are missing: " + dir.File("bin") + "/Analyzer/\n");

    const CliRun stray = RunCli(dir, {"paths", "extra"});
    EXPECT_EQ(stray.status, 2);
    EXPECT_EQ(stray.err.rfind("zdt-cli: paths takes no arguments\n", 0), 0u) << stray.err;
}

} // namespace

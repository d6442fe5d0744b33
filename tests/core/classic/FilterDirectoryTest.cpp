#include "classic/FilterDirectory.h"
#include "core/app/EnvironmentOverride.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

// An installation with the program in <root>/inst/bin and settings in <root>/Config.
class FilterDirectoryTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zdt-flt-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_root = pattern;
        m_programDir = m_root + "/inst/bin";
        fs::create_directories(m_programDir);
        fs::create_directories(m_root + "/Config");
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    // Settings written the way the Windows tools write them: quoted, with doubled backslashes.
    void WriteSettings(const std::string& projectPath, const std::string& tracePath) {
        std::ofstream(m_root + "/Config/zdt7.ini")
            << "[ProjectPath]\r\nProjectPath=\"" << Backslashed(projectPath) << "\";\r\n"
            << "[ECUTrace]\r\nTracePath=\"" << Backslashed(tracePath) << "\"\r\n";
    }

    static std::string Backslashed(const std::string& path) {
        std::string result;
        for (char c : path)
            result += c == '/' ? std::string("\\\\") : std::string(1, c);
        return result;
    }

    std::string m_root;
    std::string m_programDir;
};

} // namespace

TEST(CleanSettingsPath, DropsQuotesAndSemicolonsAndTurnsBackslashes) {
    EXPECT_EQ(zdt::CleanSettingsPath("\"\\\\srv\\\\data\\\\x\";"), "/srv/data/x");
    EXPECT_EQ(zdt::CleanSettingsPath("\\data\\x"), "/data/x");
    EXPECT_EQ(zdt::CleanSettingsPath("/plain/unix/path"), "/plain/unix/path");
    EXPECT_EQ(zdt::CleanSettingsPath(";\";"), "");
}

TEST_F(FilterDirectoryTest, TraceInsideAProjectWithItsFileUsesTheProjectFilters) {
    WriteSettings(m_root + "/projects", m_root + "/traces");
    fs::create_directories(m_root + "/projects/Golf");
    std::ofstream(m_root + "/projects/Golf/Golf.prj") << "";

    const std::string dir = zdt::FindFilterDirectory(m_programDir, m_root + "/elsewhere/Golf/run.trc");

    EXPECT_EQ(dir, m_root + "/projects/Golf/flt/");
    EXPECT_FALSE(fs::exists(m_root + "/traces"));
}

TEST_F(FilterDirectoryTest, ProjectWithoutItsFileFallsBackToTheCommonFolder) {
    WriteSettings(m_root + "/projects/", m_root + "/traces/");
    fs::create_directories(m_root + "/projects/Golf");
    std::ofstream(m_root + "/projects/Golf/Other.prj") << "";

    const std::string dir = zdt::FindFilterDirectory(m_programDir + "/", m_root + "/t/Golf/run.trc");

    EXPECT_EQ(dir, m_root + "/traces/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));
}

TEST_F(FilterDirectoryTest, PlainFileNamedLikeTheProjectDoesNotCount) {
    WriteSettings(m_root + "/projects", m_root + "/traces");
    fs::create_directories(m_root + "/projects");
    std::ofstream(m_root + "/projects/Golf") << "a file, not a folder";

    EXPECT_EQ(zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc"), m_root + "/traces/CommonCANFilters/");
}

TEST_F(FilterDirectoryTest, MissingSettingsUseTheProgramsOwnCommonFolder) {
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    const std::string dir = zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc");
    EXPECT_EQ(dir, m_programDir + "/Analyzer/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));
    EXPECT_FALSE(fs::exists("/CommonCANFilters"));
}

TEST_F(FilterDirectoryTest, EmptyTracePathUsesTheAnalyzerHomeWhenOneIsSet) {
    WriteSettings(m_root + "/projects", "");
    EnvironmentOverride home("ZDT_ANALYZER_HOME", (m_root + "/home/").c_str());
    const std::string dir = zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc");
    EXPECT_EQ(dir, m_root + "/home/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));
}

// The program lies below a plain file, so nothing can be made beside it.
TEST_F(FilterDirectoryTest, UnwritableInstallationUsesTheUserDataHome) {
    std::ofstream(m_root + "/blocker") << "";
    const std::string programDir = m_root + "/blocker/bin";
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    EnvironmentOverride xdg("XDG_DATA_HOME", nullptr);
    EnvironmentOverride userHome("HOME", (m_root + "/user").c_str());

    const std::string dir = zdt::FindFilterDirectory(programDir, m_root + "/t/Golf/run.trc");
    EXPECT_EQ(dir, m_root + "/user/.local/share/ZDT-Analyzer/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));

    EnvironmentOverride data("XDG_DATA_HOME", (m_root + "/data").c_str());
    EXPECT_EQ(zdt::FindFilterDirectory(programDir, m_root + "/t/Golf/run.trc"),
              m_root + "/data/ZDT-Analyzer/CommonCANFilters/");
}

TEST_F(FilterDirectoryTest, ReadOnlyInstallationUsesTheUserDataHome) {
    if (geteuid() == 0)
        GTEST_SKIP() << "permissions do not bind the super-user";
    const auto readOnly = fs::perms::owner_read | fs::perms::owner_exec;
    fs::permissions(m_root + "/inst", readOnly);
    fs::permissions(m_programDir, readOnly);
    EnvironmentOverride noHome("ZDT_ANALYZER_HOME", nullptr);
    EnvironmentOverride xdg("XDG_DATA_HOME", (m_root + "/data").c_str());

    const std::string dir = zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc");
    fs::permissions(m_programDir, fs::perms::owner_all);
    fs::permissions(m_root + "/inst", fs::perms::owner_all);
    EXPECT_EQ(dir, m_root + "/data/ZDT-Analyzer/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));
}

TEST_F(FilterDirectoryTest, TracePathThatCannotHoldTheFolderFallsBack) {
    std::ofstream(m_root + "/plain") << "";
    EnvironmentOverride home("ZDT_ANALYZER_HOME", (m_root + "/home").c_str());
    const std::string fallback = m_root + "/home/CommonCANFilters/";

    WriteSettings(m_root + "/projects", m_root + "/plain/traces");
    EXPECT_EQ(zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc"), fallback);
    // A drive letter names no folder here; it must not be made below the working directory.
    std::ofstream(m_root + "/Config/zdt7.ini") << "[ECUTrace]\r\nTracePath=\"C:\\\\Traces\"\r\n";
    EXPECT_EQ(zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc"), fallback);
    EXPECT_FALSE(fs::exists("C:"));
}

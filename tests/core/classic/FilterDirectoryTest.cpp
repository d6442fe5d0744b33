#include "classic/FilterDirectory.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

// An installation with the program in <root>/inst/bin and settings in <root>/Config.
class FilterDirectoryTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "zdt-flt-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_root = pattern;
        m_programDir = m_root + "/inst/bin";
        fs::create_directories(m_programDir);
        fs::create_directories(m_root + "/Config");
    }
    void TearDown() override
    {
        std::error_code ignored;
        fs::remove_all(m_root, ignored);
    }

    // Settings written the way the Windows tools write them: quoted, with doubled backslashes.
    void WriteSettings(const std::string& projectPath, const std::string& tracePath)
    {
        std::ofstream(m_root + "/Config/zdt7.ini")
            << "[ProjectPath]\r\nProjectPath=\"" << Backslashed(projectPath) << "\";\r\n"
            << "[ECUTrace]\r\nTracePath=\"" << Backslashed(tracePath) << "\"\r\n";
    }

    static std::string Backslashed(const std::string& path)
    {
        std::string result;
        for (char c : path)
            result += c == '/' ? std::string("\\\\") : std::string(1, c);
        return result;
    }

    std::string m_root;
    std::string m_programDir;
};

} // namespace

TEST(CleanSettingsPath, DropsQuotesAndSemicolonsAndTurnsBackslashes)
{
    EXPECT_EQ(zdt::CleanSettingsPath("\"\\\\srv\\\\data\\\\x\";"), "/srv/data/x");
    EXPECT_EQ(zdt::CleanSettingsPath("\\data\\x"), "/data/x");
    EXPECT_EQ(zdt::CleanSettingsPath("/plain/unix/path"), "/plain/unix/path");
    EXPECT_EQ(zdt::CleanSettingsPath(";\";"), "");
}

TEST_F(FilterDirectoryTest, TraceInsideAProjectWithItsFileUsesTheProjectFilters)
{
    WriteSettings(m_root + "/projects", m_root + "/traces");
    fs::create_directories(m_root + "/projects/Golf");
    std::ofstream(m_root + "/projects/Golf/Golf.prj") << "";

    const std::string dir = zdt::FindFilterDirectory(m_programDir, m_root + "/elsewhere/Golf/run.trc");

    EXPECT_EQ(dir, m_root + "/projects/Golf/flt/");
    EXPECT_FALSE(fs::exists(m_root + "/traces"));
}

TEST_F(FilterDirectoryTest, ProjectWithoutItsFileFallsBackToTheCommonFolder)
{
    WriteSettings(m_root + "/projects/", m_root + "/traces/");
    fs::create_directories(m_root + "/projects/Golf");
    std::ofstream(m_root + "/projects/Golf/Other.prj") << "";

    const std::string dir = zdt::FindFilterDirectory(m_programDir + "/", m_root + "/t/Golf/run.trc");

    EXPECT_EQ(dir, m_root + "/traces/CommonCANFilters/");
    EXPECT_TRUE(fs::is_directory(dir));
}

TEST_F(FilterDirectoryTest, PlainFileNamedLikeTheProjectDoesNotCount)
{
    WriteSettings(m_root + "/projects", m_root + "/traces");
    fs::create_directories(m_root + "/projects");
    std::ofstream(m_root + "/projects/Golf") << "a file, not a folder";

    EXPECT_EQ(zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc"),
              m_root + "/traces/CommonCANFilters/");
}

TEST_F(FilterDirectoryTest, MissingSettingsGiveTheCommonFolderBelowAnEmptyPath)
{
    EXPECT_EQ(zdt::FindFilterDirectory(m_programDir, m_root + "/t/Golf/run.trc"), "/CommonCANFilters/");
}

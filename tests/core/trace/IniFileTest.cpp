#include "trace/CIniFile.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class IniFileTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "zdt-ini-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_dir = pattern;
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(m_dir, ignored);
    }

    std::string Write(const std::string& name, const std::string& text) {
        const std::string path = m_dir + "/" + name;
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }

    std::string m_dir;
};

} // namespace

TEST_F(IniFileTest, FindsKeysBySectionWithoutRegardToCase) {
    CIniFile ini(Write("a.ini", "[CAN]\nType=StopFilter\nNoOfEntries=2\n[Other]\ntype=PassFilter\n"));

    EXPECT_EQ(ini.GetString("Type", "Unknown", "CAN"), "StopFilter");
    EXPECT_EQ(ini.GetString("TYPE", "Unknown", "can"), "StopFilter");
    EXPECT_EQ(ini.GetString("type", "Unknown", "OTHER"), "PassFilter");
    EXPECT_EQ(ini.GetString("NoOfEntries", "Unknown", "Other"), "Unknown");
    EXPECT_EQ(ini.GetString("Missing", "Unknown", "CAN"), "Unknown");
    EXPECT_EQ(ini.GetString("Type", "Unknown", "Nowhere"), "Unknown");

    ini.SetSection("CAN");
    EXPECT_EQ(ini.GetString("NoOfEntries", "0"), "2");
    EXPECT_FALSE(ini.HasError());
}

TEST_F(IniFileTest, TrimsBlanksStripsMatchingQuotesAndSkipsComments) {
    CIniFile ini(Write("b.ini", "; leading comment\r\n"
                                "  [ Paths ]  \r\n"
                                "  Plain  =  some value  \r\n"
                                "Double=\"  kept blanks  \"\r\n"
                                "Single='x;y'\r\n"
                                "Mismatched=\"abc'\r\n"
                                "Lone=\"\r\n"
                                "Inner=a \"b\" c\r\n"
                                ";Commented=yes\r\n"
                                "  ;Indented=yes\r\n"
                                "Equation=a=b=c\r\n"
                                "Empty=\r\n"
                                "NoEquals\r\n"
                                "Plain=second definition\r\n"
                                "Last=no line end"));

    EXPECT_EQ(ini.GetString("Plain", "", "Paths"), "some value");
    EXPECT_EQ(ini.GetString("Double", "", "Paths"), "  kept blanks  ");
    EXPECT_EQ(ini.GetString("Single", "", "Paths"), "x;y");
    EXPECT_EQ(ini.GetString("Mismatched", "", "Paths"), "\"abc'");
    EXPECT_EQ(ini.GetString("Lone", "", "Paths"), "\"");
    EXPECT_EQ(ini.GetString("Inner", "", "Paths"), "a \"b\" c");
    EXPECT_EQ(ini.GetString("Commented", "none", "Paths"), "none");
    EXPECT_EQ(ini.GetString("Indented", "none", "Paths"), "none");
    EXPECT_EQ(ini.GetString(";Commented", "none", "Paths"), "none");
    EXPECT_EQ(ini.GetString("Equation", "", "Paths"), "a=b=c");
    EXPECT_EQ(ini.GetString("Empty", "default", "Paths"), "");
    EXPECT_EQ(ini.GetString("NoEquals", "default", "Paths"), "default");
    EXPECT_EQ(ini.GetString("Last", "", "Paths"), "no line end");
}

TEST_F(IniFileTest, MissingFileGivesDefaultsWithoutTrailingBlanks) {
    CIniFile ini(m_dir + "/absent.ini");
    EXPECT_EQ(ini.GetString("Key", "fallback", "Section"), "fallback");
    EXPECT_EQ(ini.GetString("Key", "  padded  ", "Section"), "  padded");
    EXPECT_EQ(ini.GetString("Key", "", "Section"), "");
    EXPECT_FALSE(ini.HasError());
}

TEST_F(IniFileTest, LongValuesComeBackWholeUpToTheBufferLimit) {
    const std::string v5000(5000, 'a');
    const std::string v29997(29997, 'b');
    const std::string v29998(29998, 'c');
    const std::string v40000(40000, 'd');
    const std::string path =
        Write("long.ini", "[S]\nA=" + v5000 + "\nB=" + v29997 + "\nC=" + v29998 + "\nD=" + v40000 + "\nE=after\n");

    CIniFile ini(path);
    EXPECT_EQ(ini.GetString("A", "", "S"), v5000);
    EXPECT_EQ(ini.GetString("B", "", "S"), v29997);
    EXPECT_FALSE(ini.HasError());
    EXPECT_EQ(ini.GetString("E", "", "S"), "after");

    EXPECT_EQ(ini.GetString("C", "default", "S"), "");
    EXPECT_TRUE(ini.HasError());

    CIniFile other(path);
    EXPECT_EQ(other.GetString("D", "default", "S"), "");
    EXPECT_TRUE(other.HasError());
}

TEST_F(IniFileTest, NameWithoutDirectoryIsLookedForInTheWorkingDirectory) {
    Write("local.ini", "[S]\nK=here\n");
    const fs::path previous = fs::current_path();
    fs::current_path(m_dir);
    CIniFile ini("local.ini");
    const std::string value = ini.GetString("K", "absent", "S");
    fs::current_path(previous);

    EXPECT_EQ(value, "here");
}

TEST_F(IniFileTest, KeysBeforeTheFirstSectionBelongToNoNamedSection) {
    CIniFile ini(Write("c.ini", "\xEF\xBB\xBFTop=1\n[S]\nTop=2\n"));
    EXPECT_EQ(ini.GetString("Top", "", "S"), "2");
    EXPECT_EQ(ini.GetString("Top", "", ""), "1");
}

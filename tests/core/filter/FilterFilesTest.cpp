// The two filter file formats: .pvflt with its two readers, .pvflt2 with its record.
#include "filter/FilterCondition702.h"
#include "filter/PvfltFile.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer::Filter;
using XPVT_7_01::FilterConditionMap;

TEST(PvfltFile, DefaultsHaveSixtyTwoKeys) {
    const FilterConditionMap defaults = XPVT_7_01::defaultFilterConditionMap();
    EXPECT_EQ(defaults.size(), 62u);
    EXPECT_EQ(defaults.at("IncludeCompleteResultPduRequest"), "0");
    EXPECT_EQ(defaults.at("BothErrorSeverity"), "0");
    EXPECT_EQ(defaults.at("PduBytePatternResponse"), "");
    EXPECT_EQ(defaults.at("ErrorSeverityBoth"), "");
    EXPECT_EQ(defaults.at("ExcludeItems"), "");
    EXPECT_EQ(defaults.count("PduResponse"), 0u);
}

TEST(PvfltFile, WrittenInKeyOrderAndReadBackByTheRunReader) {
    TempDir dir;
    const std::string path = dir.File("f.pvflt");
    ASSERT_TRUE(XPVT_7_01::writeFilterFile(path, {{"b", "2"}, {"a", ""}, {"c", "x y"}}));
    EXPECT_EQ(TempDir::Read(path), "a\n\nb\n2\nc\nx y\n");
    FilterConditionMap read{{"kept", "1"}};
    ASSERT_TRUE(XPVT_7_01::readFilterFileForRun(path, read));
    EXPECT_EQ(read, (FilterConditionMap{{"a", ""}, {"b", "2"}, {"c", "x y"}, {"kept", "1"}}));
}

TEST(PvfltFile, RunReaderDropsAValueWithoutLineFeed) {
    TempDir dir;
    FilterConditionMap read;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForRun(dir.Write("f", "k\nv\nlast\nunfinished"), read));
    EXPECT_EQ(read, (FilterConditionMap{{"k", "v"}}));
    read.clear();
    ASSERT_TRUE(XPVT_7_01::readFilterFileForRun(dir.Write("e", ""), read));
    EXPECT_TRUE(read.empty());
    EXPECT_FALSE(XPVT_7_01::readFilterFileForRun(dir.File("missing"), read));
}

TEST(PvfltFile, EditReaderAddsOneEndOfFilePairThatSavingKeeps) {
    TempDir dir;
    const std::string path = dir.File("f.pvflt");
    ASSERT_TRUE(XPVT_7_01::writeFilterFile(path, {{"k", "v"}}));
    FilterConditionMap edited{{"old", "gone"}};
    std::string error;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForEdit(path, edited, error));
    EXPECT_EQ(edited, (FilterConditionMap{{"k", "v"}, {"\xFF", "\xFF"}}));
    // Saved and edited again: still one such pair, and the run reader passes it on.
    ASSERT_TRUE(XPVT_7_01::writeFilterFile(path, edited));
    ASSERT_TRUE(XPVT_7_01::readFilterFileForEdit(path, edited, error));
    EXPECT_EQ(edited, (FilterConditionMap{{"k", "v"}, {"\xFF", "\xFF"}}));
    FilterConditionMap run;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForRun(path, run));
    EXPECT_EQ(run, (FilterConditionMap{{"k", "v"}, {"\xFF", "\xFF"}}));
}

TEST(PvfltFile, EditReaderAtAnUnfinishedLineAndAMissingFile) {
    TempDir dir;
    FilterConditionMap edited;
    std::string error;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForEdit(dir.Write("f", "k\nv"), edited, error));
    EXPECT_EQ(edited, (FilterConditionMap{{"k", "v\xFF"}}));
    EXPECT_FALSE(XPVT_7_01::readFilterFileForEdit(dir.File("missing"), edited, error));
    EXPECT_EQ(error, "Could not open input file");
    EXPECT_TRUE(edited.empty());
}

XPVT_7_02::FilterCondition702 sampleRecord() {
    XPVT_7_02::FilterCondition702 r;
    r.includeResults = true;
    r.logicalLink = {true, false, "LL 1"};
    r.requestMessage = {false, true, "two\nlines"};
    r.responseParameterFilter = true;
    r.responseParameterValue = {true, true, ""};
    return r;
}

TEST(Pvflt2File, RoundTripWithThirtyFiveFlagsAndFifteenTexts) {
    TempDir dir;
    const std::string path = dir.File("f.pvflt2");
    ASSERT_TRUE(XPVT_7_02::saveFilter702(path, sampleRecord()));
    const std::string bytes = TempDir::Read(path);
    EXPECT_EQ(bytes.rfind("false\ntrue\nfalse\n4 LL 1\nfalse\nfalse\n0 \n", 0), 0u);
    std::size_t trueLines = 0, falseLines = 0;
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t end = bytes.find('\n', at);
        const std::string line = bytes.substr(at, end - at);
        trueLines += line == "true";
        falseLines += line == "false";
        at = end + 1;
    }
    EXPECT_EQ(trueLines + falseLines, 35u);
    XPVT_7_02::FilterCondition702 read;
    ASSERT_TRUE(XPVT_7_02::loadFilter702(path, read));
    EXPECT_EQ(read, sampleRecord());
}

TEST(Pvflt2File, FlagLinesCountByTheirFirstCharacter) {
    TempDir dir;
    ASSERT_TRUE(XPVT_7_02::saveFilter702(dir.File("f"), sampleRecord()));
    // Any line starting with "t" is true; anything else, an empty line too, is false.
    std::string bytes;
    int falseLines = 0;
    const std::string saved = TempDir::Read(dir.File("f"));
    for (std::size_t at = 0; at < saved.size();) {
        const std::size_t end = saved.find('\n', at);
        std::string line = saved.substr(at, end - at);
        if (line == "true")
            line = "tea";
        else if (line == "false")
            line = (falseLines++ % 2 == 0) ? "" : "True";
        bytes += line + "\n";
        at = end + 1;
    }
    XPVT_7_02::FilterCondition702 read;
    ASSERT_TRUE(XPVT_7_02::loadFilter702(dir.Write("g", bytes), read)) << bytes;
    EXPECT_EQ(read, sampleRecord());
}

TEST(Pvflt2File, FilesThatAreNoRecordAreRefused) {
    TempDir dir;
    const std::string good = [&] {
        XPVT_7_02::saveFilter702(dir.File("good"), sampleRecord());
        return TempDir::Read(dir.File("good"));
    }();
    XPVT_7_02::FilterCondition702 read = sampleRecord();
    read.includeOpenCloseLogicalLinks = true;
    const XPVT_7_02::FilterCondition702 before = read;
    for (const std::string& bad :
         {std::string(), good.substr(0, good.size() / 2), std::string("\x01\x02\xFF\x00zz", 6),
          std::string("AfterStartStopTrace\n1\nBothErrorCode\n0\n"), std::string("false\nfalse\nfalse\n99 short\n")}) {
        EXPECT_FALSE(XPVT_7_02::loadFilter702(dir.Write("bad", bad), read)) << bad;
        EXPECT_EQ(read, before);
    }
    EXPECT_FALSE(XPVT_7_02::loadFilter702(dir.File("missing"), read));
}

} // namespace

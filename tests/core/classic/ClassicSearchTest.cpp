#include "classic/ClassicSearch.h"
#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"
#include "support/RecordingMessages.h"

#include <gtest/gtest.h>

namespace {

using namespace classic_traces;
using Rows = std::vector<zdt::RowIndex>;

Rows Search(CAnalyzerDoc& doc, const ClassicFindCriteria& criteria, bool markAll = false) {
    const FindOkResult ok = ValidateFindCriteria(criteria);
    if (!ok.hasCriteria)
        return {};
    ScanClassicTrace(doc, criteria, markAll);
    return doc.FindResults();
}

// Line bytes at 1,000 µs steps in a delta file: row times are the gaps as written.
std::string Gaps(std::initializer_list<unsigned> gaps) {
    std::string text = Head("ZDT Trace File", "2") + "[TraceData]\r\n";
    for (const unsigned gap : gaps) {
        char line[64];
        std::snprintf(line, sizeof line, "0003 %08X 0001 55 00\r\n", gap);
        text += line;
    }
    return text;
}

TEST(ClassicFindOk, ValidatesBoundsAndDataForm) {
    ClassicFindCriteria c;
    c.minTime = "2";
    c.maxTime = "1";
    EXPECT_TRUE(ValidateFindCriteria(c).staysOpen);
    EXPECT_EQ(ValidateFindCriteria(c).message, "Maximum time must be greater than minimum time!");
    c.maxTime = "2";
    EXPECT_FALSE(ValidateFindCriteria(c).staysOpen); // equal bounds are accepted
    EXPECT_FALSE(ValidateFindCriteria(c).hasCriteria);
    c.useTime = true;
    EXPECT_TRUE(ValidateFindCriteria(c).hasCriteria);
    c.maxTime.clear();
    c.minTime.clear();
    EXPECT_FALSE(ValidateFindCriteria(c).hasCriteria); // an empty bound is passed over

    ClassicFindCriteria data;
    data.useData = true;
    for (const char* good : {"", "01", "01,02", "01,02,", "AA,BB,CC"})
        EXPECT_TRUE(IsDataFormValid(good)) << good;
    for (const char* bad : {"1,2", "1", "012", "01,2", ",01", "01, 02"})
        EXPECT_FALSE(IsDataFormValid(bad)) << bad;
    data.dataText = "1,2";
    const FindOkResult result = ValidateFindCriteria(data);
    EXPECT_TRUE(result.badDataForm);
    EXPECT_FALSE(result.hasCriteria);
    EXPECT_EQ(result.message, "Nothing Found!");
    EXPECT_EQ(DataPattern("01, 02 ,03"), "01 02 03");
}

TEST(ClassicFindInput, RefusesWhatIsNoHexDigit) {
    EXPECT_FALSE(HexInputRefusal("7e", true));
    EXPECT_FALSE(HexInputRefusal("", true));
    EXPECT_EQ(HexInputRefusal("7,", true), std::optional<std::string>("\",\"  is not a valid hexadecimal character!"));
    EXPECT_FALSE(HexInputRefusal("01,", false));
    EXPECT_EQ(HexInputRefusal("0g", false), std::optional<std::string>("\"g\"  is not a valid hexadecimal character!"));
    std::vector<std::string> refusals;
    EXPECT_EQ(TypeIntoHexEdit("7x,E8123456789", true, 8, &refusals), "7E812345");
    EXPECT_EQ(refusals.size(), 2u);
}

TEST(ClassicFindEnabling, FollowsClassesAndSchema) {
    const FindDialogEnabling can = FindEnabling(601, false, true, false);
    EXPECT_TRUE(can.time);
    EXPECT_TRUE(can.busOff);
    EXPECT_FALSE(can.warning96);
    EXPECT_FALSE(can.timerOverflow);
    const FindDialogEnabling kline = FindEnabling(601, true, false, true);
    EXPECT_TRUE(kline.warning96 && kline.receivedCorruptedBytes && kline.timerOverflow && kline.bufferOverflow);
    const FindDialogEnabling v701 = FindEnabling(701, true, true, true);
    EXPECT_FALSE(v701.time || v701.errorPassive || v701.errorActive || v701.busOff || v701.errorFrame);
    EXPECT_TRUE(v701.warning96);
    ClassicFindCriteria c;
    c.useTime = c.busOff = c.warning96 = true;
    ApplyEnabling(c, v701);
    EXPECT_FALSE(c.useTime || c.busOff);
    EXPECT_TRUE(c.warning96);
}

TEST(ClassicFindScan, TimeBoundsRoundToHalfAUnit) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("g.trc", Gaps({499, 500, 2499, 2500, 1000}))));
    ClassicFindCriteria c;
    c.useTime = true;
    c.minTime = "1";
    c.maxTime = "2";
    EXPECT_EQ(Search(doc, c), (Rows{1, 2, 4}));
    c.minTime = c.maxTime = "1";
    EXPECT_EQ(Search(doc, c), (Rows{1, 4}));
    doc.SetTimeMode(TimeMode::Absolute); // seconds: 0.0005 .. 0.0074
    c.minTime = "0";
    c.maxTime = "0";
    EXPECT_EQ(Search(doc, c), (Rows{0, 1, 2, 3, 4}));
}

TEST(ClassicFindScan, DataPatternsRunOverFollowingFrames) {
    TempDir dir;
    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(
        dir.Write("c.trc", Head("CAN Onboard", "601") +
                               CrLf({"[TraceData]", "5000 01 000007E8 0000001000 0003 10 20 01 00 00 00 00 00",
                                     "5000 01 000007E8 0000001100 0002 02 03 00 00 00 00 00 00", "4403 01 X 0000001200",
                                     "5000 01 000007E8 0000001300 0001 04 00 00 00 00 00 00 00",
                                     "5000 01 000007E0 0000001400 0002 05 06 00 00 00 00 00 00"}))));
    ClassicFindCriteria c;
    c.useData = true;
    c.dataText = "01,02";
    EXPECT_EQ(Search(doc, c), (Rows{0}));
    c.dataText = "02,03";
    EXPECT_EQ(Search(doc, c), (Rows{1}));
    c.dataText = "03,04"; // an event stands between the frames
    EXPECT_EQ(Search(doc, c), (Rows{}));
    c.dataText = "04,05,06";
    EXPECT_EQ(Search(doc, c), (Rows{3}));
    c.dataText = "20,01,02,03";
    EXPECT_EQ(Search(doc, c), (Rows{0}));

    c.useIdentifier = true;
    c.identifierText = "7E0";
    c.dataText = "05";
    EXPECT_EQ(Search(doc, c), (Rows{4}));
    c.useData = false;
    c.identifierText = "FFFFFFFF"; // records without identifier
    EXPECT_EQ(Search(doc, c), (Rows{2}));
    c.useIdentifier = false;
    c.busOff = true;
    EXPECT_EQ(Search(doc, c), (Rows{2}));
    c.useData = true;
    c.dataText = "10";
    EXPECT_EQ(Search(doc, c, true), (Rows{0, 2})); // events widen, data narrows
    EXPECT_EQ(doc.Bookmarks(), (Rows{0, 2}));
}

TEST(ClassicFindNavigation, NextAndPreviousWrapOnYes) {
    RecordingMessages messages;
    const Rows results{2, 5, 9};
    EXPECT_EQ(FindNext(results, 2, &messages), 5);
    EXPECT_EQ(FindNext(results, -1, &messages), 2);
    EXPECT_EQ(FindNext(results, 9, &messages), -1);
    ASSERT_EQ(messages.asked.size(), 1u);
    EXPECT_EQ(messages.asked[0].text,
              "Analyzer has reached the end of the document.\n Do you want to continue searching at the begining?");
    messages.answerYes = true;
    EXPECT_EQ(FindNext(results, 9, &messages), 2);
    EXPECT_EQ(FindPrevious(results, 5, &messages), 2);
    EXPECT_EQ(FindPrevious(results, 2, &messages), 9);
    EXPECT_EQ(messages.asked.back().text,
              "ZDT has reached the top of the document.\n Do you want to continue searching at the end?");
    EXPECT_EQ(FindNext({}, 0, &messages), -1);
}

} // namespace

#include "xpvt/FindSheet702Logic.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer::Find::XPVT_7_02;
using ZDTAnalyzer::XpvtFindCriteria702;

TEST(FindSheet702Run, ActivePageIsTheFirstPressedInPageOrder) {
    XpvtFindCriteria702 criteria;
    EXPECT_EQ(openingPage(criteria), 0);

    beginRun(criteria);
    criteria.parameterSection.findPressed = true;
    criteria.primitiveSection.findPressed = true;
    endRun(criteria);
    EXPECT_EQ(criteria.activePage, XpvtFindCriteria702::PrimitivePage);
    EXPECT_EQ(openingPage(criteria), 3);

    beginRun(criteria); // the flags of the last run are gone before the sheet shows
    EXPECT_FALSE(criteria.logicalLinkSection.findPressed || criteria.requestSection.findPressed ||
                 criteria.responseSection.findPressed || criteria.primitiveSection.findPressed ||
                 criteria.resultSection.findPressed || criteria.parameterSection.findPressed);
    criteria.parameterSection.findPressed = true;
    endRun(criteria);
    EXPECT_EQ(openingPage(criteria), 5);

    beginRun(criteria); // left by "Close": back to the first page
    endRun(criteria);
    EXPECT_EQ(criteria.activePage, 0);

    beginRun(criteria);
    criteria.logicalLinkSection.findPressed = true;
    criteria.resultSection.findPressed = true;
    endRun(criteria);
    EXPECT_EQ(criteria.activePage, 0);

    criteria.activePage = 9;
    EXPECT_EQ(openingPage(criteria), 0);
}

TEST(FindSheet702ParameterPage, ValueOverwritesDataTypeAndValueStaysEmpty) {
    XpvtFindCriteria702::ParameterSection section;
    section.nameOn = section.dataTypeOn = section.valueOn = section.rangeOn = false;
    collectParameterPage({"Speed", "A_UINT32", "120", "0..255"}, section);
    EXPECT_EQ(section.name, "Speed");
    EXPECT_EQ(section.dataType, "120"); // the "Data Type:" text is lost
    EXPECT_EQ(section.value, "");
    EXPECT_EQ(section.range, "0..255");
    EXPECT_TRUE(section.nameOn && section.dataTypeOn && section.valueOn && section.rangeOn);

    // Shown again, both middle edits carry the value's text.
    const ParameterPageTexts shown = showParameterPage(section);
    EXPECT_EQ(shown.name, "Speed");
    EXPECT_EQ(shown.dataType, "120");
    EXPECT_EQ(shown.value, "120");
    EXPECT_EQ(shown.range, "0..255");

    // A second collect with an emptied value edit empties dataType too.
    collectParameterPage({"Speed", "120", "", ""}, section);
    EXPECT_EQ(section.dataType, "");
    EXPECT_EQ(section.range, "");
}

} // namespace

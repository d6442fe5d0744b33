#include "xpvt/FindSheet701Logic.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer::Find::XPVT_7_01;
using ZDTAnalyzer::XpvtFindCriteria701;

// Every flag of the record, in order, so that a test can say exactly which are set.
std::string flagsOf(const XpvtFindCriteria701& c) {
    std::string flags;
    for (bool flag :
         {c.searchPrimitives, c.searchRequests, c.searchResponses, c.searchBothSides, c.matchAll, c.matchByName,
          c.pduEnabled, c.parameterEnabled, c.parameterValueEnabled, c.errorEnabled, c.errorByCode, c.errorBySeverity})
        flags += flag ? '1' : '0';
    return flags;
}

TEST(FindSheet701Writing, NoPagePressedLeavesTheRecord) {
    FindSheetPages pages;
    pages.request.all = true; // filled in but left by "Close"
    pages.comPrimitive.name = "x";
    XpvtFindCriteria701 criteria;
    criteria.pduEnabled = true;
    criteria.pduText = "10 01";
    EXPECT_FALSE(writeCriteria(pages, criteria));
    EXPECT_EQ(flagsOf(criteria), "000000100000");
    EXPECT_EQ(criteria.pduText, "10 01");
    EXPECT_EQ(criteria.nameText, "");
}

TEST(FindSheet701Writing, ComPrimitivePageAllOrName) {
    FindSheetPages pages;
    pages.comPrimitive.all = true;
    pages.comPrimitive.name = "ignored";
    collect(pages.comPrimitive);
    EXPECT_FALSE(pages.comPrimitive.nameOn);
    XpvtFindCriteria701 criteria;
    EXPECT_TRUE(writeCriteria(pages, criteria));
    EXPECT_EQ(flagsOf(criteria), "100010000000");
    EXPECT_EQ(criteria.nameText, "");

    FindSheetPages byName;
    byName.comPrimitive.name = "LL_Engine";
    collect(byName.comPrimitive);
    XpvtFindCriteria701 named;
    EXPECT_TRUE(writeCriteria(byName, named));
    EXPECT_EQ(flagsOf(named), "100001000000");
    EXPECT_EQ(named.nameText, "LL_Engine");
}

TEST(FindSheet701Writing, RequestAndResponseBranches) {
    struct Case {
        bool all, pduOn, byName;
        const char* flags;
        const char* nameText;
        const char* pduText;
        const char* parameterText;
    };
    // All wins over PDU, PDU over parameter; a parameter goes by name or else by value.
    const Case cases[] = {
        {true, true, true, "010010000000", "", "", ""},
        {false, true, true, "010000100000", "", "22 F1", ""},
        {false, false, true, "010001010000", "Speed", "", ""},
        {false, false, false, "010000011000", "", "", "42"},
    };
    for (const Case& c : cases) {
        FindSheetPages pages;
        RequestPage& page = pages.request;
        page.findPressed = true;
        page.all = c.all;
        page.pduOn = c.pduOn;
        page.parameterOn = true;
        page.byName = c.byName;
        page.byValue = !c.byName;
        page.pdu = "22 F1";
        page.parameterName = "Speed";
        page.parameterValue = "42";
        XpvtFindCriteria701 criteria;
        EXPECT_TRUE(writeCriteria(pages, criteria));
        EXPECT_EQ(flagsOf(criteria), c.flags);
        EXPECT_EQ(criteria.nameText, c.nameText);
        EXPECT_EQ(criteria.pduText, c.pduText);
        EXPECT_EQ(criteria.parameterText, c.parameterText);

        // The Response page writes the same, on the response side.
        FindSheetPages response;
        static_cast<RequestPage&>(response.response) = page;
        XpvtFindCriteria701 responseCriteria;
        EXPECT_TRUE(writeCriteria(response, responseCriteria));
        std::string expected = c.flags;
        expected[1] = '0';
        expected[2] = '1';
        EXPECT_EQ(flagsOf(responseCriteria), expected);
        EXPECT_EQ(responseCriteria.parameterText, c.parameterText);
    }
}

TEST(FindSheet701Writing, ResultPageBranchesAndTheUnusedValueEdit) {
    FindSheetPages pages;
    ResultPage& page = pages.result;
    page.findPressed = true;
    page.parameterOn = true;
    page.byValue = true; // "Value" chosen, yet the "Name" edit's text is what counts
    page.parameterName = "from name edit";
    page.parameterValue = "from value edit";
    XpvtFindCriteria701 byValue;
    EXPECT_TRUE(writeCriteria(pages, byValue));
    EXPECT_EQ(flagsOf(byValue), "000100011000");
    EXPECT_EQ(byValue.parameterText, "from name edit");
    EXPECT_EQ(byValue.nameText, "");

    page.byName = true;
    page.byValue = false;
    XpvtFindCriteria701 byName;
    writeCriteria(pages, byName);
    EXPECT_EQ(flagsOf(byName), "000101011000");
    EXPECT_EQ(byName.nameText, "from name edit");
    EXPECT_EQ(byName.parameterText, "from name edit");

    page.parameterOn = false;
    page.errorOn = true;
    page.code = "E42";
    page.severity = "High";
    XpvtFindCriteria701 bySeverity;
    writeCriteria(pages, bySeverity);
    EXPECT_EQ(flagsOf(bySeverity), "000100000101");
    EXPECT_EQ(bySeverity.errorSeverityText, "High");
    EXPECT_EQ(bySeverity.errorCodeText, "");

    page.byCode = true;
    XpvtFindCriteria701 byCode;
    writeCriteria(pages, byCode);
    EXPECT_EQ(flagsOf(byCode), "000100000110");
    EXPECT_EQ(byCode.errorCodeText, "E42");

    page.pduOn = true; // PDU comes before the error branch
    page.pdu = "7F";
    XpvtFindCriteria701 pdu;
    writeCriteria(pages, pdu);
    EXPECT_EQ(flagsOf(pdu), "000100100000");
    EXPECT_EQ(pdu.pduText, "7F");
}

TEST(FindSheet701Writing, FirstPressedPageInPageOrderWrites) {
    FindSheetPages pages;
    pages.result.findPressed = true;
    pages.result.all = true;
    pages.request.findPressed = true;
    pages.request.pduOn = true;
    pages.request.pdu = "10";
    XpvtFindCriteria701 criteria;
    EXPECT_TRUE(writeCriteria(pages, criteria));
    EXPECT_EQ(flagsOf(criteria), "010000100000");
}

// A flag once set stays: a later search adds its conditions, and changes only the texts
// its own page writes.
TEST(FindSheet701Writing, SearchesAccumulate) {
    XpvtFindCriteria701 criteria;
    FindSheetPages first;
    first.comPrimitive.all = true;
    collect(first.comPrimitive);
    writeCriteria(first, criteria);

    FindSheetPages second;
    second.request.findPressed = true;
    second.request.parameterOn = true;
    second.request.byName = true;
    second.request.parameterName = "Rpm";
    writeCriteria(second, criteria);
    EXPECT_EQ(flagsOf(criteria), "110011010000");
    EXPECT_EQ(criteria.nameText, "Rpm");

    FindSheetPages third;
    third.response.findPressed = true;
    third.response.pduOn = true;
    third.response.pdu = "62";
    writeCriteria(third, criteria);
    EXPECT_EQ(flagsOf(criteria), "111011110000");
    EXPECT_EQ(criteria.nameText, "Rpm");
    EXPECT_EQ(criteria.pduText, "62");
}

TEST(FindSheet701Enabling, RequestPagePairsAndAll) {
    RequestPage page; // blank, as every page starts
    settlePairs(page);
    EXPECT_TRUE(page.pduOn);
    EXPECT_FALSE(page.parameterOn);
    EXPECT_TRUE(page.byName);
    EXPECT_FALSE(page.byValue);
    RequestEnabling e = enablingOf(page);
    EXPECT_TRUE(e.pdu && e.pduEdit && e.parameter);
    EXPECT_FALSE(e.byName || e.byValue || e.parameterNameEdit || e.parameterValueEdit);

    page.pduOn = false;
    page.parameterOn = true;
    page.byName = false;
    page.byValue = true;
    settlePairs(page);
    EXPECT_FALSE(page.pduOn); // the other one of the pair is set: nothing to do
    EXPECT_FALSE(page.byName);
    e = enablingOf(page);
    EXPECT_FALSE(e.pduEdit);
    EXPECT_TRUE(e.byName && e.byValue && e.parameterValueEdit);
    EXPECT_FALSE(e.parameterNameEdit);

    page.parameterOn = false; // clearing the last of the pair sets "PDU" again
    page.byValue = false;
    settlePairs(page);
    EXPECT_TRUE(page.pduOn);
    EXPECT_TRUE(page.byName);

    page.all = true;
    page.parameterOn = true;
    e = enablingOf(page);
    EXPECT_FALSE(e.pdu || e.pduEdit || e.parameter || e.byName || e.byValue || e.parameterNameEdit ||
                 e.parameterValueEdit);
}

TEST(FindSheet701Enabling, ResponsePageFirstActivationOnly) {
    ResponsePage page;
    page.all = true;
    page.parameterOn = true;
    page.byValue = true;
    activate(page);
    EXPECT_TRUE(page.pduOn && page.byName);
    EXPECT_FALSE(page.all || page.parameterOn || page.byValue || page.firstActivation);

    page.all = true;
    page.byValue = true;
    activate(page); // later activations keep what the user set
    EXPECT_TRUE(page.all && page.byValue);
}

TEST(FindSheet701Enabling, ResultPageGroupOfThree) {
    ResultPage page;
    settlePairs(page);
    EXPECT_TRUE(page.pduOn);
    EXPECT_TRUE(page.byCode);

    page.errorOn = true;
    clickGroupBox(page, ResultGroupBox::Error);
    EXPECT_FALSE(page.pduOn || page.parameterOn);
    ResultEnabling e = enablingOf(page);
    EXPECT_TRUE(e.error && e.byCode && e.bySeverity && e.codeEdit);
    EXPECT_FALSE(e.severityEdit || e.pduEdit || e.byName);

    page.parameterOn = true;
    clickGroupBox(page, ResultGroupBox::Parameter);
    EXPECT_FALSE(page.errorOn);
    EXPECT_FALSE(page.pduOn);
    e = enablingOf(page);
    EXPECT_FALSE(e.byCode || e.codeEdit);
    EXPECT_TRUE(e.byName && e.parameterNameEdit);

    page.pduOn = true;
    clickGroupBox(page, ResultGroupBox::Pdu);
    EXPECT_TRUE(page.pduOn && page.parameterOn);

    page.pduOn = page.parameterOn = false; // unticking the last one of the three
    clickGroupBox(page, ResultGroupBox::Parameter);
    EXPECT_TRUE(page.pduOn);

    page.all = true;
    page.errorOn = true;
    e = enablingOf(page);
    EXPECT_FALSE(e.pdu || e.parameter || e.error || e.byCode || e.codeEdit || e.pduEdit);
}

TEST(FindSheet701Enabling, ComPrimitiveAllDisablesTheName) {
    ComPrimitivePage page;
    EXPECT_TRUE(enablingOf(page).nameEdit);
    page.all = true;
    EXPECT_FALSE(enablingOf(page).nameEdit);
}

} // namespace

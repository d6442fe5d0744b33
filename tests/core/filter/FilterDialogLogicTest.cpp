// The decisions of the filter dialogs of both schemas and of the snapshot filter.
#include "filter/FilterDialog701Logic.h"
#include "filter/FilterDialog702Logic.h"
#include "filter/SnpFilterDlgLogic.h"

#include <gtest/gtest.h>

namespace {

using namespace ZDTAnalyzer::Filter;
using XPVT_7_01::ConditionRow;
using XPVT_7_01::FilterDialogControls;

FilterDialogControls resultControls(bool request, bool response, int item, int by) {
    FilterDialogControls c;
    c.eventGroup = 1;
    c.request = request;
    c.response = response;
    c.resultItem = item;
    c.parameterBy = by;
    c.errorBy = by;
    return c;
}

TEST(FilterDialog701, AddingResultConditionsSetsFlagTextAndCompleteChoice) {
    auto conditions = XPVT_7_01::defaultFilterConditionMap();
    FilterDialogControls c = resultControls(true, true, 1, 2);
    c.parameterValue = "42";
    c.complete = true;
    const auto added = XPVT_7_01::addCondition(c, conditions);
    ASSERT_TRUE(added.row);
    EXPECT_EQ(*added.row, (ConditionRow{"Result", "yes", "yes", "yes", "Parameter", "Value", "42"}));
    EXPECT_EQ(conditions.at("BothParameterValue"), "1");
    EXPECT_EQ(conditions.at("ParameterValueBoth"), "42");
    EXPECT_EQ(conditions.at("IncludeCompleteResultParameterValueBoth"), "1");

    c = resultControls(false, true, 0, -1);
    c.pduPattern = "";
    ASSERT_TRUE(XPVT_7_01::addCondition(c, conditions).row);
    EXPECT_EQ(conditions.at("ResponsePdu"), "1");
    EXPECT_EQ(conditions.at("IncludeCompleteResultPduResponse"), "0");
    EXPECT_EQ(conditions.size(), 62u);
}

TEST(FilterDialog701, TraceConditionsAndInvalidCombinations) {
    auto conditions = XPVT_7_01::defaultFilterConditionMap();
    FilterDialogControls c;
    c.eventGroup = 0;
    c.traceItem = 2;
    c.comPrimitiveBy = 1;
    c.comPrimitiveId = "7";
    EXPECT_EQ(*XPVT_7_01::addCondition(c, conditions).row,
              (ConditionRow{"Trace or Primitive", "", "", "", "ComPrimitive", "ID", "7"}));
    EXPECT_EQ(conditions.at("AfterComPrimitiveId"), "1");
    EXPECT_EQ(conditions.at("ComPrimitiveId"), "7");

    const auto before = conditions;
    for (const FilterDialogControls& bad : {FilterDialogControls{}, resultControls(false, false, 0, 0),
                                            resultControls(true, false, 1, -1), resultControls(true, false, -1, 0), [] {
                                                FilterDialogControls t;
                                                t.eventGroup = 0;
                                                t.traceItem = 2;
                                                return t;
                                            }()}) {
        const auto outcome = XPVT_7_01::addCondition(bad, conditions);
        EXPECT_FALSE(outcome.row);
        ASSERT_TRUE(outcome.box);
        EXPECT_EQ(outcome.box->title, "E012_001 [Filter condition.]");
        EXPECT_EQ(outcome.box->text, "Invalid filter condition.");
    }
    EXPECT_EQ(conditions, before);
}

TEST(FilterDialog701, EditRowsInDialogOrderWithTheSeverityQuirk) {
    auto conditions = XPVT_7_01::defaultFilterConditionMap();
    conditions["AfterComPrimitiveLogicalLinkName"] = "1";
    conditions["LogicalLinkName"] = "LL";
    conditions["AfterStartStopTrace"] = "1";
    conditions["RequestErrorSeverity"] = "1";
    conditions["ErrorSeverityRequest"] = "eERROR";
    conditions["IncludeCompleteResultErrorCodeRequest"] = "1";
    conditions["ResponseErrorSeverity"] = "1";
    conditions["IncludeCompleteResultErrorCodeResponse"] = "1";
    conditions["BothPdu"] = "1";
    const std::vector<ConditionRow> rows = XPVT_7_01::conditionRows(conditions);
    ASSERT_EQ(rows.size(), 5u);
    EXPECT_EQ(rows[0].item, "Start Trace");
    EXPECT_EQ(rows[1], (ConditionRow{"Trace or Primitive", "", "", "", "LogicalLink", "Name", "LL"}));
    EXPECT_EQ(rows[2], (ConditionRow{"Result", "no", "yes", "yes", "PDU", "Pattern", ""}));
    // Request shows the error code's choice; Response its own.
    EXPECT_EQ(rows[3], (ConditionRow{"Result", "yes", "yes", "no", "Error", "Severity", "eERROR"}));
    EXPECT_EQ(rows[4], (ConditionRow{"Result", "no", "no", "yes", "Error", "Severity", ""}));
}

TEST(FilterDialog701, SavingNamesAndBoxes) {
    auto conditions = XPVT_7_01::defaultFilterConditionMap();
    FilterDialogControls c;
    const auto never = [](const std::string&) { return false; };
    EXPECT_EQ(XPVT_7_01::saveTarget(c, true, "/f/", conditions, never).box->text, "Invalid filter file name.");
    c.fileName = "a";
    c.mode = 1;
    auto target = XPVT_7_01::saveTarget(c, true, "/f/", conditions, never);
    EXPECT_FALSE(target.box);
    EXPECT_EQ(target.path, "/f/a.pvflt");
    EXPECT_EQ(conditions.at("ExcludeItems"), "1");
    c.fileName = "b.pvflt.old";
    c.mode = 0;
    target = XPVT_7_01::saveTarget(c, true, "/f/", conditions, [](const std::string&) { return true; });
    EXPECT_EQ(target.path, "/f/b.pvflt.old");
    ASSERT_TRUE(target.box);
    EXPECT_EQ(target.box->title, "E012_005 [Filter.]");
    EXPECT_EQ(conditions.at("ExcludeItems"), "0");
    // Edit mode overwrites.
    EXPECT_FALSE(XPVT_7_01::saveTarget(c, false, "/f/", conditions, [](const std::string&) { return true; }).box);
    EXPECT_TRUE(XPVT_7_01::deleteRowBox(-1));
    EXPECT_FALSE(XPVT_7_01::deleteRowBox(0));
    EXPECT_EQ(XPVT_7_01::deleteAllBox(0)->text, "Empty filter condition list.");
    EXPECT_FALSE(XPVT_7_01::deleteAllBox(2));
}

TEST(FilterDialog701, FileListAppliesTheFirstEntryStillCounted) {
    XPVT_7_01::FilterFileList list;
    EXPECT_FALSE(XPVT_7_01::filterFileToApply(list));
    EXPECT_EQ(XPVT_7_01::addFilterFileName(list, "/x/one.pvflt"), 0u);
    EXPECT_FALSE(XPVT_7_01::addFilterFileName(list, "/y/one.pvflt"));
    EXPECT_EQ(XPVT_7_01::addFilterFileName(list, "two.pvflt"), 1u);
    EXPECT_EQ(XPVT_7_01::filterFileToApply(list), "one.pvflt");
    XPVT_7_01::stopCounting(list, "one.pvflt");
    EXPECT_EQ(list.names.size(), 2u);
    EXPECT_EQ(XPVT_7_01::filterFileToApply(list), "two.pvflt");
    EXPECT_EQ(XPVT_7_01::selectionAfterRemoval(0, 1), 0);
    EXPECT_EQ(XPVT_7_01::selectionAfterRemoval(3, 5), 2);
    EXPECT_EQ(XPVT_7_01::selectionAfterRemoval(0, 0), -1);
    EXPECT_TRUE(XPVT_7_01::isInFilterDirectory("/F/Dir/A.PVFLT", "/f/dir/"));
    EXPECT_FALSE(XPVT_7_01::isInFilterDirectory("/f/other/a.pvflt", "/f/dir/"));
}

TEST(FilterDialog702, EnablingFollowsTheGroupChecks) {
    XPVT_7_02::FilterCondition702 r;
    r.requestParameterShortName.enabled = true;
    r.logicalLink.enabled = true;
    auto e = XPVT_7_02::filterDialogEnabled(r, false);
    EXPECT_EQ(e.logicalLink, (XPVT_7_02::RowEnabled{false, false}));
    EXPECT_FALSE(e.requestParameterFilter);
    EXPECT_FALSE(e.primitiveShortName.check);
    EXPECT_TRUE(e.fileName);

    r.includeOpenCloseLogicalLinks = true;
    r.includeResults = true;
    e = XPVT_7_02::filterDialogEnabled(r, true);
    EXPECT_EQ(e.logicalLink, (XPVT_7_02::RowEnabled{true, true}));
    EXPECT_EQ(e.accessKeyOfLocation, (XPVT_7_02::RowEnabled{true, false}));
    EXPECT_FALSE(e.primitiveLogicalLink.check);
    EXPECT_TRUE(e.requestParameterFilter);
    EXPECT_TRUE(e.primitiveShortName.check);
    // A parameter row needs its parameter check too.
    EXPECT_EQ(e.requestParameterShortName, (XPVT_7_02::RowEnabled{false, false}));
    r.requestParameterFilter = true;
    e = XPVT_7_02::filterDialogEnabled(r, true);
    EXPECT_EQ(e.requestParameterShortName, (XPVT_7_02::RowEnabled{true, true}));
    EXPECT_FALSE(e.responseParameterValue.check);
    EXPECT_FALSE(e.fileName);
}

TEST(FilterDialog702, NamesAreCheckedAndSavedDifferently) {
    const auto exists = [](const std::string& path) { return path == "/f/a.pvflt2"; };
    EXPECT_EQ(XPVT_7_02::checkFilterName("a", true, "/f/", exists).box->text, "Filter /f/a.pvflt2 exist !");
    EXPECT_FALSE(XPVT_7_02::checkFilterName("a", false, "/f/", exists).box);
    EXPECT_EQ(XPVT_7_02::checkFilterName("b.pvflt2", true, "/f/", exists).path, "/f/b.pvflt2");
    EXPECT_EQ(XPVT_7_02::newFilterFileName("b.pvflt2"), "b.pvflt2.pvflt2");
    EXPECT_EQ(XPVT_7_02::newFilterFileName(""), ".pvflt2");
}

TEST(SnpFilterDlg, TicksStartOnToggleAndApplyInListOrder) {
    SNP::SnpFilterTicks ticks({"b", "a", "c"});
    EXPECT_EQ(ticks.names(), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(ticks.tickedNames(), ticks.names());
    ticks.toggle();
    EXPECT_TRUE(ticks.tickedNames().empty());
    ticks.setTicked(2, true);
    ticks.setTicked(0, true);
    EXPECT_EQ(ticks.tickedNames(), (std::vector<std::string>{"a", "c"}));
    EXPECT_TRUE(SNP::SnpFilterTicks({}).tickedNames().empty());
}

} // namespace

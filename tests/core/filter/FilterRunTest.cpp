// The three filters run through the engine on small traces, their results checked by content.
#include "filter/FilterRun.h"
#include "FilterEngineSupport.h"
#include "common/Operation.h"
#include "filter/FilterXQuery702.h"
#include "filter/PvfltFile.h"

#include <filesystem>

namespace {

using namespace ZDTAnalyzer::Filter;
using XPVT_7_01::FilterConditionMap;
using XPVT_7_02::FilterCondition702;

const char* const Trace701 =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessValueTrace><Description><Schema>7.01</Schema></Description>"
    "<Trace><StartTrace><Date>d</Date></StartTrace>"
    "<OpenComPrimitive><ShortName>PrimA</ShortName><ID>11</ID><LogicalLink><ShortName>LL_A</ShortName></LogicalLink>"
    "</OpenComPrimitive>"
    "<ZdtResult><LogicalLink><ShortName>LL_A</ShortName></LogicalLink>"
    "<ZdtRequest><ShortName>R1</ShortName><PDU>22 F1</PDU><ZdtRequestParameter><ShortName>Speed</ShortName>"
    "<ZdtValue><Type>A_UINT32</Type><Value>42</Value></ZdtValue></ZdtRequestParameter></ZdtRequest>"
    "<ZdtResponse><ShortName>S1</ShortName><PDU>62 F1</PDU><ZdtResponseParameter><ShortName>Temp</ShortName>"
    "<ZdtError><CodeDescription>Timeout</CodeDescription><Severity>eERROR</Severity></ZdtError>"
    "</ZdtResponseParameter></ZdtResponse></ZdtResult>"
    "<ZdtResult><LogicalLink><ShortName>LL_B</ShortName></LogicalLink>"
    "<ZdtRequest><ShortName>R2</ShortName><PDU>10 03</PDU></ZdtRequest>"
    "<ZdtResponse><ShortName>S2</ShortName><PDU>50 03</PDU></ZdtResponse></ZdtResult>"
    "<CloseComPrimitive><ShortName>PrimB</ShortName><ID>12</ID></CloseComPrimitive>"
    "<OpenLogicalLink/><StopTrace/></Trace></ProcessValueTrace>\n";

class Filter701Run : public testing::Test {
protected:
    void SetUp() override {
        SKIP_WITHOUT_XQUERY_ENGINE();
        document = dir.Write("t.xpvt", Trace701);
    }

    // Runs `conditions` over the trace; the result document, or "" after a failure.
    std::string run(const FilterConditionMap& conditions) {
        XPVT_7_01::writeFilterFile(dir.File("f.pvflt"), conditions);
        return runFile(dir.File("f.pvflt"));
    }
    std::string runFile(const std::string& filter) {
        messages = {};
        zdt::OperationControl control;
        const std::string out = dir.File("out.xpvt");
        std::filesystem::remove(out);
        if (runFilter701({document, out, ""}, filter, messages, control) != zdt::OperationStatus::Done)
            return {};
        return TempDir::Read(out);
    }
    static FilterConditionMap with(std::initializer_list<std::pair<const char*, const char*>> set) {
        FilterConditionMap conditions = XPVT_7_01::defaultFilterConditionMap();
        conditions["ExcludeItems"] = "0";
        for (const auto& [key, value] : set)
            conditions[key] = value;
        return conditions;
    }

    TempDir dir;
    std::string document;
    zdt::MessageList messages;
};

TEST_F(Filter701Run, TraceAndPrimitiveEvents) {
    std::string out = run(with({{"AfterStartStopTrace", "1"}}));
    EXPECT_EQ(countOf(out, "<StartTrace>"), 1u);
    EXPECT_EQ(countOf(out, "<StopTrace/>"), 1u);
    EXPECT_EQ(countOf(out, "ComPrimitive>"), 0u);
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 0u);
    // Only the five event kinds pass; the header does not.
    EXPECT_EQ(countOf(out, "OpenLogicalLink"), 0u);
    EXPECT_EQ(countOf(out, "Description"), 0u);

    out = run(with({{"AfterComPrimitiveName", "1"},
                    {"ComPrimitiveName", "Prim"},
                    {"AfterComPrimitiveId", "1"},
                    {"ComPrimitiveId", "2"}}));
    EXPECT_EQ(countOf(out, "<CloseComPrimitive>"), 1u);
    EXPECT_EQ(countOf(out, "<OpenComPrimitive>"), 0u);
    EXPECT_EQ(countOf(out, "StartTrace"), 0u);
}

TEST_F(Filter701Run, ResultConditionsPerSideAndComplete) {
    // Request side only: the result is rebuilt with its request, without its response.
    std::string out = run(with({{"RequestParameterName", "1"}, {"ParameterNameRequest", "Spe"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 1u);
    EXPECT_EQ(countOf(out, "<ShortName>R1</ShortName>"), 1u);
    EXPECT_EQ(countOf(out, "<ZdtResponse>"), 0u);
    EXPECT_EQ(countOf(out, "<ShortName>LL_A</ShortName>"), 1u);

    // A complete condition makes the other tests of its item pass, so in include mode every
    // result and request stays, and only the matching result keeps its response; excluding
    // drops exactly the results it matches.
    out = run(with({{"RequestParameterName", "1"},
                    {"ParameterNameRequest", "Spe"},
                    {"IncludeCompleteResultParameterNameRequest", "1"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 2u);
    EXPECT_EQ(countOf(out, "<ZdtRequest>"), 2u);
    EXPECT_EQ(countOf(out, "<ShortName>S1</ShortName>"), 1u);
    EXPECT_EQ(countOf(out, "<ZdtResponse>"), 1u);
    out = run(with({{"ExcludeItems", "1"},
                    {"RequestParameterName", "1"},
                    {"ParameterNameRequest", "Spe"},
                    {"IncludeCompleteResultParameterNameRequest", "1"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 1u);
    EXPECT_EQ(countOf(out, "<ShortName>LL_B</ShortName>"), 1u);

    // Both: request and response must each hold the text.
    out = run(with({{"BothPdu", "1"}, {"PduBytePatternBoth", "03"}}));
    EXPECT_EQ(countOf(out, "<ShortName>R2</ShortName>"), 1u);
    EXPECT_EQ(countOf(out, "<ShortName>S2</ShortName>"), 1u);
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 1u);

    // The misspelt complete test of a response parameter name never matches, so excluding
    // by it drops nothing; the error severity's complete test does match.
    out = run(with({{"ExcludeItems", "1"},
                    {"ResponseParameterName", "1"},
                    {"ParameterNameResponse", "Temp"},
                    {"IncludeCompleteResultParameterNameResponse", "1"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 2u);
    out = run(with({{"ExcludeItems", "1"},
                    {"ResponseErrorSeverity", "1"},
                    {"ErrorSeverityResponse", "eERR"},
                    {"IncludeCompleteResultErrorSeverityResponse", "1"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 1u);
    EXPECT_EQ(countOf(out, "<ShortName>S1</ShortName>"), 0u);
}

TEST_F(Filter701Run, ExcludeModeAndOneLetterTexts) {
    std::string out = run(with({{"ExcludeItems", "1"},
                                {"AfterStartStopTrace", "1"},
                                {"AfterComPrimitiveName", "1"},
                                {"ResponsePdu", "1"},
                                {"PduBytePatternResponse", "62"}}));
    EXPECT_EQ(countOf(out, "StartTrace"), 0u);
    EXPECT_EQ(countOf(out, "ComPrimitive>"), 0u);
    // Without a complete condition every result stays; the response that holds 62 goes.
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 2u);
    EXPECT_EQ(countOf(out, "<ShortName>S1</ShortName>"), 0u);
    EXPECT_EQ(countOf(out, "<ShortName>S2</ShortName>"), 1u);
    EXPECT_EQ(countOf(out, "<ZdtRequest>"), 2u);

    // "Z" is a path below the document: empty, so every parameter name contains it.
    out = run(with({{"RequestParameterName", "1"}, {"ParameterNameRequest", "Z"}}));
    EXPECT_EQ(countOf(out, "<ZdtResult>"), 1u);
    EXPECT_EQ(countOf(out, "<ShortName>R1</ShortName>"), 1u);
}

TEST_F(Filter701Run, AnEditedFilterWithItsEndOfFilePairRunsAsBefore) {
    const FilterConditionMap conditions = with({{"AfterStartStopTrace", "1"}});
    const std::string before = run(conditions);
    ASSERT_FALSE(before.empty());
    FilterConditionMap edited;
    std::string error;
    ASSERT_TRUE(XPVT_7_01::readFilterFileForEdit(dir.File("f.pvflt"), edited, error));
    ASSERT_EQ(edited.count("\xFF"), 1u);
    ASSERT_TRUE(XPVT_7_01::writeFilterFile(dir.File("edited.pvflt"), edited));
    EXPECT_EQ(runFile(dir.File("edited.pvflt")), before);
}

TEST_F(Filter701Run, BadFiltersAndQueriesFailWithTheirBoxAndLeaveNoResult) {
    for (const std::string& bad : {std::string(), std::string("false\nfalse\n3 abc\n"), std::string("\x01\xFE\n\n")}) {
        EXPECT_EQ(runFile(dir.Write("bad.pvflt", bad)), "");
        ASSERT_EQ(messages.messages().size(), 1u);
        EXPECT_EQ(messages.messages()[0].title, "E013_004 [Filter.]");
        EXPECT_EQ(messages.messages()[0].text,
                  "Error occured:\nCould not load filter conditions from file: " + dir.File("bad.pvflt") + " ! !");
    }
    EXPECT_EQ(run(with({{"ParameterNameRequest", "a\"b"}})), "");
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].text.rfind("Error occured:\nAltova XQuery Error:\n", 0), 0u);
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.xpvt")));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 3); // trace, two filters
}

// A 7.02 trace whose parent primitives and responses come once or, with `twice`, twice.
std::string trace702(bool twice) {
    const std::string secondParent = twice ? "<DiagComPrimitive ShortName=\"ParentTwo\"/>" : "";
    const std::string secondResponse =
        twice ? "<Response ShortName=\"RespB\"><ResponseMessage>7F 22</ResponseMessage></Response>" : "";
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessValueTrace><Description><Schema>7,02</Schema>"
           "</Description><Trace><StartTrace/>"
           "<OpenLogicalLink><LogicalLink ShortName=\"LL_A\"/><AccessKeyOfLocation>AK_A</AccessKeyOfLocation>"
           "</OpenLogicalLink>"
           "<StartDiagComPrimitive><LogicalLink ShortName=\"LL_A\"/><ParentDiagComPrimitives>"
           "<DiagComPrimitive ShortName=\"ParentOne\"/>" +
           secondParent +
           "</ParentDiagComPrimitives><DiagComPrimitive ShortName=\"Prim1\" ID=\"1\"/></StartDiagComPrimitive>"
           "<StartDiagComPrimitive><LogicalLink ShortName=\"LL_B\"/><DiagComPrimitive ShortName=\"Prim2\"/>"
           "</StartDiagComPrimitive>"
           "<Result><DiagComPrimitive ShortName=\"Prim1\" ID=\"1\"/><Request ShortName=\"ReqA\">"
           "<RequestMessage>22 F1</RequestMessage><RequestParameter ShortName=\"P1\"><Value>"
           "<ValueAsString>42</ValueAsString></Value></RequestParameter></Request>"
           "<Response ShortName=\"RespA\"><ResponseMessage>62 F1</ResponseMessage>"
           "<ResponseParameter ShortName=\"Q1\"><Value><ValueAsString>7</ValueAsString></Value></ResponseParameter>"
           "</Response>" +
           secondResponse +
           "</Result>"
           "<Result><DiagComPrimitive ShortName=\"Prim2\" ID=\"2\"/><Response ShortName=\"RespC\">"
           "<ResponseMessage>50</ResponseMessage></Response></Result>"
           "<Result><DiagComPrimitive ShortName=\"Prim3\" ID=\"3\"/><Request ShortName=\"ReqD\"/></Result>"
           "<CloseLogicalLink><LogicalLink ShortName=\"LL_A\"/></CloseLogicalLink></Trace></ProcessValueTrace>\n";
}

class Filter702Run : public testing::Test {
protected:
    void SetUp() override { SKIP_WITHOUT_XQUERY_ENGINE(); }

    std::string run(const std::string& document, const FilterCondition702& record) {
        messages = {};
        zdt::OperationControl control;
        const std::string out = dir.File("out.xpvt");
        std::filesystem::remove(out);
        if (runFilter702({document, out, ""}, record, messages, control) != zdt::OperationStatus::Done)
            return {};
        return TempDir::Read(out);
    }

    TempDir dir;
    zdt::MessageList messages;
};

TEST_F(Filter702Run, GroupsOffDropEveryEventButKeepOtherChildren) {
    const std::string out = run(dir.Write("t.xpvt", trace702(false)), {});
    EXPECT_EQ(countOf(out, "<StartTrace/>"), 1u);
    EXPECT_EQ(countOf(out, "<Schema>7,02</Schema>"), 1u);
    EXPECT_EQ(countOf(out, "LogicalLink"), 0u);
    EXPECT_EQ(countOf(out, "Primitive"), 0u);
    EXPECT_EQ(countOf(out, "<Result>"), 0u);
}

TEST_F(Filter702Run, RowsNegationAndTheParameterBlocks) {
    const std::string document = dir.Write("t.xpvt", trace702(false));
    FilterCondition702 r;
    r.includeOpenCloseLogicalLinks = true;
    r.logicalLink = {true, true, "LL_B"};
    r.includeResults = true;
    r.responseParameterFilter = true;
    r.responseParameterValue = {false, true, "7"};
    std::string out = run(document, r);
    EXPECT_EQ(countOf(out, "<OpenLogicalLink>"), 1u);
    EXPECT_EQ(countOf(out, "<CloseLogicalLink>"), 1u);
    EXPECT_EQ(countOf(out, "<Result>"), 1u);
    EXPECT_EQ(countOf(out, "ShortName=\"RespA\""), 1u);

    // An enabled request parameter value is negated, whatever its own "Not" says.
    r = {};
    r.includeResults = true;
    r.requestParameterFilter = true;
    r.requestParameterValue = {false, true, "42"};
    out = run(document, r);
    EXPECT_EQ(countOf(out, "ShortName=\"ReqA\""), 0u);
    EXPECT_EQ(countOf(out, "<Result>"), 0u);
    r.requestParameterValue = {false, true, "43"};
    EXPECT_EQ(countOf(run(document, r), "ShortName=\"ReqA\""), 1u);
}

TEST_F(Filter702Run, AnyValueTestsAnswerAsWrittenWhereEachValueOccursOnce) {
    const std::string single = dir.Write("single.xpvt", trace702(false));
    for (const char* text : {"One", "Resp", "F1", "", "nothing"}) {
        for (const bool negate : {false, true}) {
            FilterCondition702 r;
            r.includeStartFinishPrimitives = true;
            r.parentDiagComPrimitive = {negate, true, text};
            r.includeResults = true;
            r.responseShortName = {negate, true, text};
            r.responseMessage = {!negate, true, text};
            std::string outputs[2];
            int i = 0;
            for (const auto tests : {XPVT_7_02::MultiValueTests::AsWritten, XPVT_7_02::MultiValueTests::AnyValue}) {
                const std::string out = dir.File("o" + std::to_string(i));
                const XQueryRunResult result =
                    runXQueryToFile(XPVT_7_02::buildFilterXQuery702(single, r, tests), single, out);
                ASSERT_TRUE(result.succeeded) << result.errorText;
                outputs[i++] = TempDir::Read(out);
            }
            EXPECT_EQ(outputs[0], outputs[1]) << text << " " << negate;
            EXPECT_NE(outputs[0].find("<Trace>"), std::string::npos);
        }
    }
}

TEST_F(Filter702Run, TwoParentsOrTwoResponsesFilterByAnyOfTheirValues) {
    const std::string twice = dir.Write("twice.xpvt", trace702(true));
    FilterCondition702 r;
    r.includeStartFinishPrimitives = true;
    r.parentDiagComPrimitive = {false, true, "Two"};
    r.includeResults = true;
    r.responseMessage = {false, true, "7F"};
    const XQueryRunResult asWritten =
        runXQueryToFile(XPVT_7_02::buildFilterXQuery702(twice, r), twice, dir.File("o.xml"));
    EXPECT_FALSE(asWritten.succeeded);
    EXPECT_NE(asWritten.errorText.find("XPTY0004"), std::string::npos);

    const std::string out = run(twice, r);
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_EQ(countOf(out, "<StartDiagComPrimitive>"), 1u);
    EXPECT_EQ(countOf(out, "ShortName=\"ParentTwo\""), 1u);
    EXPECT_EQ(countOf(out, "<Result>"), 1u);
    EXPECT_EQ(countOf(out, "ShortName=\"RespB\""), 1u);
}

TEST_F(Filter702Run, AQuoteInATextIsAnEngineErrorUnderTheFilterBox) {
    FilterCondition702 r;
    r.logicalLink = {false, true, "a\"b"};
    EXPECT_EQ(run(dir.Write("t.xpvt", trace702(false)), r), "");
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, "E009_003 [Filter.]");
    EXPECT_EQ(messages.messages()[0].text.rfind("Filter error : Altova XQuery Error:\n", 0), 0u);
    EXPECT_EQ(messages.messages()[0].text.substr(messages.messages()[0].text.size() - 2), " !");
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.xpvt")));
}

TEST(SnapshotFilterRun, ServicesUnderSeveralLinksAndNothingTicked) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string document =
        dir.Write("s.snp", "<?xml version=\"1.0\"?>\n<SnapList Created=\"12:00,1.1.2024\">"
                           "<SnapShot ShortName=\"A\" LongName=\"LA\" Created=\"c\" Other=\"o\"><VIT>v</VIT>"
                           "<LogicalLink Name=\"L1\"><Service Name=\"Read\"/><Service Name=\"Write\"/><DTC Name=\"d\"/>"
                           "</LogicalLink><LogicalLink Name=\"L2\"><Service Name=\"Read\"/></LogicalLink>"
                           "<LogicalLink Name=\"L3\"><Service Name=\"Write\"/></LogicalLink></SnapShot>"
                           "<SnapShot ShortName=\"B\"><Service Name=\"Write\"/></SnapShot></SnapList>\n");
    zdt::MessageList messages;
    zdt::OperationControl control;
    std::set<std::string> names;
    ASSERT_EQ(listSnapshotServices(document, "", names, messages, control), zdt::OperationStatus::Done);
    EXPECT_EQ(names, (std::set<std::string>{"Read", "Write"}));

    ASSERT_EQ(runSnapshotFilter({document, dir.File("o.snp"), ""}, {"Read"}, messages, control),
              zdt::OperationStatus::Done);
    const std::string out = TempDir::Read(dir.File("o.snp"));
    EXPECT_EQ(countOf(out, "<Service Name=\"Read\"/>"), 2u);
    EXPECT_EQ(countOf(out, "Write"), 0u);
    EXPECT_EQ(countOf(out, "<LogicalLink"), 2u);
    EXPECT_EQ(countOf(out, "<SnapShot ShortName=\"A\" LongName=\"LA\" Created=\"c\">"), 1u);
    EXPECT_EQ(countOf(out, "ShortName=\"B\""), 0u);
    EXPECT_EQ(countOf(out, "VIT"), 0u);

    ASSERT_EQ(runSnapshotFilter({document, dir.File("none.snp"), ""}, {}, messages, control),
              zdt::OperationStatus::Done);
    EXPECT_NE(TempDir::Read(dir.File("none.snp")).find("<SnapList Created=\"12:00,1.1.2024\"/>"), std::string::npos);
    EXPECT_TRUE(messages.messages().empty());
}

} // namespace

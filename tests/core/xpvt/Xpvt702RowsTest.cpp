#include "XpvtTestFiles.h"
#include "xpvt/ConsumerFindInterface.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using xpvttest::Fields;
using xpvttest::OpenedTrace;
using xpvttest::trace702;

namespace {

// A 7.02 row as stored: flags "00<kind>", then Event, LogicalLink, Location, ID, Time,
// Description, Value, Unit, RangeInfo.
Fields row(char kind, std::string event, std::string link, std::string location, std::string id, std::string time,
           std::string description, std::string value, std::string unit = "", std::string range = "") {
    return {std::string("00") + kind, event, link, location, id, time, description, value, unit, range};
}

Fields plain(std::string event, std::string value, std::string description = "") {
    return row('2', event, "", "", "", "", description, value);
}

std::vector<Fields> rowsOf702(const std::string& traceInner) {
    OpenedTrace trace(trace702(traceInner));
    EXPECT_TRUE(trace.opened) << (trace.messages.shown.empty() ? "" : trace.messages.shown.front().text);
    EXPECT_EQ(trace.doc.is702(), true);
    return trace.rows();
}

// A Result whose head rows are known, so tests can drop them and look at the rest.
const std::string ResultHead =
    R"(<LogicalLink ShortName="LL"/><DiagComPrimitive ShortName="Svc" ID="9" ObjectType="Service"/>)";

std::vector<Fields> afterResultHead(std::vector<Fields> rows) {
    EXPECT_GE(rows.size(), 2u);
    EXPECT_EQ(rows[0], row('2', "Result [Service]", "LL", "", "9", "", "", ""));
    EXPECT_EQ(rows[1], row('2', "  DiagComPrimitive", "", "", "9", "", "Svc:Service", ""));
    rows.erase(rows.begin(), rows.begin() + 2);
    return rows;
}

std::string result(const std::string& inner) {
    return "<Result>" + ResultHead + inner + "</Result>";
}

} // namespace

TEST(Xpvt702RowsTest, SimpleRowsOfTraceLinksAndVariants) {
    const auto rows = rowsOf702(R"(
<StartTrace DateTime="2023-11-21T14:05:09"><PhysicalInterfaceLink>PIL</PhysicalInterfaceLink><PhysicalVehicleLink>PVL</PhysicalVehicleLink></StartTrace>
<OpenLogicalLink><TimeStamp>100</TimeStamp><LogicalLink ShortName="LL_A"/><AccessKeyOfLocation>AK</AccessKeyOfLocation></OpenLogicalLink>
<CloseLogicalLink><LogicalLink ShortName="LL_B"/><TimeStamp>200</TimeStamp></CloseLogicalLink>
<VariantDetected>VD</VariantDetected>
<VariantSelected>VS</VariantSelected>
<VariantDetected>2</VariantDetected>
<StartTrace/>
<StopTrace DateTime="end"/>)");
    const std::vector<Fields> expected = {
        row('2', "Start Trace", "PIL PVL", "", "", "2023-11-21T14:05:09", "", ""),
        row('2', "OpenLogicalLink", "LL_A", "AK", "", "100", "", ""),
        row('2', "CloseLogicalLink", "LL_B", "", "", "200", "", ""),
        // A variant name stands under Location; nothing clears between the variants.
        row('2', "VariantDetected", "", "VD", "", "", "", ""),
        row('2', "VariantSelected", "", "VS", "", "", "", ""),
        row('2', "VariantDetected", "", "VD2", "", "", "", ""),
        row('2', "Start Trace", " ", "", "", "", "", ""),
        row('2', "Stop Trace", "", "", "", "end", "", ""),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, PrimitiveRowsComeAtItsStartWithTheParentChain) {
    const auto rows = rowsOf702(R"(
<StartDiagComPrimitive><TimeStamp>5</TimeStamp><LogicalLink ShortName="LL"/><AccessKeyOfLocation>AK</AccessKeyOfLocation>
  <ParentDiagComPrimitives><DiagComPrimitive ShortName="Diag"/><DiagComPrimitive ShortName="Job"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="Read" ID="7" ObjectType="Service"/>
  <TimeStamp>late</TimeStamp>
</StartDiagComPrimitive>
<FinishDiagComPrimitive><LogicalLink ShortName="LL"/>
  <DiagComPrimitive ShortName="Read" ID="7" ObjectType="Service"><TimeStamp>inside</TimeStamp></DiagComPrimitive>
  <TimeStamp>after</TimeStamp>
  <VariantDetected>VD</VariantDetected><VariantSelected>VS</VariantSelected>
</FinishDiagComPrimitive>
<FinishDiagComPrimitive><ParentDiagComPrimitives><DiagComPrimitive ShortName="ab"/></ParentDiagComPrimitives><DiagComPrimitive ShortName="X"/></FinishDiagComPrimitive>
<FinishDiagComPrimitive><ParentDiagComPrimitives><DiagComPrimitive ShortName="abc"/></ParentDiagComPrimitives><DiagComPrimitive ShortName="X"/></FinishDiagComPrimitive>
<Result><ParentDiagComPrimitives><DiagComPrimitive ShortName="Tops"/></ParentDiagComPrimitives><LogicalLink ShortName="LR"/>
  <DiagComPrimitive ShortName="Job" ID="3" ObjectType="Job"/></Result>)");
    const std::vector<Fields> expected = {
        row('1', "Start [Service]", "LL", "AK", "7", "5", "", "Read"),
        row('2', "   Called by", "", "", "", "", "", "Diag-->Job"),
        // The first three characters go: of a four-letter first name only the last stays.
        row('2', "  DiagComPrimitive", "", "", "7", "", "Read:Service", "g-->Job"),
        // What follows the primitive, or stands inside it, comes too late for its rows.
        row('1', "Stop [Service]", "LL", "", "7", "", "", "Read"),
        row('2', "  DiagComPrimitive", "", "", "7", "", "Read:Service", ""),
        row('2', "  VariantDetected", "", "VD", "", "", "", ""),
        row('2', "  VariantSelected", "", "VS", "", "", "", ""),
        row('1', "Stop []", "", "", "", "", "", "X"),
        row('2', "   Called by", "", "", "", "", "", "ab"),
        row('2', "  DiagComPrimitive", "", "", "", "", "X:", "ab"),
        row('1', "Stop []", "", "", "", "", "", "X"),
        row('2', "   Called by", "", "", "", "", "", "abc"),
        row('2', "  DiagComPrimitive", "", "", "", "", "X:", ""),
        row('2', "Result [Job]", "LR", "", "3", "", "", ""),
        row('2', "   Called by", "", "", "", "", "", "Tops"),
        row('2', "  DiagComPrimitive", "", "", "3", "", "Job:Job", "s"),
    };
    EXPECT_EQ(rows, expected);
}

// A chain that is there but unprintable still calls for its "Called by" row; the rows
// show it cleaned, so the next primitive of the same element finds it empty. The
// search must count that row too.
TEST(Xpvt702RowsTest, UnprintableParentChainStillGetsItsCalledByRow) {
    OpenedTrace trace(trace702(R"(
<StartDiagComPrimitive><ParentDiagComPrimitives><DiagComPrimitive ShortName="&#x7F;"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="A" ID="1" ObjectType="S"/><DiagComPrimitive ShortName="B"/></StartDiagComPrimitive>
<Result><ParentDiagComPrimitives><DiagComPrimitive ShortName="&#9;xyz"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="R"/></Result>
<StopTrace/>)"));
    ASSERT_TRUE(trace.opened);
    const std::vector<Fields> expected = {
        row('1', "Start [S]", "", "", "1", "", "", "A"),
        row('2', "   Called by", "", "", "", "", "", ""),
        row('2', "  DiagComPrimitive", "", "", "1", "", "A:S", ""),
        row('1', "Start [S]", "", "", "1", "", "", "AB"),
        row('2', "  DiagComPrimitive", "", "", "1", "", "AB:S", ""),
        // The cut counts the chain as shown: "xyz" loses all three.
        row('2', "Result []", "", "", "", "", "", ""),
        row('2', "   Called by", "", "", "", "", "", "xyz"),
        row('2', "  DiagComPrimitive", "", "", "", "", "R:", ""),
        row('2', "Stop Trace", "", "", "", "", "", ""),
    };
    EXPECT_EQ(trace.rows(), expected);

    ZDTAnalyzer::XpvtFindCriteria702 criteria;
    ZDTAnalyzer::Xpvt::ConsumerFindInterface consumer;
    consumer.document = &trace.doc;
    consumer.criteria702 = &criteria;
    ZDTAnalyzer::Xpvt::FindContext context(&consumer);
    ZDTAnalyzer::Xpvt::FindParser parser;
    parser.parse(trace.path.c_str(), context);
    EXPECT_EQ(consumer.row, static_cast<int>(expected.size()));
}

TEST(Xpvt702RowsTest, RequestMessageRowsComeBeforeTheFirstParameterAndNotAgain) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Request ShortName="Req"><TimeStamp>10</TimeStamp><RequestMessage>22 F1 90 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D</RequestMessage>
  <RequestParameter ShortName="SID" Type="A_UINT32"><Unit>u</Unit><ValueRangeInfo Type="LINEAR"><Text>t</Text></ValueRangeInfo>
    <Value Type="A_UINT32" Radix="10"><ValueAsString>34</ValueAsString></Value></RequestParameter>
  <RequestParameter ShortName="DID" Type="A_BYTES"><Value><ValueAsString>F190</ValueAsString></Value></RequestParameter>
</Request>
<Request ShortName="Empty"/>)")));
    const std::vector<Fields> expected = {
        row('2', "  Request", "", "", "", "10", "Req", "22 F1 90 00 01 02 03 04   05 06 07 08 09 0A 0B 0C"),
        plain("  Request[Message]", "0D"),
        row('2', "    Parameter [A_UINT32]", "", "", "", "", "SID", "34", "u", "LINEAR"),
        row('2', "    Parameter [A_BYTES]", "", "", "", "", "DID", "F190"),
        // A request with no message still has its one row.
        row('2', "  Request", "", "", "", "", "Empty", ""),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, ResponseMessageOfSeventeenBytesGivesTwoRows) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Response ShortName="Resp"><TimeStamp>20</TimeStamp><AccessKeyOfLocation>AK</AccessKeyOfLocation><LocationAddress>0x12</LocationAddress>
  <ResponseMessage>62 F1 90 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E</ResponseMessage></Response>)")));
    const std::vector<Fields> expected = {
        row('0', "  Response", "", "AK", "0x12", "20", "Resp", "62 F1 90 41 42 43 44 45   46 47 48 49 4A 4B 4C 4D"),
        row('0', "  ", "", "", "", "", "", "4E"),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, ErrorsFlushAfterMessageRowsWithTheirSideIndent) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Request ShortName="Req"><RequestMessage>01</RequestMessage><Error Code="E1" Severity="high"><CodeDescription>between</CodeDescription></Error>
  <RequestParameter ShortName="P" Type="T"><Value><ValueAsString>1</ValueAsString></Value>
    <Error Code="E2"><CodeDescription>in request parameter</CodeDescription></Error></RequestParameter>
</Request>
<Response ShortName="Resp"><ResponseMessage>02</ResponseMessage>
  <ResponseParameter ShortName="Q" Type="T"><Value><ValueAsString>2</ValueAsString></Value>
    <Error Code="E3"><CodeDescription>in response parameter</CodeDescription></Error></ResponseParameter>
</Response>)")));
    const std::vector<Fields> expected = {
        plain("  Request", "01", "Req"),
        row('3', "  Error", "", "", "E1", "", "between", ""),
        row('2', "    Parameter [T]", "", "", "", "", "P", "1"),
        // The request parameter flushes before its level falls, the response one after.
        row('3', "    Error", "", "", "E2", "", "in request parameter", ""),
        row('0', "  Response", "", "", "", "", "Resp", "02"),
        row('0', "    Parameter [T]", "", "", "", "", "Q", "2"),
        row('3', "  Error", "", "", "E3", "", "in response parameter", ""),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, VendorErrorGetsASecondRowAndEmptyErrorsNone) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Error Severity="only severity"/>
<Error Code="E9"><VendorCode>V1</VendorCode><VendorCodeDescription>vendor text</VendorCodeDescription></Error>)")));
    const std::vector<Fields> expected = {
        // Both errors join in the slots and flush once, at the Result's end.
        row('3', "Error", "", "", "E9", "", "", ""),
        row('3', "Error (Vendor)", "LL", "", "V1", "", "vendor text", ""),
    };
    EXPECT_EQ(rows, expected);

    // An error of the Result flushes at the next Request's start, before its clearing.
    const auto early = afterResultHead(rowsOf702(
        result(R"(<Error><VendorCodeDescription>x</VendorCodeDescription></Error><Request ShortName="R"/>)")));
    const std::vector<Fields> expectedEarly = {
        row('3', "Error", "", "", "", "", "", ""),
        row('3', "Error (Vendor)", "LL", "", "", "", "x", ""),
        plain("  Request", "", "R"),
    };
    EXPECT_EQ(early, expectedEarly);
}

TEST(Xpvt702RowsTest, ValueFollowsItsRadix) {
    auto valueOf = [](const std::string& valueElement) {
        const auto rows =
            afterResultHead(rowsOf702(result("<Request ShortName=\"R\"><RequestParameter ShortName=\"P\">" +
                                             valueElement + "</RequestParameter></Request>")));
        EXPECT_EQ(rows.size(), 2u);
        return rows.size() == 2 ? rows[1][7] : std::string("<no row>");
    };
    EXPECT_EQ(valueOf(R"(<Value Radix="10"><ValueAsString>0x1F</ValueAsString></Value>)"), "0x1F");
    EXPECT_EQ(valueOf(R"(<Value Radix="16"><ValueAsString>255</ValueAsString></Value>)"), "$FF");
    EXPECT_EQ(valueOf(R"(<Value Radix="16"><ValueAsString>0</ValueAsString></Value>)"), "$0");
    EXPECT_EQ(valueOf(R"(<Value Radix="16"><ValueAsString>zz</ValueAsString></Value>)"), "$0");
    EXPECT_EQ(valueOf(R"(<Value Radix="2"><ValueAsString>101</ValueAsString></Value>)"), "");
    EXPECT_EQ(valueOf(R"(<Value Radix="hex"><ValueAsString>7</ValueAsString></Value>)"), "");
    EXPECT_EQ(valueOf(R"(<Value><ValueAsString>as it stands</ValueAsString></Value>)"), "as it stands");
    EXPECT_EQ(valueOf(R"(<Value Radix=""><ValueAsString>7</ValueAsString></Value>)"), "7");
    // Control characters never reach a row, whatever the radix.
    EXPECT_EQ(valueOf("<Value><ValueAsString>a&#9;b&#10;c</ValueAsString></Value>"), "abc");
}

TEST(Xpvt702RowsTest, ParameterValueAfterChildrenDependsOnTheSide) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Response ShortName="Resp"><ResponseMessage>01</ResponseMessage>
  <ResponseParameter ShortName="P1" Type="STRUCT">
    <ResponseParameter ShortName="C1" Type="T1"><Value><ValueAsString>1</ValueAsString></Value></ResponseParameter>
    <Value><ValueAsString>9</ValueAsString></Value>
  </ResponseParameter>
</Response>
<Request ShortName="Req">
  <RequestParameter ShortName="P2" Type="STRUCT">
    <RequestParameter ShortName="C2" Type="T2"><Value><ValueAsString>1</ValueAsString></Value></RequestParameter>
    <Value><ValueAsString>9</ValueAsString></Value>
  </RequestParameter>
</Request>)")));
    const std::vector<Fields> expected = {
        row('0', "  Response", "", "", "", "", "Resp", "01"),
        row('0', "      Parameter [T1]", "", "", "", "", "C1", "1"),
        // No row for P1: its child set the flag. The request side has no flag, so P2's
        // Value makes a row, from the slots as the child left them.
        plain("  Request", "", "Req"),
        row('2', "      Parameter [T2]", "", "", "", "", "C2", "1"),
        row('2', "    Parameter [T2]", "", "", "", "", "C2", "19"),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, NestedParametersIndentByLevelAndSiblingsKeepTheirs) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Response ShortName="Resp">
  <ResponseParameter ShortName="A" Type="S"><Value><ValueAsString>a</ValueAsString></Value>
    <ResponseParameter ShortName="B" Type="S"><Value><ValueAsString>b</ValueAsString></Value>
      <ResponseParameter ShortName="C" Type="U"><Value><ValueAsString>c</ValueAsString></Value></ResponseParameter>
    </ResponseParameter>
  </ResponseParameter>
  <ResponseParameter ShortName="D" Type="U"><Value><ValueAsString>d</ValueAsString></Value></ResponseParameter>
</Response>)")));
    const std::vector<Fields> expected = {
        row('0', "  Response", "", "", "", "", "Resp", ""),
        row('0', "    Parameter [S]", "", "", "", "", "A", "a"),
        row('0', "      Parameter [S]", "", "", "", "", "B", "b"),
        row('0', "        Parameter [U]", "", "", "", "", "C", "c"),
        row('0', "    Parameter [U]", "", "", "", "", "D", "d"),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, UnitAndRangeShowOnlyBeforeTheValueAndNoValueNoRow) {
    const auto rows = afterResultHead(rowsOf702(result(R"(
<Request ShortName="R"><RequestMessage>01</RequestMessage>
  <RequestParameter ShortName="Late" Type="T"><Value><ValueAsString>v</ValueAsString></Value><Unit>km</Unit><ValueRangeInfo Type="R"/></RequestParameter>
  <RequestParameter ShortName="NoValue" Type="T"><Unit>km</Unit></RequestParameter>
</Request>)")));
    const std::vector<Fields> expected = {
        plain("  Request", "01", "R"),
        row('2', "    Parameter [T]", "", "", "", "", "Late", "v"),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, UnknownAndMisplacedElementsAreSkippedWithTheirSubtrees) {
    const auto rows = rowsOf702(R"(
<StopTrace DateTime="t"><VariantDetected>inside stop</VariantDetected></StopTrace>
<Unknown><StartTrace/><Result/></Unknown>
<Request ShortName="under trace"><RequestMessage>01</RequestMessage></Request>
<OpenLogicalLink><LogicalLink ShortName="L"><ShortName>child text</ShortName></LogicalLink><Bogus><TimeStamp>9</TimeStamp></Bogus></OpenLogicalLink>)");
    const std::vector<Fields> expected = {
        row('2', "Stop Trace", "", "", "", "t", "", ""),
        row('2', "OpenLogicalLink", "L", "", "", "", "", ""),
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt702RowsTest, SevenOhTwoElementsInASevenOhOneFileMakeNoRows) {
    OpenedTrace trace(
        xpvttest::trace701(R"(<StartDiagComPrimitive><DiagComPrimitive ShortName="X"/></StartDiagComPrimitive>
<Result><DiagComPrimitive ShortName="Y"/></Result>)"));
    ASSERT_TRUE(trace.opened);
    EXPECT_FALSE(trace.doc.is702());
    EXPECT_TRUE(trace.rows().empty());
}

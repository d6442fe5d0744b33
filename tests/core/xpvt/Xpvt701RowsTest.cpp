#include "XpvtTestFiles.h"
#include "xpvt/PduChunker.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;
using xpvttest::Fields;
using xpvttest::OpenedTrace;
using xpvttest::trace701;

std::vector<Fields> rowsOf701(const std::string& traceInner) {
    OpenedTrace trace(trace701(traceInner));
    EXPECT_TRUE(trace.opened) << (trace.messages.shown.empty() ? "" : trace.messages.shown[0].text);
    return trace.rows();
}

std::vector<std::string> cut(std::string text) {
    std::vector<std::string> pieces;
    std::string piece;
    while (Xpvt::PduChunker(text, piece))
        pieces.push_back(piece);
    return pieces;
}

// --- the PDU cutter --------------------------------------------------------------------

TEST(Xpvt701PduChunker, CutsEightBytesPerPieceAndRepeatsTheLastDigitOfTen) {
    EXPECT_EQ(cut("00 11 22 33 44 55 66 77"), (std::vector<std::string>{"00 11 22 33 44 55 66 77"}));
    EXPECT_EQ(cut("00 11 22 33 44 55 66 77 88 99"),
              (std::vector<std::string>{"00 11 22 33 44 55 66 77", "88 99", "9"}));
    EXPECT_EQ(cut("a1 B2 cF"), (std::vector<std::string>{"a1 B2 cF"}));
}

TEST(Xpvt701PduChunker, SkippedCharactersMakeTheNextCutStartEarly) {
    // Two leading blanks are walked but not kept: the rest loses only five characters.
    EXPECT_EQ(cut("  00 11"), (std::vector<std::string>{"00 11", "11"}));
    // Runs of separators give one blank; a separator after a digit is kept at the end.
    EXPECT_EQ(cut("00--11"), (std::vector<std::string>{"00 11", "1"}));
    EXPECT_EQ(cut("00 "), (std::vector<std::string>{"00 "}));
}

TEST(Xpvt701PduChunker, TextWithoutHexDigitsGivesNoPieceAndKeepsTheRest) {
    std::string remaining = "xyz -";
    std::string piece = "old";
    EXPECT_FALSE(Xpvt::PduChunker(remaining, piece));
    EXPECT_EQ(piece, "");
    EXPECT_EQ(remaining, "xyz -");
    std::string empty;
    EXPECT_FALSE(Xpvt::PduChunker(empty, piece));
}

TEST(Xpvt701PduChunker, DigitsWithoutSeparatorsFillAPieceToTwentyThree) {
    const std::string digits(30, 'A');
    const auto pieces = cut(digits);
    ASSERT_EQ(pieces.size(), 2u);
    EXPECT_EQ(pieces[0], std::string(23, 'A'));
    EXPECT_EQ(pieces[1], std::string(7, 'A'));
}

// --- trace, link and primitive events ---------------------------------------------------

TEST(Xpvt701Rows, TraceLinkAndPrimitiveEventsCarryTheirStamp) {
    const auto rows = rowsOf701(R"(
<StartTrace><Date>2024-01-02</Date><Time>10:00:00</Time></StartTrace>
<OpenLogicalLink><LogicalLink><ShortName>LL_Engine</ShortName></LogicalLink>
  <PhysicalInterfaceLink>PIL</PhysicalInterfaceLink><Date>d1</Date><Time>t1</Time></OpenLogicalLink>
<OpenComPrimitive><ShortName>prim</ShortName><ID>7</ID><Type>eSTART_COMM</Type>
  <LogicalLink><ShortName>LL_Engine</ShortName></LogicalLink><Date>d2</Date><Time>t2</Time></OpenComPrimitive>
<CloseComPrimitive><Type>ignored</Type><LogicalLink><ShortName>LL_E</ShortName></LogicalLink>
  <Time>t3</Time></CloseComPrimitive>
<CloseLogicalLink><LogicalLink><ShortName>LL_X</ShortName></LogicalLink><Date>d4</Date></CloseLogicalLink>
<StopTrace><Date>d5</Date><Date>e5</Date><Time>t5</Time></StopTrace>
)");
    const std::vector<Fields> expected = {
        {"002", "Start trace", "", "", "", "", "", "@10:00:00 2024-01-02"},
        {"002", "OpenLogicalLink", "LL_Engine", "", "", "", "open logical link", "@t1 d1"},
        {"001", "OpenComPrimitive", "LL_Engine", "", "", "eSTART_COMM", "open ComPrimitive", "@t2 d2"},
        {"001", "CloseComPrimitive", "LL_E", "", "", "", "close ComPrimitive", "@t3 "},
        {"002", "CloseLogicalLink", "LL_X", "", "", "", "close logical link", "@ d4"},
        // Two Date children join without a separator.
        {"002", "Stop trace", "", "", "", "", "", "@t5 d5e5"},
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt701Rows, EachEventStartsFromEmptySlots) {
    // The second primitive names no link and no time: nothing of the first one remains.
    const auto rows = rowsOf701(R"(
<OpenComPrimitive><Type>T1</Type><LogicalLink><ShortName>L1</ShortName></LogicalLink><Time>t</Time></OpenComPrimitive>
<OpenComPrimitive></OpenComPrimitive>)");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[1], (Fields{"001", "OpenComPrimitive", "", "", "", "", "open ComPrimitive", "@ "}));
}

// --- results, requests and responses ----------------------------------------------------

TEST(Xpvt701Rows, ResultWithRequestAndResponseGivesEveryRowOfTheTable) {
    const auto rows = rowsOf701(R"(
<ZdtResult>
  <LogicalLink><ShortName>LL_Body</ShortName><DatabaseAccessKey>dak</DatabaseAccessKey></LogicalLink>
  <ZdtRequest>
    <ShortName>ReadDTC</ShortName>
    <PDU>19 02 FF</PDU>
    <ZdtRequestParameter>
      <ShortName>Mask</ShortName><Type>t</Type><Unit>u</Unit>
      <RangeInfo><Type>r</Type><Text>0..255</Text></RangeInfo>
      <ZdtValue><Type>x</Type><Value>255</Value><Radix>10</Radix></ZdtValue>
    </ZdtRequestParameter>
  </ZdtRequest>
  <ZdtResponse>
    <ECU>Engine</ECU>
    <ShortName>Pos</ShortName>
    <State>acknowledged</State>
    <StateInfo>si</StateInfo>
    <CANID>7E8</CANID><TimeStamp>12345</TimeStamp>
    <PDU>59 02</PDU>
    <ZdtResponseParameter><ShortName>Count</ShortName><RangeInfo><Text>any</Text></RangeInfo>
      <ZdtValue><Value>3</Value></ZdtValue></ZdtResponseParameter>
    <ZdtError><ShortName>misplaced</ShortName></ZdtError>
    <ZdtResponseParameter><ZdtError><ShortName>E1</ShortName><CodeDescription>bad</CodeDescription>
      <Severity>high</Severity><SeverityInfo>very</SeverityInfo></ZdtError></ZdtResponseParameter>
  </ZdtResponse>
</ZdtResult>)");
    const std::vector<Fields> expected = {
        {"002", "Result", "LL_Body", "", "", "[Tester]", "", ""},
        {"002", "  Request[ShortName]", "", "", "", "ReadDTC", "", ""},
        {"002", "  Request PDU", "", "", "", "RequestPDU", "19 02 FF", ""},
        {"002", "  Request parameter", "", "", "", "Mask", "255", "0..255"},
        {"002", "  Response [ECU]", "", "", "", "[Engine]", "", ""},
        {"002", "  Response [STATE]", "", "", "", "Response state", "acknowledged", ""},
        {"002", "  Response[PDU]", "", "7E8", "12345", "ResponsePDU", "59 02", ""},
        // The parameter keeps the response's ShortName "Pos" in front of its own.
        {"000", "    Response parameter", "", "", "", "PosCount", "3", "any"},
        {"003", "Error", "", "", "", "bad", "E1", ""},
        {"003", "Error", "", "", "", "Severity info", "high[ very]", ""},
        // The error's ShortName is still in the record when its parameter ends.
        {"000", "    Response parameter", "", "", "", "E1", "", ""},
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt701Rows, EcuClearsAShortNameBeforeItButNotOneAfterIt) {
    const auto before = rowsOf701("<ZdtResult><ZdtResponse><ShortName>Pos</ShortName><ECU>E</ECU>"
                                  "</ZdtResponse></ZdtResult>");
    ASSERT_EQ(before.size(), 1u);
    EXPECT_EQ(before[0], (Fields{"002", "  Response [ECU]", "", "", "", "[E]", "", ""}));
    // The ECU row is made at the ECU's end, before a later ShortName is read.
    const auto after = rowsOf701("<ZdtResult><ZdtResponse><ECU>E</ECU><ShortName>Pos</ShortName>"
                                 "<State>s</State></ZdtResponse></ZdtResult>");
    ASSERT_EQ(after.size(), 2u);
    EXPECT_EQ(after[0][6], "");
    // A ShortName inside ECU is not the response's ShortName: ECU's text is kept whole.
    const auto inside = rowsOf701("<ZdtResult><ZdtResponse><ShortName>Pos</ShortName><ECU>E<ShortName>x</ShortName>"
                                  "F</ECU></ZdtResponse></ZdtResult>");
    ASSERT_EQ(inside.size(), 1u);
    EXPECT_EQ(inside[0][5], "[EF]");
}

TEST(Xpvt701Rows, OnlyTheExactNotAcknowledgedStateIsAFailure) {
    const auto rows = rowsOf701("<ZdtResult><ZdtResponse><State>notacknowledged</State></ZdtResponse>"
                                "<ZdtResponse><State>NotAcknowledged</State></ZdtResponse>"
                                "<ZdtResponse><State>not acknowledged</State></ZdtResponse>"
                                "<ZdtResponse><State>notack\nnowledged</State></ZdtResponse></ZdtResult>");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0], (Fields{"003", "  Response [STATE]", "", "", "", "Response state", "not acknowledged", ""}));
    EXPECT_EQ(rows[1], (Fields{"002", "  Response [STATE]", "", "", "", "Response state", "NotAcknowledged", ""}));
    EXPECT_EQ(rows[2][0], "002");
    EXPECT_EQ(rows[2][6], "not acknowledged");
    // The line break is gone before the comparison.
    EXPECT_EQ(rows[3][0], "003");
}

TEST(Xpvt701Rows, PduRowsFollowTheCutter) {
    const auto rows = rowsOf701(R"(<ZdtResult>
<ZdtRequest><PDU>NO PDU</PDU></ZdtRequest></ZdtResult>
<ZdtResult><ZdtRequest><PDU></PDU><PDU>--</PDU></ZdtRequest></ZdtResult>
<ZdtResult>
<ZdtResponse><CANID>1</CANID><TimeStamp>2</TimeStamp><PDU>00 11 22 33 44 55 66 77 88 99</PDU></ZdtResponse>
<ZdtResponse><PDU>
  AA BB
</PDU></ZdtResponse>
</ZdtResult>)");
    const std::vector<Fields> expected = {
        {"002", "  Response[PDU]", "", "1", "2", "ResponsePDU", "00 11 22 33 44 55 66 77", ""},
        {"002", "  Response[PDU]", "", "1", "2", "ResponsePDU", "88 99", ""},
        {"002", "  Response[PDU]", "", "1", "2", "ResponsePDU", "9", ""},
        // Line breaks go before the cut; the two leading blanks are skipped and shift it.
        {"002", "  Response[PDU]", "", "", "", "ResponsePDU", "AA BB", ""},
        {"002", "  Response[PDU]", "", "", "", "ResponsePDU", "BB", ""},
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt701Rows, PdusOfOneRequestJoinUpSinceTheRequestClearsNothing) {
    const auto rows = rowsOf701("<ZdtResult><ZdtRequest><ShortName>A</ShortName><PDU>10</PDU><PDU>20</PDU>"
                                "<ShortName>B</ShortName></ZdtRequest></ZdtResult>");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[1][6], "10");
    EXPECT_EQ(rows[2][6], "1020");
    EXPECT_EQ(rows[3][5], "AB");
    // The same in a response: a later "NO PDU" has joined the earlier text, so it is no
    // longer the empty marker and is cut like any text ("D" of "PDU" is a hex digit).
    const auto joined = rowsOf701("<ZdtResult><ZdtResponse><PDU>0A</PDU><PDU>NO PDU</PDU></ZdtResponse></ZdtResult>");
    ASSERT_EQ(joined.size(), 3u);
    EXPECT_EQ(joined[1][6], "0A D ");
    EXPECT_EQ(joined[2][6], "D ");
}

// --- response parameter nesting ---------------------------------------------------------

TEST(Xpvt701Rows, NestedResponseParametersComeInDocumentOrderWithIndent) {
    const auto rows = rowsOf701(R"(<ZdtResult><ZdtResponse>
<ZdtResponseParameter><ShortName>A</ShortName><ZdtValue><Value>1</Value></ZdtValue>
  <ZdtResponseParameter><ShortName>B</ShortName><ZdtValue><Value>2</Value></ZdtValue>
    <ZdtResponseParameter><ShortName>C</ShortName><ZdtValue><Value>3</Value></ZdtValue></ZdtResponseParameter>
  </ZdtResponseParameter>
  <ZdtResponseParameter><ShortName>D</ShortName></ZdtResponseParameter>
  <ShortName>late</ShortName>
</ZdtResponseParameter>
<ZdtResponseParameter><ShortName>E</ShortName><ZdtValue><Value>5</Value></ZdtValue></ZdtResponseParameter>
</ZdtResponse></ZdtResult>)");
    const std::vector<Fields> expected = {
        {"000", "    Response parameter", "", "", "", "A", "1", ""},
        {"000", "    Response parameter", "", "", "", "  B", "2", ""},
        {"000", "    Response parameter", "", "", "", "    C", "3", ""},
        // A sibling after a closed group: its level was not the deepest opened, so it
        // waits for its own end, and the parent "A" makes no second row for "late".
        {"000", "    Response parameter", "", "", "", "  D", "", ""},
        // Nothing clears at the parent's end, so its late ShortName stays for the next one.
        {"000", "    Response parameter", "", "", "", "lateE", "5", ""},
    };
    EXPECT_EQ(rows, expected);
}

TEST(Xpvt701Rows, ValueOfAResponseParameterBuildsNoRowOfItsOwn) {
    const auto rows = rowsOf701("<ZdtResult><ZdtResponse><ZdtResponseParameter><ZdtValue><Value>1</Value>"
                                "</ZdtValue><ZdtValue><Value>2</Value></ZdtValue></ZdtResponseParameter>"
                                "</ZdtResponse></ZdtResult>");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0][6], "12");
}

// --- what is skipped --------------------------------------------------------------------

TEST(Xpvt701Rows, UnknownAndMisplacedElementsAreSkippedWithTheirSubtrees) {
    const auto rows = rowsOf701(R"(
<Unknown><StartTrace><Time>x</Time></StartTrace></Unknown>
<ZdtResult><PDU>11 22</PDU><ZdtRequest><Extra><ShortName>no</ShortName></Extra>
  <ZdtRequestParameter><ShortName>P</ShortName></ZdtRequestParameter></ZdtRequest></ZdtResult>
<ZdtRequest><ShortName>top-level request</ShortName></ZdtRequest>
<State>notacknowledged</State>
<StopTrace><Time>t</Time></StopTrace>)");
    // Only the StopTrace row: a request parameter without ZdtValue shows nothing.
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0][1], "Stop trace");
}

TEST(Xpvt701Rows, ControlBytesLeaveValuesAndTextJoinsAcrossEntities) {
    const auto rows = rowsOf701("<ZdtResult><ZdtRequest><ShortName>Re&amp;ad\tDTC&#10;\n  x\xc3\xa4</ShortName>"
                                "</ZdtRequest></ZdtResult>");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0][5], "Re&adDTC  x\xc3\xa4");
}

TEST(Xpvt701Rows, ErrorInsideARequestParameterClearsWhatCameBefore) {
    const auto rows = rowsOf701("<ZdtResult><ZdtRequest><ZdtRequestParameter><ShortName>P</ShortName>"
                                "<ZdtError><Severity>s</Severity></ZdtError><ZdtValue><Value>v</Value></ZdtValue>"
                                "</ZdtRequestParameter></ZdtRequest></ZdtResult>");
    const std::vector<Fields> expected = {
        {"003", "Error", "", "", "", "", "", ""},
        {"003", "Error", "", "", "", "Severity info", "s[ ]", ""},
        {"002", "  Request parameter", "", "", "", "", "v", ""},
    };
    EXPECT_EQ(rows, expected);
}

} // namespace

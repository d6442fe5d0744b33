#include "XpvtTestFiles.h"
#include "xpvt/ConsumerFindInterface.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;
using xpvttest::OpenedTrace;
using xpvttest::trace701;

// One of every kind of row; the comments give the row numbers of the row pass.
const char* const EveryRow = R"(
<StartTrace><Time>t</Time></StartTrace>                                             <!-- 0 -->
<OpenLogicalLink><LogicalLink><ShortName>LL_A</ShortName></LogicalLink></OpenLogicalLink> <!-- 1 -->
<OpenComPrimitive><LogicalLink><ShortName>LL_A</ShortName></LogicalLink></OpenComPrimitive> <!-- 2 -->
<CloseComPrimitive><LogicalLink><ShortName>LL_B</ShortName></LogicalLink></CloseComPrimitive> <!-- 3 -->
<ZdtResult>
  <LogicalLink><ShortName>LL_R</ShortName></LogicalLink>                            <!-- 4 -->
  <ZdtRequest>
    <ShortName>ReqName</ShortName>                                                  <!-- 5 -->
    <PDU>10 11 12 13 14 15 16 17 18 19</PDU>                                        <!-- 6, 7, 8 -->
    <ZdtRequestParameter><ShortName>rpName</ShortName>
      <ZdtValue><Value>rpValue</Value></ZdtValue></ZdtRequestParameter>             <!-- 9 -->
  </ZdtRequest>
  <ZdtResponse>
    <ECU>Engine</ECU>                                                               <!-- 10 -->
    <State>notacknowledged</State>                                                  <!-- 11 -->
    <PDU>NO PDU</PDU>
  </ZdtResponse>
  <ZdtResponse>
    <PDU>AA BB</PDU>                                                                <!-- 12 -->
    <ZdtResponseParameter><ShortName>respName</ShortName>
      <ZdtValue><Value>respValue</Value></ZdtValue></ZdtResponseParameter>          <!-- 13 -->
    <ZdtResponseParameter><ZdtError><ShortName>errName</ShortName>
      <CodeDescription>errCode</CodeDescription><Severity>sevX</Severity>
      <SeverityInfo>infoY</SeverityInfo></ZdtError>                                 <!-- 14, 15 -->
    </ZdtResponseParameter>                                                         <!-- 16 -->
  </ZdtResponse>
</ZdtResult>
<CloseLogicalLink/>                                                                 <!-- 17 -->
<StopTrace/>                                                                        <!-- 18 -->
)";

using Marks = std::vector<int>;

// Opens EveryRow, runs one search with the criteria that `set` makes, returns the marks.
Marks search(const std::function<void(XpvtFindCriteria701&)>& set) {
    OpenedTrace trace(trace701(EveryRow));
    EXPECT_TRUE(trace.opened);
    EXPECT_EQ(trace.doc.container().rowCount(), 19);
    set(trace.doc.findCriteria701());
    EXPECT_TRUE(trace.doc.find(&trace.messages));
    EXPECT_TRUE(trace.messages.shown.empty());
    // A mark is on the row as well as in the list.
    for (int row : trace.doc.findResults())
        EXPECT_EQ(trace.doc.container().readRow(row)[0], '1') << row;
    return trace.doc.findResults();
}

TEST(Xpvt701Search, NothingEnabledMarksNothingAndUnmarkedRowsKeepTheirFlags) {
    EXPECT_EQ(search([](XpvtFindCriteria701&) {}), Marks{});
    // Every side flag and matchAll, but none of the tests that they gate.
    EXPECT_EQ(search([](XpvtFindCriteria701& k) {
                  k.searchResponses = true;
                  k.matchAll = true;
                  k.matchByName = true;
                  k.parameterValueEnabled = true;
              }),
              Marks{});
}

TEST(Xpvt701Search, PrimitivesByMatchAllOrByLinkName) {
    EXPECT_EQ(search([](auto& k) { k.searchPrimitives = k.matchAll = true; }), (Marks{2, 3}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchPrimitives = k.matchByName = true;
                  k.nameText = "LL_B";
              }),
              (Marks{3}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchPrimitives = k.matchByName = true;
                  k.nameText = "ll_";
              }),
              Marks{});
    EXPECT_EQ(search([](auto& k) {
                  k.matchByName = true;
                  k.nameText = "LL_";
              }),
              Marks{});
}

TEST(Xpvt701Search, MatchAllMarksRequestNamesWithRequestsAndResultsWithBothSides) {
    EXPECT_EQ(search([](auto& k) { k.searchRequests = k.matchAll = true; }), (Marks{5}));
    EXPECT_EQ(search([](auto& k) { k.searchBothSides = k.matchAll = true; }), (Marks{4}));
    EXPECT_EQ(search([](auto& k) { k.searchPrimitives = k.searchRequests = k.searchBothSides = k.matchAll = true; }),
              (Marks{2, 3, 4, 5}));
}

TEST(Xpvt701Search, APduMatchMarksAllItsRowsOnTheSearchedSide) {
    EXPECT_EQ(search([](auto& k) {
                  k.searchRequests = k.pduEnabled = true;
                  k.pduText = "12 13";
              }),
              (Marks{6, 7, 8}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchRequests = k.pduEnabled = true;
                  k.pduText = "AA";
              }),
              Marks{});
    EXPECT_EQ(search([](auto& k) {
                  k.searchResponses = k.pduEnabled = true;
                  k.pduText = "BB";
              }),
              (Marks{12}));
    // An empty text is found in every PDU; "NO PDU" has no row and is not counted.
    EXPECT_EQ(search([](auto& k) { k.searchBothSides = k.pduEnabled = true; }), (Marks{6, 7, 8, 12}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchBothSides = true;
                  k.pduText = "AA";
              }),
              Marks{});
}

TEST(Xpvt701Search, RequestParametersByValueOrByName) {
    EXPECT_EQ(search([](auto& k) {
                  k.searchRequests = k.parameterEnabled = true;
                  k.parameterText = "rpVal";
              }),
              (Marks{9}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchRequests = k.parameterEnabled = k.matchByName = true;
                  k.parameterText = "rpVal";
              }),
              Marks{});
    EXPECT_EQ(search([](auto& k) {
                  k.searchRequests = k.parameterEnabled = k.matchByName = true;
                  k.parameterText = "rpName";
              }),
              (Marks{9}));
    // Both sides does not reach request parameters.
    EXPECT_EQ(search([](auto& k) {
                  k.searchBothSides = k.parameterEnabled = true;
                  k.parameterText = "rp";
              }),
              Marks{});
}

TEST(Xpvt701Search, ResponseParametersByNameOrByValueEitherOneMarks) {
    EXPECT_EQ(search([](auto& k) {
                  k.searchResponses = k.parameterEnabled = k.matchByName = true;
                  k.parameterText = "Name";
              }),
              (Marks{13, 16}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchBothSides = k.parameterEnabled = k.parameterValueEnabled = true;
                  k.parameterText = "respValue";
              }),
              (Marks{13}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchResponses = k.parameterEnabled = k.matchByName = k.parameterValueEnabled = true;
                  k.parameterText = "resp";
              }),
              (Marks{13}));
    EXPECT_EQ(search([](auto& k) {
                  k.searchResponses = k.parameterEnabled = true;
                  k.parameterText = "resp";
              }),
              Marks{});
}

TEST(Xpvt701Search, ErrorsMarkTheCodeRowOrTheSeverityRow) {
    EXPECT_EQ(search([](auto& k) {
                  k.errorEnabled = k.errorByCode = true;
                  k.errorCodeText = "errCode";
              }),
              (Marks{14}));
    EXPECT_EQ(search([](auto& k) {
                  k.errorEnabled = k.errorByCode = true;
                  k.errorCodeText = "errName";
              }),
              (Marks{14}));
    EXPECT_EQ(search([](auto& k) {
                  k.errorEnabled = true;
                  k.errorSeverityText = "infoY";
              }),
              (Marks{15}));
    EXPECT_EQ(search([](auto& k) {
                  k.errorEnabled = true;
                  k.errorBySeverity = true;
                  k.errorSeverityText = "sevX";
              }),
              (Marks{15}));
    // The code test goes by errorByCode alone, so a severity text is not looked at then.
    EXPECT_EQ(search([](auto& k) {
                  k.errorEnabled = k.errorByCode = true;
                  k.errorCodeText = "none";
                  k.errorSeverityText = "sevX";
              }),
              Marks{});
    EXPECT_EQ(search([](auto& k) { k.errorSeverityText = "sevX"; }), Marks{});
}

TEST(Xpvt701Search, NestedParametersAreCountedInClosingOrder) {
    // Rows: A (0), B (1), C (2). The search counts C, B, A: a hit on C marks row 0.
    const std::string nested = "<ZdtResult><ZdtResponse><ZdtResponseParameter><ShortName>A</ShortName>"
                               "<ZdtResponseParameter><ShortName>B</ShortName><ZdtResponseParameter>"
                               "<ShortName>C</ShortName></ZdtResponseParameter></ZdtResponseParameter>"
                               "</ZdtResponseParameter></ZdtResponse></ZdtResult>";
    OpenedTrace trace(trace701(nested));
    ASSERT_EQ(trace.doc.container().rowCount(), 3);
    XpvtFindCriteria701& k = trace.doc.findCriteria701();
    k.searchResponses = k.parameterEnabled = k.matchByName = true;
    k.parameterText = "C";
    ASSERT_TRUE(trace.doc.find(nullptr));
    EXPECT_EQ(trace.doc.findResults(), Marks{0});
}

// --- the search counts exactly the rows of the row pass ---------------------------------

// A random but well-formed 7.01 trace that uses every row builder, nesting, odd PDU
// texts, misplaced and unknown elements.
class RandomTrace {
public:
    explicit RandomTrace(unsigned seed) : m_random(seed) {}

    std::string make() {
        std::string body;
        const int events = 30 + pick(40);
        for (int i = 0; i < events; ++i)
            body += event();
        return trace701(body);
    }

private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(m_random); }
    bool chance(int percent) { return pick(100) < percent; }

    std::string pdu() {
        static const char* const fixed[] = {"NO PDU", "", " ", "zz", "NO PDU "};
        if (chance(15))
            return fixed[pick(5)];
        static const char* const separators[] = {" ", "  ", "-", ",", "\n", "\t", ""};
        std::string text;
        const int bytes = pick(30);
        for (int b = 0; b < bytes; ++b) {
            text += "0123456789abcdefABCDEF"[pick(22)];
            text += "0123456789abcdefABCDEF"[pick(22)];
            text += separators[pick(7)];
        }
        if (chance(20))
            text += "0";
        return text;
    }

    std::string name(const char* base) { return std::string(base) + std::to_string(pick(5)); }

    std::string error() {
        return "<ZdtError><ShortName>" + name("e") + "</ShortName><CodeDescription>" + name("c") +
               "</CodeDescription><Severity>" + name("s") + "</Severity><SeverityInfo>" + name("i") +
               "</SeverityInfo></ZdtError>";
    }

    std::string value() { return "<ZdtValue><Type>t</Type><Value>" + name("v") + "</Value></ZdtValue>"; }

    std::string responseParameter(int depth) {
        std::string p = "<ZdtResponseParameter>";
        const int parts = pick(5);
        for (int i = 0; i < parts; ++i) {
            switch (pick(6)) {
            case 0:
                p += "<ShortName>" + name("p") + "</ShortName>";
                break;
            case 1:
                p += value();
                break;
            case 2:
                p += "<RangeInfo><Text>" + name("r") + "</Text></RangeInfo>";
                break;
            case 3:
                p += chance(50) ? error() : "<Unknown><ZdtResponseParameter/></Unknown>";
                break;
            default:
                if (depth < 4)
                    p += responseParameter(depth + 1);
            }
        }
        return p + "</ZdtResponseParameter>";
    }

    std::string request() {
        std::string r = "<ZdtRequest>";
        const int parts = pick(6);
        for (int i = 0; i < parts; ++i) {
            switch (pick(4)) {
            case 0:
                r += "<ShortName>" + name("q") + "</ShortName>";
                break;
            case 1:
                r += "<PDU>" + pdu() + "</PDU>";
                break;
            case 2:
                r += "<ZdtRequestParameter><ShortName>" + name("rp") + "</ShortName>" + (chance(70) ? value() : "") +
                     (chance(30) ? error() : "") + "</ZdtRequestParameter>";
                break;
            default:
                r += "<ZdtError/>"; // misplaced: no rows
            }
        }
        return r + "</ZdtRequest>";
    }

    std::string response() {
        std::string r = "<ZdtResponse>";
        const int parts = pick(8);
        for (int i = 0; i < parts; ++i) {
            switch (pick(7)) {
            case 0:
                r += "<ECU>" + name("ecu") + "</ECU>";
                break;
            case 1:
                r += chance(50) ? "<State>notacknowledged</State>" : "<State>ok</State>";
                break;
            case 2:
                r += "<PDU>" + pdu() + "</PDU>";
                break;
            case 3:
                r += "<CANID>7E8</CANID><TimeStamp>1</TimeStamp><ShortName>s</ShortName>";
                break;
            default:
                r += responseParameter(1);
            }
        }
        return r + "</ZdtResponse>";
    }

    std::string event() {
        switch (pick(9)) {
        case 0:
            return "<StartTrace><Date>d</Date></StartTrace>";
        case 1:
            return "<StopTrace/>";
        case 2:
            return "<OpenLogicalLink><LogicalLink><ShortName>" + name("L") +
                   "</ShortName></LogicalLink></OpenLogicalLink>";
        case 3:
            return "<CloseLogicalLink/>";
        case 4:
            return "<OpenComPrimitive><LogicalLink><ShortName>" + name("L") +
                   "</ShortName></LogicalLink></OpenComPrimitive>";
        case 5:
            return "<CloseComPrimitive/>";
        case 6:
            return "<Unknown><ZdtResult><ZdtRequest><ShortName>x</ShortName></ZdtRequest></ZdtResult></Unknown>";
        default: {
            std::string result = "<ZdtResult>";
            if (chance(70))
                result += "<LogicalLink><ShortName>" + name("L") + "</ShortName></LogicalLink>";
            const int parts = pick(4);
            for (int i = 0; i < parts; ++i)
                result += chance(50) ? request() : response();
            return result + "</ZdtResult>";
        }
        }
    }

    std::mt19937 m_random;
};

// Runs the search pass by hand and returns its final row counter.
int searchCount(XpvtDoc& doc, const std::string& path, const XpvtFindCriteria701& criteria) {
    Xpvt::ConsumerFindInterface consumer;
    consumer.document = &doc;
    consumer.criteria701 = &criteria;
    Xpvt::FindContext context(&consumer);
    Xpvt::FindParser parser;
    parser.parse(path.c_str(), context);
    return consumer.row;
}

TEST(Xpvt701Search, TheSearchCountsExactlyTheRowsOfTheRowPass) {
    std::vector<std::string> files = {trace701(EveryRow), trace701(""),
                                      trace701("<ZdtResult><ZdtResponse><PDU>  01 02 03</PDU><PDU>-</PDU>"
                                               "</ZdtResponse></ZdtResult>")};
    for (unsigned seed = 1; seed <= 25; ++seed)
        files.push_back(RandomTrace(seed).make());
    int totalRows = 0;
    for (std::size_t i = 0; i < files.size(); ++i) {
        OpenedTrace trace(files[i]);
        ASSERT_TRUE(trace.opened) << i;
        const int rows = trace.doc.container().rowCount();
        totalRows += rows;
        EXPECT_EQ(searchCount(trace.doc, trace.path, XpvtFindCriteria701{}), rows) << "file " << i;
    }
    EXPECT_GT(totalRows, 1000); // the random files really are varied and long
}

TEST(Xpvt701Search, MarksOutsideParameterGroupsLandOnRowsOfTheirKind) {
    for (unsigned seed = 100; seed < 110; ++seed) {
        OpenedTrace trace(RandomTrace(seed).make());
        ASSERT_TRUE(trace.opened);
        XpvtFindCriteria701& k = trace.doc.findCriteria701();
        k.searchPrimitives = k.searchRequests = k.searchBothSides = k.matchAll = true;
        k.pduEnabled = true; // an empty text: every PDU row
        ASSERT_TRUE(trace.doc.find(nullptr));
        std::set<int> expected;
        const auto rows = trace.rows();
        for (std::size_t r = 0; r < rows.size(); ++r) {
            const std::string& event = rows[r][1];
            if (event == "OpenComPrimitive" || event == "CloseComPrimitive" || event == "Result" ||
                event == "  Request[ShortName]" || event == "  Request PDU" || event == "  Response[PDU]")
                expected.insert(static_cast<int>(r));
        }
        const std::vector<int>& marks = trace.doc.findResults();
        EXPECT_EQ(std::set<int>(marks.begin(), marks.end()), expected) << "seed " << seed;
        EXPECT_EQ(marks.size(), expected.size());
    }
}

} // namespace

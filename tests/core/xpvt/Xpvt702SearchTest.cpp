#include "XpvtTestFiles.h"
#include "XpvtTraceGenerator.h"
#include "xpvt/ConsumerFindInterface.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

using xpvttest::Fields;
using xpvttest::OpenedTrace;
using ZDTAnalyzer::XpvtFindCriteria702;

namespace {

// Rows, by number:
//  0 OpenLogicalLink LL_A @9   1 OpenLogicalLink LL_B @10   2 CloseLogicalLink LL_A (no time)
//  3 Start [Service] Read @11  4 Called by Job  5 DiagComPrimitive
//  6 Stop [Service] Read @12   7 DiagComPrimitive
//  8 Result [Service]  9 Called by  10 DiagComPrimitive
// 11, 12 Request ReadDID (17 bytes)  13 Parameter SID ($22)  14 Parameter DID (F190)
// 15 Response PosResp  16 Parameter DID ($FF)  17 Parameter VIN
// 18 Error
// 19 Result [Job]  20 DiagComPrimitive  21 Request WriteDID  22 Parameter SID (46)
// 23 Stop Trace
const char* const SearchTrace = R"(
<OpenLogicalLink><TimeStamp>9</TimeStamp><LogicalLink ShortName="LL_A"/><AccessKeyOfLocation>AK1</AccessKeyOfLocation></OpenLogicalLink>
<OpenLogicalLink><TimeStamp>10</TimeStamp><LogicalLink ShortName="LL_B"/></OpenLogicalLink>
<CloseLogicalLink><LogicalLink ShortName="LL_A"/></CloseLogicalLink>
<StartDiagComPrimitive><TimeStamp>11</TimeStamp><LogicalLink ShortName="LL_A"/>
  <ParentDiagComPrimitives><DiagComPrimitive ShortName="Job"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="Read" ID="7" ObjectType="Service"/></StartDiagComPrimitive>
<FinishDiagComPrimitive><TimeStamp>12</TimeStamp><LogicalLink ShortName="LL_A"/>
  <DiagComPrimitive ShortName="Read" ID="7" ObjectType="Service"/></FinishDiagComPrimitive>
<Result><LogicalLink ShortName="LL_A"/>
  <ParentDiagComPrimitives><DiagComPrimitive ShortName="Job"/></ParentDiagComPrimitives>
  <DiagComPrimitive ShortName="Read" ID="7" ObjectType="Service"/>
  <Request ShortName="ReadDID"><TimeStamp>13</TimeStamp>
    <RequestMessage>22 F1 90 00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D</RequestMessage>
    <RequestParameter ShortName="SID" Type="A_UINT32"><Value Radix="16"><ValueAsString>34</ValueAsString></Value></RequestParameter>
    <RequestParameter ShortName="DID" Type="A_BYTES"><ValueRangeInfo Type="IDENTICAL"/><Value><ValueAsString>F190</ValueAsString></Value></RequestParameter>
  </Request>
  <Response ShortName="PosResp"><TimeStamp>14</TimeStamp><AccessKeyOfLocation>AK2</AccessKeyOfLocation>
    <LocationAddress>0x7E8</LocationAddress><ResponseMessage>62 F1 90 57</ResponseMessage>
    <ResponseParameter ShortName="DID" Type="A_BYTES"><Value Radix="16"><ValueAsString>255</ValueAsString></Value></ResponseParameter>
    <ResponseParameter ShortName="VIN" Type="A_ASCII"><Value><ValueAsString>W</ValueAsString></Value></ResponseParameter>
  </Response>
  <Error Code="E1"><CodeDescription>x</CodeDescription></Error>
</Result>
<Result><DiagComPrimitive ShortName="Write" ID="8" ObjectType="Job"/>
  <Request ShortName="WriteDID"><RequestMessage>2E F1 90</RequestMessage>
    <RequestParameter ShortName="SID" Type="A_UINT32"><Value><ValueAsString>46</ValueAsString></Value></RequestParameter>
  </Request>
</Result>
<StopTrace/>)";

class Xpvt702SearchTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(trace.opened);
        ASSERT_TRUE(trace.doc.is702());
        const auto rows = trace.rows();
        // The row numbers below rely on this layout.
        ASSERT_EQ(rows.size(), 24u);
        ASSERT_EQ(rows[11][1], "  Request");
        ASSERT_EQ(rows[13][6], "SID");
        ASSERT_EQ(rows[16][7], "$FF");
        ASSERT_EQ(rows[18][1], "Error");
        ASSERT_EQ(rows[21][6], "WriteDID");
    }

    std::vector<int> find(const std::function<void(XpvtFindCriteria702&)>& edit) {
        XpvtFindCriteria702& criteria = trace.doc.findCriteria702();
        criteria = XpvtFindCriteria702{};
        edit(criteria);
        EXPECT_TRUE(trace.doc.find(&trace.messages));
        EXPECT_TRUE(trace.messages.shown.empty());
        return trace.doc.findResults();
    }

    OpenedTrace trace{xpvttest::trace702(SearchTrace)};
};

using Rows = std::vector<int>;

} // namespace

TEST_F(Xpvt702SearchTest, OnlyPressedPagesTakePart) {
    EXPECT_EQ(find([](auto&) {}), Rows{});
    EXPECT_EQ(find([](auto& c) {
                  c.logicalLinkSection.all = true;
                  c.primitiveSection.all = true;
                  c.parameterSection.all = true;
              }),
              Rows{});
}

TEST_F(Xpvt702SearchTest, LogicalLinkPageByRadioTextAndNumericTimes) {
    auto links = [&](auto edit) {
        return find([&](auto& c) {
            c.logicalLinkSection.findPressed = true;
            edit(c.logicalLinkSection);
        });
    };
    EXPECT_EQ(links([](auto& s) { s.link = "LL_A"; }), (Rows{0, 2}));
    EXPECT_EQ(links([](auto& s) {
                  s.link = "LL_A";
                  s.openAndClose = false;
                  s.open = true;
              }),
              (Rows{0}));
    EXPECT_EQ(links([](auto& s) {
                  s.openAndClose = false;
                  s.close = true;
              }),
              (Rows{2}));
    EXPECT_EQ(links([](auto& s) { s.location = "AK1"; }), (Rows{0}));
    // A text whose flag is off takes no part.
    EXPECT_EQ(links([](auto& s) {
                  s.link = "no such link";
                  s.linkOn = false;
              }),
              (Rows{0, 1, 2}));
    EXPECT_EQ(links([](auto& s) { s.link = "ll_a"; }), Rows{});
    // Numbers, not texts: 10 lies above 9.5; a row without a time fails any bound.
    EXPECT_EQ(links([](auto& s) { s.minTime = "9.5"; }), (Rows{1}));
    EXPECT_EQ(links([](auto& s) { s.maxTime = "9"; }), (Rows{0}));
    EXPECT_EQ(links([](auto& s) {
                  s.minTime = "9";
                  s.maxTime = "10";
              }),
              (Rows{0, 1}));
    // "All" ignores texts and the radio group alike.
    EXPECT_EQ(links([](auto& s) {
                  s.all = true;
                  s.link = "nothing";
                  s.openAndClose = false;
                  s.open = true;
              }),
              (Rows{0, 1, 2}));
}

TEST_F(Xpvt702SearchTest, PrimitiveAndResultPagesMarkTheHeadRow) {
    auto primitives = [&](auto edit) {
        return find([&](auto& c) {
            c.primitiveSection.findPressed = true;
            edit(c.primitiveSection);
        });
    };
    EXPECT_EQ(primitives([](auto& s) { s.name = "Read"; }), (Rows{3, 6}));
    EXPECT_EQ(primitives([](auto& s) {
                  s.startOrFinish = false;
                  s.finish = true;
              }),
              (Rows{6}));
    EXPECT_EQ(primitives([](auto& s) { s.parent = "Job"; }), (Rows{3}));
    EXPECT_EQ(primitives([](auto& s) {
                  s.primitiveType = "Service";
                  s.id = "7";
                  s.minTime = "12";
              }),
              (Rows{6}));
    EXPECT_EQ(primitives([](auto& s) { s.id = "8"; }), Rows{});

    auto results = [&](auto edit) {
        return find([&](auto& c) {
            c.resultSection.findPressed = true;
            edit(c.resultSection);
        });
    };
    EXPECT_EQ(results([](auto& s) { s.primitiveType = "Job"; }), (Rows{19}));
    EXPECT_EQ(results([](auto& s) { s.parent = "Job"; }), (Rows{8}));
    EXPECT_EQ(results([](auto& s) {
                  s.link = "LL_A";
                  s.primitiveId = "7";
              }),
              (Rows{8}));
    EXPECT_EQ(results([](auto& s) { s.all = true; }), (Rows{8, 19}));
}

TEST_F(Xpvt702SearchTest, MessagePagesMarkEveryRowOfAMatchingMessage) {
    auto requests = [&](auto edit) {
        return find([&](auto& c) {
            c.requestSection.findPressed = true;
            edit(c.requestSection);
        });
    };
    // The message is sought as the list shows it, across its lines.
    EXPECT_EQ(requests([](auto& s) { s.message = "F1 90"; }), (Rows{11, 12, 21}));
    EXPECT_EQ(requests([](auto& s) { s.message = "07 08 09"; }), (Rows{11, 12}));
    EXPECT_EQ(requests([](auto& s) { s.message = "f1 90"; }), Rows{});
    EXPECT_EQ(requests([](auto& s) { s.name = "Write"; }), (Rows{21}));
    EXPECT_EQ(requests([](auto& s) { s.maxTime = "20"; }), (Rows{11, 12}));

    auto responses = [&](auto edit) {
        return find([&](auto& c) {
            c.responseSection.findPressed = true;
            edit(c.responseSection);
        });
    };
    EXPECT_EQ(responses([](auto& s) { s.address = "7E8"; }), (Rows{15}));
    EXPECT_EQ(responses([](auto& s) {
                  s.location = "AK2";
                  s.name = "Pos";
                  s.message = "62 F1";
              }),
              (Rows{15}));
    EXPECT_EQ(responses([](auto& s) { s.location = "AK1"; }), Rows{});
}

TEST_F(Xpvt702SearchTest, MessagePagesWithParametersMarkTheOwnerOnceBeforeItsHits) {
    auto requests = [&](auto edit) {
        return find([&](auto& c) {
            c.requestSection.findPressed = true;
            c.requestSection.parameterEnabled = true;
            edit(c.requestSection);
        });
    };
    EXPECT_EQ(requests([](auto& s) { s.paramName = "SID"; }), (Rows{11, 13, 21, 22}));
    EXPECT_EQ(requests([](auto& s) {
                  s.paramName = "SID";
                  s.name = "Read";
              }),
              (Rows{11, 13}));
    EXPECT_EQ(requests([](auto& s) {
                  s.name = "Read";
                  s.range = "IDENT";
              }),
              (Rows{11, 14}));
    // Every parameter of one request: its first row only once.
    EXPECT_EQ(requests([](auto& s) { s.name = "ReadDID"; }), (Rows{11, 13, 14}));
    // The shown value is sought: "$22", not the file's 34.
    EXPECT_EQ(requests([](auto& s) { s.value = "$22"; }), (Rows{11, 13}));
    EXPECT_EQ(requests([](auto& s) { s.dataType = "BYTES"; }), (Rows{11, 14}));
    EXPECT_EQ(requests([](auto& s) { s.value = "34"; }), Rows{});

    auto responses = [&](auto edit) {
        return find([&](auto& c) {
            c.responseSection.findPressed = true;
            c.responseSection.parameterEnabled = true;
            edit(c.responseSection);
        });
    };
    EXPECT_EQ(responses([](auto& s) { s.value = "$FF"; }), (Rows{15, 16}));
    EXPECT_EQ(responses([](auto& s) {
                  s.address = "nowhere";
                  s.value = "$FF";
              }),
              Rows{});
}

TEST_F(Xpvt702SearchTest, ParameterPageBySideWithoutTheDataTypeField) {
    auto parameters = [&](auto edit) {
        return find([&](auto& c) {
            c.parameterSection.findPressed = true;
            edit(c.parameterSection);
        });
    };
    EXPECT_EQ(parameters([](auto& s) { s.name = "SID"; }), (Rows{13, 22}));
    EXPECT_EQ(parameters([](auto& s) { s.name = "DID"; }), (Rows{14, 16}));
    EXPECT_EQ(parameters([](auto& s) {
                  s.name = "DID";
                  s.requestOrResponse = false;
                  s.response = true;
              }),
              (Rows{16}));
    EXPECT_EQ(parameters([](auto& s) {
                  s.name = "DID";
                  s.requestOrResponse = false;
                  s.request = true;
              }),
              (Rows{14}));
    EXPECT_EQ(parameters([](auto& s) { s.value = "$FF"; }), (Rows{16}));
    EXPECT_EQ(parameters([](auto& s) { s.range = "IDENTICAL"; }), (Rows{14}));
    // The sheet stores the "Value:" edit in dataType, so that field is no test here.
    EXPECT_EQ(parameters([](auto& s) {
                  s.name = "VIN";
                  s.dataType = "not a type";
              }),
              (Rows{17}));
    EXPECT_EQ(parameters([](auto& s) { s.all = true; }), (Rows{13, 14, 16, 17, 22}));
}

TEST_F(Xpvt702SearchTest, ARowHitByTwoPagesIsMarkedOnce) {
    const Rows rows = find([](auto& c) {
        c.parameterSection.findPressed = true;
        c.parameterSection.name = "DID";
        c.requestSection.findPressed = true;
        c.requestSection.parameterEnabled = true;
        c.requestSection.paramName = "DID";
    });
    EXPECT_EQ(rows, (Rows{11, 14, 16}));
}

namespace {

bool isLinkRow(const Fields& f) {
    return f[1] == "OpenLogicalLink" || f[1] == "CloseLogicalLink";
}
bool isPrimitiveHead(const Fields& f) {
    return f[0] == "001";
}
bool isResultHead(const Fields& f) {
    return f[1].rfind("Result [", 0) == 0;
}
bool isParameterRow(const Fields& f) {
    return f[1].find("Parameter [") != std::string::npos;
}
std::string trimmedEvent(const Fields& f) {
    return f[1].substr(std::min(f[1].find_first_not_of(' '), f[1].size()));
}
bool isRequestMessageRow(const Fields& f) {
    return f[0] == "002" && (trimmedEvent(f) == "Request" || trimmedEvent(f) == "Request[Message]");
}
bool isResponseMessageRow(const Fields& f) {
    return f[0] == "000" && !isParameterRow(f);
}

Rows rowsWhere(const std::vector<Fields>& rows, bool (*predicate)(const Fields&)) {
    Rows result;
    for (int i = 0; i < static_cast<int>(rows.size()); ++i)
        if (predicate(rows[static_cast<std::size_t>(i)]))
            result.push_back(i);
    return result;
}

} // namespace

// The search must count rows exactly as the row pass makes them, on any file: the
// final counter equals the row count, and "All" on a page marks exactly its rows.
TEST(Xpvt702SearchCountTest, SearchCountsEveryRowOfTheRowPass) {
    std::vector<zdtgen::XpvtTraceOptions> variants;
    for (std::uint64_t seed : {1u, 2u, 7u}) {
        zdtgen::XpvtTraceOptions options;
        options.seed = seed;
        options.results = 25;
        variants.push_back(options);
    }
    {
        zdtgen::XpvtTraceOptions options;
        options.seed = 11;
        options.results = 25;
        options.hostile = zdtgen::XpvtHostile::InFileKinds();
        variants.push_back(options);
    }
    {
        zdtgen::XpvtTraceOptions options;
        options.seed = 5;
        options.results = 10;
        options.indent = false;
        options.hostile.splitText = true;
        options.hostile.repeatedLeaves = true;
        variants.push_back(options);
    }

    for (const auto& options : variants) {
        SCOPED_TRACE("seed " + std::to_string(options.seed));
        OpenedTrace trace(zdtgen::MakeXpvtTrace(options));
        ASSERT_TRUE(trace.opened);
        ASSERT_TRUE(trace.doc.is702());
        const auto rows = trace.rows();
        ASSERT_GT(rows.size(), 50u);

        XpvtFindCriteria702 criteria;
        ZDTAnalyzer::Xpvt::ConsumerFindInterface consumer;
        consumer.document = &trace.doc;
        consumer.criteria702 = &criteria;
        ZDTAnalyzer::Xpvt::FindContext context(&consumer);
        ZDTAnalyzer::Xpvt::FindParser parser;
        parser.parse(trace.path.c_str(), context);
        EXPECT_EQ(consumer.row, static_cast<int>(rows.size()));

        struct Page {
            const char* name;
            std::function<void(XpvtFindCriteria702&)> press;
            bool (*predicate)(const Fields&);
        };
        const Page pages[] = {
            {"links", [](auto& c) { c.logicalLinkSection.findPressed = c.logicalLinkSection.all = true; }, &isLinkRow},
            {"primitives", [](auto& c) { c.primitiveSection.findPressed = c.primitiveSection.all = true; },
             &isPrimitiveHead},
            {"results", [](auto& c) { c.resultSection.findPressed = c.resultSection.all = true; }, &isResultHead},
            {"requests", [](auto& c) { c.requestSection.findPressed = c.requestSection.all = true; },
             &isRequestMessageRow},
            {"responses", [](auto& c) { c.responseSection.findPressed = c.responseSection.all = true; },
             &isResponseMessageRow},
            {"parameters", [](auto& c) { c.parameterSection.findPressed = c.parameterSection.all = true; },
             &isParameterRow},
        };
        for (const Page& page : pages) {
            SCOPED_TRACE(page.name);
            XpvtFindCriteria702& stored = trace.doc.findCriteria702();
            stored = XpvtFindCriteria702{};
            page.press(stored);
            ASSERT_TRUE(trace.doc.find(&trace.messages));
            const Rows expected = rowsWhere(rows, page.predicate);
            EXPECT_FALSE(expected.empty());
            EXPECT_EQ(trace.doc.findResults(), expected);
        }
    }
}

#include "XpvtTraceGenerator.h"

#include "support/ExpatCollector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace expatcollect;
using namespace zdtgen;

namespace {

using Pairs = std::set<std::pair<std::string, std::string>>;

// Adds every (parent, child) of a row "parent: child child ...".
void AddTree(Pairs& pairs, const std::vector<std::pair<std::vector<std::string>, std::vector<std::string>>>& rows) {
    for (const auto& [parents, children] : rows)
        for (const auto& parent : parents)
            for (const auto& child : children)
                pairs.emplace(parent, child);
}

// The header, read with the first tables in both schemas.
void AddDescription(Pairs& pairs) {
    AddTree(pairs, {
                       {{""}, {"ProcessValueTrace"}},
                       {{"ProcessValueTrace"}, {"Description", "Trace"}},
                       {{"Description"},
                        {"Title", "Schema", "ProductVersion", "Date", "Time", "Author", "Comment", "Project"}},
                       {{"Project"}, {"ShortName", "VehicleInformationTable"}},
                       {{"VehicleInformationTable"}, {"ShortName", "LogicalLink"}},
                   });
}

Pairs Tree701() {
    Pairs pairs;
    AddDescription(pairs);
    AddTree(pairs,
            {
                {{"LogicalLink"}, {"ShortName", "DatabaseAccessKey"}},
                {{"Trace"},
                 {"ZdtResult", "OpenComPrimitive", "CloseComPrimitive", "OpenLogicalLink", "CloseLogicalLink",
                  "StartTrace", "StopTrace"}},
                {{"StartTrace", "StopTrace"}, {"Date", "Time"}},
                {{"OpenLogicalLink", "CloseLogicalLink"}, {"LogicalLink", "PhysicalInterfaceLink", "Date", "Time"}},
                {{"OpenComPrimitive", "CloseComPrimitive"},
                 {"ShortName", "ID", "Type", "LogicalLink", "PhysicalInterfaceLink", "Date", "Time"}},
                {{"ZdtResult"}, {"LogicalLink", "ZdtRequest", "ZdtResponse"}},
                {{"ZdtRequest"}, {"ShortName", "PDU", "ZdtRequestParameter"}},
                {{"ZdtRequestParameter"}, {"ShortName", "Type", "Unit", "RangeInfo", "ZdtValue", "ZdtError"}},
                {{"ZdtResponse"},
                 {"ShortName", "ECU", "State", "StateInfo", "CANID", "TimeStamp", "PDU", "DatabaseAccessKey",
                  "ZdtResponseParameter"}},
                {{"ZdtResponseParameter"},
                 {"ShortName", "Type", "Unit", "RangeInfo", "ZdtValue", "ZdtError", "ZdtResponseParameter"}},
                {{"ZdtValue"}, {"Type", "Value", "Radix"}},
                {{"RangeInfo"}, {"Type", "Text"}},
                {{"ZdtError"}, {"ShortName", "CodeDescription", "Severity", "SeverityInfo"}},
            });
    return pairs;
}

Pairs Tree702() {
    Pairs pairs;
    AddDescription(pairs);
    AddTree(
        pairs,
        {
            // The header's link, read by the first tables.
            {{"LogicalLink"}, {"ShortName", "DatabaseAccessKey"}},
            {{"Trace"},
             {"StartTrace", "StopTrace", "OpenLogicalLink", "CloseLogicalLink", "StartDiagComPrimitive",
              "FinishDiagComPrimitive", "Result", "VariantSelected", "VariantDetected"}},
            {{"StartTrace"}, {"PhysicalInterfaceLink", "PhysicalVehicleLink"}},
            {{"OpenLogicalLink", "CloseLogicalLink"}, {"TimeStamp", "LogicalLink", "AccessKeyOfLocation"}},
            {{"StartDiagComPrimitive"},
             {"TimeStamp", "LogicalLink", "AccessKeyOfLocation", "ParentDiagComPrimitives", "DiagComPrimitive"}},
            {{"FinishDiagComPrimitive"},
             {"TimeStamp", "LogicalLink", "AccessKeyOfLocation", "ParentDiagComPrimitives", "DiagComPrimitive",
              "VariantDetected", "VariantSelected"}},
            {{"ParentDiagComPrimitives"}, {"DiagComPrimitive"}},
            {{"Result"},
             {"LogicalLink", "ParentDiagComPrimitives", "DiagComPrimitive", "Error", "Request", "Response"}},
            {{"Request"}, {"TimeStamp", "Error", "RequestMessage", "RequestParameter"}},
            {{"RequestParameter"}, {"Unit", "ValueRangeInfo", "Value", "Error", "RequestParameter"}},
            {{"Response"},
             {"TimeStamp", "AccessKeyOfLocation", "LocationAddress", "Error", "ResponseMessage", "ResponseParameter"}},
            {{"ResponseParameter"}, {"Unit", "ValueRangeInfo", "Value", "Error", "ResponseParameter"}},
            {{"Value"}, {"ValueAsString"}},
            {{"ValueRangeInfo"}, {"Text"}},
            {{"Error"}, {"CodeDescription", "VendorCode", "VendorCodeDescription"}},
        });
    return pairs;
}

XpvtTraceOptions Options(XpvtSchema schema, std::uint64_t results, std::uint64_t seed = 1) {
    XpvtTraceOptions options;
    options.schema = schema;
    options.results = results;
    options.seed = seed;
    return options;
}

// Bytes of a hexadecimal text whatever its separators and "0x" prefixes.
std::size_t HexByteCount(std::string text) {
    for (std::size_t at; (at = text.find("0x")) != std::string::npos;)
        text.erase(at, 2);
    return static_cast<std::size_t>(std::count_if(
               text.begin(), text.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); })) /
           2;
}

bool HasSequence(const std::vector<std::string>& names, const std::string& first, const std::string& second) {
    const auto a = std::find(names.begin(), names.end(), first);
    return a != names.end() && std::find(a + 1, names.end(), second) != names.end();
}

class XpvtGeneratorBySchema : public ::testing::TestWithParam<XpvtSchema> {};

} // namespace

TEST_P(XpvtGeneratorBySchema, SameOptionsGiveSameBytesAndSeedChangesThem) {
    XpvtTraceOptions options = Options(GetParam(), 40);
    options.hostile = XpvtHostile::InFileKinds();
    const std::string first = MakeXpvtTrace(options);
    std::ostringstream streamed;
    const XpvtTraceSummary summary = WriteXpvtTrace(streamed, options);
    EXPECT_EQ(first, streamed.str());
    EXPECT_EQ(summary.bytes, first.size());
    EXPECT_EQ(summary.results, 40u);
    options.seed = 2;
    EXPECT_NE(first, MakeXpvtTrace(options));
}

TEST_P(XpvtGeneratorBySchema, EveryKindIsWellFormedExceptTheTruncatedOne) {
    XpvtTraceOptions normal = Options(GetParam(), 80);
    for (const bool indent : {true, false}) {
        normal.indent = indent;
        const ParseResult parsed = ParseXml(MakeXpvtTrace(normal));
        EXPECT_EQ(parsed.error, XML_ERROR_NONE) << XML_ErrorString(parsed.error);
        ASSERT_NE(parsed.Root(), nullptr);
        EXPECT_EQ(parsed.Root()->name, "ProcessValueTrace");
    }
    // Many seeds: the hostile extras are placed at random and must never break the XML.
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        XpvtTraceOptions hostile = Options(GetParam(), 40, seed);
        hostile.hostile = XpvtHostile::InFileKinds();
        const ParseResult parsed = ParseXml(MakeXpvtTrace(hostile));
        EXPECT_EQ(parsed.error, XML_ERROR_NONE) << "seed " << seed << ": " << XML_ErrorString(parsed.error);
    }

    XpvtTraceOptions foreign = normal;
    foreign.hostile.foreignRoot = true;
    const ParseResult foreignParsed = ParseXml(MakeXpvtTrace(foreign));
    EXPECT_EQ(foreignParsed.error, XML_ERROR_NONE);
    ASSERT_NE(foreignParsed.Root(), nullptr);
    EXPECT_NE(foreignParsed.Root()->name, "ProcessValueTrace");
    EXPECT_EQ(foreignParsed.Named("ProcessValueTrace").size(), 1u); // a whole trace inside

    XpvtTraceOptions truncated = normal;
    truncated.hostile.truncatedEnd = true;
    const std::string cut = MakeXpvtTrace(truncated);
    EXPECT_NE(ParseXml(cut).error, XML_ERROR_NONE);
    // It stops inside an element of the last result, after the results it was asked for.
    truncated.hostile.truncatedEnd = false;
    const std::string whole = MakeXpvtTrace(truncated);
    const std::size_t common =
        static_cast<std::size_t>(std::mismatch(cut.begin(), cut.end(), whole.begin(), whole.end()).first - cut.begin());
    EXPECT_GT(common, whole.size() * 9 / 10);
    EXPECT_LT(cut.size() - common, 200u);
}

TEST_P(XpvtGeneratorBySchema, ReachesTheRequestedSizeAndNotMuchMore) {
    for (const std::uint64_t target : {std::uint64_t{1}, std::uint64_t{300} << 10, std::uint64_t{2} << 20}) {
        XpvtTraceOptions options = Options(GetParam(), 0);
        options.targetBytes = target;
        std::ostringstream out;
        const XpvtTraceSummary summary = WriteXpvtTrace(out, options);
        const std::string text = out.str();
        EXPECT_EQ(summary.bytes, text.size());
        EXPECT_GE(text.size(), target);
        EXPECT_LT(text.size(), target + 32768) << "one result overshoots by far";
        // The header alone passes a tiny target; any real one needs results.
        EXPECT_EQ(summary.results == 0, target < 4096);
        EXPECT_EQ(ParseXml(text).error, XML_ERROR_NONE);
    }
}

TEST_P(XpvtGeneratorBySchema, WritesEveryPlaceOfItsTreeAndNothingElseUnlessHostile) {
    const Pairs tree = GetParam() == XpvtSchema::V702 ? Tree702() : Tree701();
    const ParseResult parsed = ParseXml(MakeXpvtTrace(Options(GetParam(), 300)));
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    const Pairs written = parsed.Pairs();
    for (const auto& pair : tree)
        EXPECT_TRUE(written.count(pair)) << pair.second << " never written under " << pair.first;
    for (const auto& pair : written)
        EXPECT_TRUE(tree.count(pair)) << pair.second << " written under " << pair.first << " outside the tree";

    XpvtTraceOptions hostile = Options(GetParam(), 100);
    hostile.hostile = XpvtHostile::InFileKinds();
    const ParseResult hostileParsed = ParseXml(MakeXpvtTrace(hostile));
    ASSERT_EQ(hostileParsed.error, XML_ERROR_NONE);
    std::set<std::string> outside;
    for (const auto& pair : hostileParsed.Pairs())
        if (!tree.count(pair))
            outside.insert(pair.first + ">" + pair.second);
    EXPECT_GE(outside.size(), 6u);
    // A known name where its parent does not allow it, and a Schema that must not count.
    EXPECT_TRUE(outside.count(GetParam() == XpvtSchema::V702 ? "Trace>Request" : "ZdtResult>PDU"));
    EXPECT_TRUE(outside.count("Extension>Schema"));
    EXPECT_GT(hostileParsed.maxDepth, 200); // deeper than the parser's first stack
}

TEST_P(XpvtGeneratorBySchema, SchemaTextAndHeaderDatesComeOutAsAsked) {
    const std::string own = GetParam() == XpvtSchema::V702 ? "7,02" : "7.01";
    const std::vector<std::optional<std::string>> texts = {std::nullopt, "7,02", "7.02", "7,02 ", "7,02\n", ""};
    for (const auto& text : texts) {
        XpvtTraceOptions options = Options(GetParam(), 2);
        options.schemaText = text;
        options.hostile.unknownElements = true; // the hidden Schema must not stand in the header
        const ParseResult parsed = ParseXml(MakeXpvtTrace(options));
        ASSERT_EQ(parsed.error, XML_ERROR_NONE);
        const auto schemas = parsed.Named("Schema", "Description");
        ASSERT_EQ(schemas.size(), 1u);
        EXPECT_EQ(schemas.front()->text, text.value_or(own));
        EXPECT_EQ(XpvtSchemaText(options), text.value_or(own));
    }
    XpvtTraceOptions none = Options(GetParam(), 2);
    none.omitSchema = true;
    EXPECT_TRUE(ParseXml(MakeXpvtTrace(none)).Named("Schema", "Description").empty());

    XpvtTraceOptions dates = Options(GetParam(), 2);
    const ParseResult both = ParseXml(MakeXpvtTrace(dates));
    const auto description = both.Named("Description");
    ASSERT_EQ(description.size(), 1u);
    EXPECT_EQ(description.front()->attributes.at("DateTime"), "2023-11-21T14:05:09");
    EXPECT_EQ(both.Named("Date", "Description").size(), 1u);
    EXPECT_EQ(both.Named("Time", "Description").size(), 1u);

    dates.descriptionDateTime = "14:05:09";
    dates.descriptionDateChildren = false;
    const ParseResult attributeOnly = ParseXml(MakeXpvtTrace(dates));
    EXPECT_EQ(attributeOnly.Named("Description").front()->attributes.at("DateTime"), "14:05:09");
    EXPECT_TRUE(attributeOnly.Named("Date", "Description").empty());
    dates.descriptionDateTime.reset();
    EXPECT_FALSE(ParseXml(MakeXpvtTrace(dates)).Named("Description").front()->attributes.count("DateTime"));
}

INSTANTIATE_TEST_SUITE_P(Schemas, XpvtGeneratorBySchema, ::testing::Values(XpvtSchema::V701, XpvtSchema::V702),
                         [](const auto& schema) { return schema.param == XpvtSchema::V702 ? "V702" : "V701"; });

TEST(XpvtTraceGenerator, MessagesAndPdusCoverTheRowEdges) {
    const std::set<std::size_t> edges = {0, 1, 7, 8, 9, 10, 15, 16, 17, 33};
    for (const auto schema : {XpvtSchema::V701, XpvtSchema::V702}) {
        const ParseResult parsed = ParseXml(MakeXpvtTrace(Options(schema, 120)));
        ASSERT_EQ(parsed.error, XML_ERROR_NONE);
        std::set<std::size_t> lengths;
        bool noPdu = false, otherSeparator = false;
        for (const auto& e : parsed.elements) {
            if (e.name != "PDU" && e.name != "RequestMessage" && e.name != "ResponseMessage")
                continue;
            noPdu = noPdu || e.text == "NO PDU";
            if (e.text != "NO PDU")
                lengths.insert(HexByteCount(e.text));
            otherSeparator = otherSeparator || e.text.find_first_of("-:,\t") != std::string::npos;
        }
        for (const std::size_t edge : edges)
            EXPECT_TRUE(lengths.count(edge)) << "no message of " << edge << " bytes";
        EXPECT_TRUE(otherSeparator);
        if (schema == XpvtSchema::V701) {
            EXPECT_TRUE(noPdu);
            std::set<std::string> states;
            for (const auto* state : parsed.Named("State", "ZdtResponse"))
                states.insert(state->text);
            EXPECT_TRUE(states.count("notacknowledged"));
            EXPECT_TRUE(states.count("NotAcknowledged"));
            // A response name before ECU, whose row then loses it, and one after.
            bool before = false, after = false;
            for (const auto* response : parsed.Named("ZdtResponse")) {
                const auto names = parsed.ChildNames(*response);
                before = before || HasSequence(names, "ShortName", "ECU");
                after = after || HasSequence(names, "ECU", "ShortName");
            }
            EXPECT_TRUE(before && after);
        }
    }
}

TEST(XpvtTraceGenerator, TracesOf702CoverValuesErrorsNestingAndParentChains) {
    const ParseResult parsed = ParseXml(MakeXpvtTrace(Options(XpvtSchema::V702, 300)));
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);

    std::set<std::string> radixes;
    bool valueWithoutRadix = false;
    for (const auto* value : parsed.Named("Value")) {
        const auto radix = value->attributes.find("Radix");
        if (radix == value->attributes.end())
            valueWithoutRadix = true;
        else
            radixes.insert(radix->second);
    }
    for (const char* radix : {"10", "16", "2", "", "hex"})
        EXPECT_TRUE(radixes.count(radix)) << "no radix \"" << radix << "\"";
    EXPECT_TRUE(valueWithoutRadix);

    bool vendor = false, noVendor = false, noCode = false;
    for (const auto* error : parsed.Named("Error")) {
        const auto names = parsed.ChildNames(*error);
        const bool hasVendor = std::count(names.begin(), names.end(), "VendorCode") > 0;
        vendor = vendor || hasVendor;
        noVendor = noVendor || (!hasVendor && error->attributes.count("Code"));
        noCode = noCode || !error->attributes.count("Code");
    }
    EXPECT_TRUE(vendor && noVendor && noCode);

    bool errorBetween = false;
    for (const auto* request : parsed.Named("Request", "Result")) {
        const auto names = parsed.ChildNames(*request);
        errorBetween = errorBetween || (HasSequence(names, "RequestMessage", "Error") &&
                                        HasSequence(names, "Error", "RequestParameter"));
    }
    EXPECT_TRUE(errorBetween) << "no error between a request message and its parameters";

    bool valueBefore = false, valueAfter = false;
    for (const auto* parameter : parsed.Named("ResponseParameter")) {
        const auto names = parsed.ChildNames(*parameter);
        valueBefore = valueBefore || HasSequence(names, "Value", "ResponseParameter");
        valueAfter = valueAfter || HasSequence(names, "ResponseParameter", "Value");
    }
    EXPECT_TRUE(valueBefore && valueAfter);
    EXPECT_FALSE(parsed.Named("RequestParameter", "RequestParameter").empty());

    bool shortParent = false, fourLetters = false, severalParents = false;
    for (const auto* parents : parsed.Named("ParentDiagComPrimitives")) {
        severalParents = severalParents || parents->children.size() >= 2;
        for (const int child : parents->children) {
            const std::string& name = parsed.elements[child].attributes.at("ShortName");
            shortParent = shortParent || name.size() < 3;
            fourLetters = fourLetters || name == "Diag";
        }
    }
    EXPECT_TRUE(shortParent && fourLetters && severalParents);
}

TEST(XpvtTraceGenerator, HostileTextsArriveInPiecesWithControlsAndUtf8) {
    for (const auto schema : {XpvtSchema::V701, XpvtSchema::V702}) {
        XpvtTraceOptions options = Options(schema, 150);
        options.hostile = XpvtHostile::InFileKinds();
        const std::string xml = MakeXpvtTrace(options);
        const ParseResult parsed = ParseXml(xml);
        ASSERT_EQ(parsed.error, XML_ERROR_NONE);
        bool split = false, entity = false, control = false, del = false, utf8 = false, utf8Name = false;
        for (const auto& e : parsed.elements) {
            if (e.children.empty()) {
                split = split || e.textCallbacks > 2;
                entity = entity || e.text.find('&') != std::string::npos || e.text.find('<') != std::string::npos;
                control = control || e.text.find_first_of("\t\r\n") != std::string::npos;
                del = del || e.text.find('\x7F') != std::string::npos;
                utf8 = utf8 || std::any_of(e.text.begin(), e.text.end(), [](char c) { return (c & 0x80) != 0; });
            }
            utf8Name = utf8Name || std::any_of(e.name.begin(), e.name.end(), [](char c) { return (c & 0x80) != 0; });
        }
        EXPECT_TRUE(split && entity && control && del && utf8 && utf8Name);
        EXPECT_NE(xml.find("<![CDATA["), std::string::npos);
        // Repeated leaves, which a reader joins.
        bool repeated = false;
        for (const auto& e : parsed.elements) {
            const auto names = parsed.ChildNames(e);
            for (std::size_t i = 1; i < names.size() && !repeated; ++i)
                repeated = names[i] == names[i - 1] && parsed.elements[e.children[i]].children.empty() &&
                           names[i] != "DiagComPrimitive" && names[i] != "Error";
        }
        EXPECT_TRUE(repeated);
    }
}

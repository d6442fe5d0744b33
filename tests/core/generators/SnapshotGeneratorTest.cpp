#include "SnapshotGenerator.h"

#include "support/ExpatCollector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace expatcollect;
using namespace zdtgen;

namespace {

struct Rows {
    std::string dateTime;
    std::vector<std::vector<std::string>> rows; // flags, event, description, name, value, unit
    SnapshotSummary summary;
    std::string raw;
};

std::vector<std::string> SplitTabs(const std::string& line) {
    std::vector<std::string> columns;
    std::size_t start = 0;
    for (std::size_t tab; (tab = line.find('\t', start)) != std::string::npos; start = tab + 1)
        columns.push_back(line.substr(start, tab - start));
    columns.push_back(line.substr(start));
    return columns;
}

Rows Generate(const SnapshotOptions& options, std::string* xml = nullptr) {
    std::ostringstream out, rowsOut;
    Rows result;
    result.summary = WriteSnapshotWithRows(out, &rowsOut, options);
    result.raw = rowsOut.str();
    std::istringstream lines(result.raw);
    std::string line;
    if (std::getline(lines, line) && line.rfind("#DateTime\t", 0) == 0)
        result.dateTime = line.substr(10);
    while (std::getline(lines, line))
        result.rows.push_back(SplitTabs(line));
    if (xml != nullptr)
        *xml = out.str();
    return result;
}

const std::vector<std::string>* FindRowNamed(const Rows& rows, const std::string& name) {
    for (const auto& row : rows.rows)
        if (row.size() == 6 && row[3] == name)
            return &row;
    return nullptr;
}

bool AnyRowMentions(const Rows& rows, const std::string& text) {
    for (const auto& row : rows.rows)
        for (const auto& column : row)
            if (column.find(text) != std::string::npos)
                return true;
    return false;
}

SnapshotOptions Hostile(void (*enable)(SnapshotHostile&), std::uint64_t snapshots = 3) {
    SnapshotOptions options;
    options.snapshots = snapshots;
    options.hostile.hugeAttributeBytes = 5000;
    options.hostile.nestingDepth = 260;
    enable(options.hostile);
    return options;
}

} // namespace

TEST(SnapshotGenerator, SameOptionsGiveSameBytesAndSeedChangesThem) {
    SnapshotOptions options;
    options.snapshots = 20;
    options.hostile = SnapshotHostile::InFileKinds();
    options.hostile.hugeAttributeBytes = 3000;
    std::string first, second;
    const Rows rowsFirst = Generate(options, &first);
    const Rows rowsSecond = Generate(options, &second);
    EXPECT_EQ(first, second);
    EXPECT_EQ(rowsFirst.raw, rowsSecond.raw);
    EXPECT_EQ(first, MakeSnapshot(options));

    options.seed = 2;
    EXPECT_NE(first, MakeSnapshot(options));
}

TEST(SnapshotGenerator, WellFormednessOfEveryKind) {
    SnapshotOptions normal;
    normal.snapshots = 40;
    EXPECT_EQ(ParseXml(MakeSnapshot(normal)).error, XML_ERROR_NONE);

    normal.indent = false;
    EXPECT_EQ(ParseXml(MakeSnapshot(normal)).error, XML_ERROR_NONE);

    SnapshotOptions hostile = normal;
    hostile.hostile = SnapshotHostile::InFileKinds();
    hostile.hostile.hugeAttributeBytes = 30000;
    hostile.indent = true;
    const ParseResult parsed = ParseXml(MakeSnapshot(hostile));
    EXPECT_EQ(parsed.error, XML_ERROR_NONE) << XML_ErrorString(parsed.error);
    ASSERT_FALSE(parsed.elements.empty());
    EXPECT_EQ(parsed.elements.front().name, "SnapList");

    SnapshotOptions foreign = normal;
    foreign.hostile.foreignRoot = true;
    const ParseResult foreignParsed = ParseXml(MakeSnapshot(foreign));
    EXPECT_EQ(foreignParsed.error, XML_ERROR_NONE);
    ASSERT_FALSE(foreignParsed.elements.empty());
    EXPECT_NE(foreignParsed.elements.front().name, "SnapList");

    for (const bool withOthers : {false, true}) {
        SnapshotOptions truncated = withOthers ? hostile : normal;
        truncated.hostile.truncatedEnd = true;
        const std::string text = MakeSnapshot(truncated);
        EXPECT_NE(ParseXml(text).error, XML_ERROR_NONE);
        // Everything before the cut is the well-formed list it would have been.
        truncated.hostile.truncatedEnd = false;
        const std::string whole = MakeSnapshot(truncated);
        std::size_t end = whole.rfind("</SnapList>");
        ASSERT_NE(end, std::string::npos);
        while (end > 0 && (whole[end - 1] == ' ' || whole[end - 1] == '\n'))
            --end;
        EXPECT_EQ(text.substr(0, end), whole.substr(0, end));
        EXPECT_GT(text.size(), end);
    }
}

TEST(SnapshotGenerator, NormalFileHoldsEveryElementAndAttributeOfTheFormat) {
    SnapshotOptions options;
    options.snapshots = 8;
    const ParseResult parsed = ParseXml(MakeSnapshot(options));
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);

    const std::set<std::pair<std::string, std::string>> allowed = {
        {"", "SnapList"},
        {"SnapList", "SnapShot"},
        {"SnapShot", "ZDTProject"},
        {"SnapShot", "VIT"},
        {"SnapShot", "LogicalLink"},
        {"SnapShot", "Service"},
        {"SnapShot", "BUS"},
        {"SnapShot", "ECUAddress"},
        {"LogicalLink", "Service"},
        {"LogicalLink", "ComPrimitive"},
        {"LogicalLink", "DTC"},
        {"LogicalLink", "Error"},
        {"Service", "ProcessValue"},
        {"ComPrimitive", "ProcessValue"},
        {"DTC", "ProcessValue"},
    };
    std::set<std::pair<std::string, std::string>> seen;
    std::set<std::string> attributes;
    bool valueWithoutUnit = false, emptyValue = false, snapshotWithoutCreated = false, bareSnapshot = false;
    for (const auto& e : parsed.elements) {
        seen.emplace(parsed.ParentName(e), e.name);
        for (const auto& [name, value] : e.attributes)
            attributes.insert(e.name + "@" + name);
        if (e.name == "ProcessValue") {
            valueWithoutUnit |= e.attributes.count("Unit") == 0;
            emptyValue |= e.text.empty();
        }
        if (e.name == "SnapShot") {
            snapshotWithoutCreated |= e.attributes.count("Created") == 0;
            bareSnapshot |= e.attributes.empty();
        }
    }
    // A normal file stays inside the tables, and uses every entry of them.
    EXPECT_EQ(seen, allowed);
    for (const char* attribute :
         {"SnapList@Created", "SnapShot@ShortName", "SnapShot@LongName", "SnapShot@Created", "LogicalLink@Name",
          "Service@Name", "ComPrimitive@Name", "DTC@Name", "Error@Name", "ProcessValue@Name", "ProcessValue@Unit"})
        EXPECT_EQ(attributes.count(attribute), 1u) << attribute;
    EXPECT_TRUE(valueWithoutUnit);
    EXPECT_TRUE(emptyValue);
    EXPECT_TRUE(snapshotWithoutCreated);
    EXPECT_TRUE(bareSnapshot);
}

// For a file inside the tables every row follows from one element, so the rows can be
// derived from the parse directly, independently of how the generator derives them.
TEST(SnapshotGenerator, RowsOfANormalFileMatchItsElements) {
    SnapshotOptions options;
    options.snapshots = 30;
    options.seed = 7;
    std::string xml;
    const Rows rows = Generate(options, &xml);
    const ParseResult parsed = ParseXml(xml);
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);

    std::vector<std::string> expected;
    for (const auto& [kind, index] : parsed.events) {
        const XmlElement& e = parsed.elements[index];
        auto attribute = [&e](const char* name) {
            const auto it = e.attributes.find(name);
            return it == e.attributes.end() ? std::string() : it->second;
        };
        auto row = [&expected](std::string flags, std::string event, std::string description, std::string name,
                               std::string value, std::string unit) {
            expected.push_back(flags + "|" + event + "|" + description + "|" + name + "|" + value + "|" + unit);
        };
        if (kind == '+') {
            if (e.name == "SnapShot")
                row("000", "Start SnapShot", "", "", "", "");
            else if (e.name == "LogicalLink")
                row("000", "Start LogicalLink", "", attribute("Name"), "", "");
            else if (e.name == "Service" || e.name == "ComPrimitive")
                row("000", e.name, attribute("Name"), "", "", "");
            else if (e.name == "DTC")
                row("000", "DTC", attribute("Name"), "", "", "");
            else if (e.name == "Error")
                row("003", "Error", attribute("Name"), "", "", "");
        } else {
            if (e.name == "SnapShot")
                row("000", "Stop SnapShot", "", "", "", "");
            else if (e.name == "LogicalLink")
                row("000", "Stop LogicalLink", "", attribute("Name"), "", "");
            else if (e.name == "ZDTProject")
                row("001", "Zdt Project", e.text, "", "", "");
            else if (e.name == "VIT")
                row("001", "VIT", e.text, "", "", "");
            else if (e.name == "ProcessValue")
                row("002", "", "ProcessValue", attribute("Name"), e.text, attribute("Unit"));
        }
    }
    // Snapshot descriptions depend on earlier snapshots; another test covers them.
    std::vector<std::string> actual;
    for (const auto& row : rows.rows) {
        ASSERT_EQ(row.size(), 6u);
        const bool snapshotRow = row[1] == "Start SnapShot" || row[1] == "Stop SnapShot";
        actual.push_back(row[0] + "|" + row[1] + "|" + (snapshotRow ? "" : row[2]) + "|" + row[3] + "|" + row[4] + "|" +
                         row[5]);
    }
    EXPECT_EQ(actual, expected);
    EXPECT_EQ(rows.summary.rows, rows.rows.size());
    EXPECT_EQ(rows.dateTime, "14:05:09,21.11.2023");
}

TEST(SnapshotGenerator, SnapshotDescriptionsFollowTheSlots) {
    SnapshotOptions options;
    options.snapshots = 24;
    const Rows rows = Generate(options);
    std::vector<std::string> starts, stops;
    for (const auto& row : rows.rows) {
        if (row[1] == "Start SnapShot")
            starts.push_back(row[2]);
        if (row[1] == "Stop SnapShot")
            stops.push_back(row[2]);
    }
    ASSERT_EQ(starts.size(), 24u);
    EXPECT_EQ(starts, stops);
    // The first snapshot has no "Created" of its own and shows the list's.
    EXPECT_EQ(starts[0], "SNAP0 Workshop snapshot 0 [ 14:05:09,21.11.2023 ]");
    // The sixth has no attributes at all.
    EXPECT_EQ(starts[5], "");
    // Later snapshots without "Created" have no brackets.
    const auto noBrackets = std::count_if(starts.begin() + 1, starts.end(), [](const std::string& text) {
        return !text.empty() && text.find('[') == std::string::npos;
    });
    EXPECT_GT(noBrackets, 0);

    options.listCreated.reset();
    const Rows withoutListCreated = Generate(options);
    EXPECT_EQ(withoutListCreated.rows[0][2], "SNAP0 Workshop snapshot 0");
    EXPECT_EQ(withoutListCreated.dateTime, "");
}

TEST(SnapshotGenerator, UnknownElementsAndMisplacedNamesGiveNoRows) {
    std::string xml;
    const Rows rows = Generate(Hostile([](SnapshotHostile& h) { h.unknownElements = true; }), &xml);
    const ParseResult parsed = ParseXml(xml);
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    for (const char* name :
         {"HiddenInUnknown", "HiddenService", "HiddenPrimitive", "HiddenLink", "HiddenSnap", "NotHere", "NotUnderLink",
          "NestedLink", "PrefixedService", "LowerCaseService", "UnderError", "Hidden"}) {
        EXPECT_NE(xml.find(std::string("\"") + name + "\""), std::string::npos) << name;
        EXPECT_FALSE(AnyRowMentions(rows, name)) << name;
    }
    std::set<std::string> parentsOfUnknown;
    for (const auto& e : parsed.elements)
        if (e.name == "VendorData" || e.name == "Diagnostics" || e.name == "Header")
            parentsOfUnknown.insert(parsed.ParentName(e));
    EXPECT_EQ(parentsOfUnknown, (std::set<std::string>{"SnapList", "SnapShot", "LogicalLink"}));
    // The rows of the normal content are still all there.
    SnapshotOptions plain = Hostile([](SnapshotHostile&) {});
    EXPECT_EQ(rows.rows, Generate(plain).rows);
}

TEST(SnapshotGenerator, CatchAllChildrenBecomeProcessValues) {
    std::string xml;
    const Rows rows = Generate(Hostile([](SnapshotHostile& h) { h.catchAllChildren = true; }), &xml);
    ASSERT_EQ(ParseXml(xml).error, XML_ERROR_NONE);
    for (const char* parent : {"Service", "ComPrimitive", "DTC"}) {
        const auto* row = FindRowNamed(rows, std::string("CatchAll") + parent);
        ASSERT_NE(row, nullptr) << parent;
        EXPECT_EQ((*row)[0], "002");
        EXPECT_EQ((*row)[1], "");
        EXPECT_EQ((*row)[2], "ProcessValue");
        EXPECT_EQ((*row)[4], "2.5");
        EXPECT_EQ((*row)[5], "bar");
    }
    ASSERT_NE(FindRowNamed(rows, "ServiceAsValue"), nullptr);
    EXPECT_EQ((*FindRowNamed(rows, "DtcAsValue"))[5], "km");
    // Only the value's own text counts, not that of its children.
    EXPECT_EQ((*FindRowNamed(rows, "GroupValue"))[4], "ab");
    EXPECT_FALSE(AnyRowMentions(rows, "InnerValue"));
    // A lower-case "name" is no "Name".
    bool nameless = false;
    for (const auto& row : rows.rows)
        nameless |= row[3].empty() && row[4] == "nameless";
    EXPECT_TRUE(nameless);
}

TEST(SnapshotGenerator, SplitTextComesInPiecesAndJoinsWhole) {
    std::string xml;
    const Rows rows = Generate(Hostile([](SnapshotHostile& h) { h.splitText = true; }, 6), &xml);
    const ParseResult parsed = ParseXml(xml);
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    EXPECT_NE(xml.find("<![CDATA["), std::string::npos);
    EXPECT_NE(xml.find("&#x"), std::string::npos);
    EXPECT_NE(xml.find("<!--split-->"), std::string::npos);
    int splitValues = 0;
    for (const auto& e : parsed.elements) {
        if (e.name == "ProcessValue" && e.attributes.at("Name") == "SplitValue") {
            ++splitValues;
            EXPECT_GT(e.textCallbacks, 2);
            EXPECT_EQ(e.text.rfind("12\n34 & \"x\" <y> 'z' ]]x\r\n", 0), 0u);
        }
        if (e.name == "ZDTProject") {
            EXPECT_GT(e.textCallbacks, 1);
        }
    }
    EXPECT_GT(splitValues, 0);
    const auto* row = FindRowNamed(rows, "SplitValue");
    ASSERT_NE(row, nullptr);
    // Line breaks and the carriage return are dropped and the pieces close up.
    EXPECT_EQ((*row)[4].rfind("1234 & \"x\" <y> 'z' ]]x", 0), 0u);
    EXPECT_EQ((*row)[5], "A&B");
    for (const auto& r : rows.rows)
        if (r[1] == "Zdt Project") {
            EXPECT_NE(r[2].find("  second line"), std::string::npos);
        }
}

TEST(SnapshotGenerator, ControlCharactersReachTheParserAndLeaveNoTraceInRows) {
    std::string xml;
    const Rows rows = Generate(Hostile([](SnapshotHostile& h) { h.controlChars = true; }, 6), &xml);
    const ParseResult parsed = ParseXml(xml);
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    bool tabInName = false, carriageReturnInText = false, deleteInLink = false;
    for (const auto& e : parsed.elements) {
        const auto name = e.attributes.find("Name");
        if (name == e.attributes.end())
            continue;
        tabInName |= name->second.find('\t') != std::string::npos;
        carriageReturnInText |= e.text.find('\r') != std::string::npos;
        deleteInLink |= e.name == "LogicalLink" && name->second.find('\x7F') != std::string::npos;
    }
    EXPECT_TRUE(tabInName);
    EXPECT_TRUE(carriageReturnInText);
    EXPECT_TRUE(deleteInLink);
    for (const auto& row : rows.rows) {
        ASSERT_EQ(row.size(), 6u);
        for (const auto& column : row)
            for (const char c : column)
                EXPECT_TRUE(static_cast<unsigned char>(c) >= 0x20 && c != '\x7F');
    }
    const auto* speed = FindRowNamed(rows, "EngineSpeed");
    ASSERT_NE(speed, nullptr);
    bool controlSpeed = false, emptyName = false;
    for (const auto& row : rows.rows) {
        controlSpeed |= row[3] == "EngineSpeed" && row[4] == "812.5" && row[5] == "rpm";
        emptyName |= row[3].empty() && row[4] == "control-only name";
    }
    EXPECT_TRUE(controlSpeed);
    EXPECT_TRUE(emptyName);
}

TEST(SnapshotGenerator, NonAsciiNamesSurviveAsUtf8) {
    std::string xml;
    const Rows rows = Generate(Hostile([](SnapshotHostile& h) { h.nonAscii = true; }, 6), &xml);
    const ParseResult parsed = ParseXml(xml); // Expat checks that every byte sequence is UTF-8
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    const bool unknownNonAsciiElement = std::any_of(parsed.elements.begin(), parsed.elements.end(),
                                                    [](const XmlElement& e) { return e.name == "Prüfstand"; });
    EXPECT_TRUE(unknownNonAsciiElement);
    ASSERT_NE(FindRowNamed(rows, "温度センサー"), nullptr);
    EXPECT_EQ((*FindRowNamed(rows, "温度センサー"))[4], "4.7k \xF0\x9F\x9A\x97 ready");
    EXPECT_EQ((*FindRowNamed(rows, "Öltemperatur"))[5], "°C");
    // C1 controls are bytes from 0x80 up and stay.
    EXPECT_NE(FindRowNamed(rows, "C1\xC2\x85"
                                 "control"),
              nullptr);
    EXPECT_FALSE(AnyRowMentions(rows, "Straße"));
}

TEST(SnapshotGenerator, HugeAttributesAndDeepNesting) {
    std::string xml;
    SnapshotOptions options = Hostile([](SnapshotHostile& h) { h.hugeAttributes = h.deepNesting = true; }, 130);
    const Rows rows = Generate(options, &xml);
    const ParseResult parsed = ParseXml(xml);
    ASSERT_EQ(parsed.error, XML_ERROR_NONE);
    std::size_t huge = 0;
    for (const auto& e : parsed.elements)
        for (const auto& [name, value] : e.attributes)
            if (value.size() == options.hostile.hugeAttributeBytes)
                ++huge;
    EXPECT_EQ(huge, 3u); // snapshots 0, 64 and 128
    std::size_t hugeRows = 0;
    for (const auto& row : rows.rows)
        hugeRows += row[3].size() == options.hostile.hugeAttributeBytes && row[4] == "huge name";
    EXPECT_EQ(hugeRows, 3u);

    EXPECT_GT(parsed.maxDepth, static_cast<int>(options.hostile.nestingDepth));
    EXPECT_FALSE(AnyRowMentions(rows, "DeepHiddenService"));
    EXPECT_EQ((*FindRowNamed(rows, "DeepTreeValue"))[4], "topend");
}

TEST(SnapshotGenerator, TruncatedFileHasNoRowsAndForeignFileNone) {
    SnapshotOptions truncated;
    truncated.hostile.truncatedEnd = true;
    std::ostringstream out, rows;
    const SnapshotSummary summary = WriteSnapshotWithRows(out, &rows, truncated);
    EXPECT_FALSE(summary.rowsKnown);
    EXPECT_EQ(rows.str(), "");
    EXPECT_EQ(summary.bytes, out.str().size());

    std::string xml;
    SnapshotOptions foreign;
    foreign.hostile.foreignRoot = true;
    const Rows foreignRows = Generate(foreign, &xml);
    EXPECT_TRUE(foreignRows.summary.rowsKnown);
    EXPECT_TRUE(foreignRows.rows.empty());
    EXPECT_EQ(foreignRows.raw, "#DateTime\t\n");
    EXPECT_NE(xml.find("<SnapList"), std::string::npos);
    EXPECT_NE(xml.find("<SnapShot"), std::string::npos);
}

TEST(SnapshotGenerator, SizesAndCounts) {
    SnapshotOptions counted;
    counted.snapshots = 17;
    std::ostringstream out;
    const SnapshotSummary summary = WriteSnapshotWithRows(out, nullptr, counted);
    const ParseResult parsed = ParseXml(out.str());
    const auto snapshots = std::count_if(parsed.elements.begin(), parsed.elements.end(),
                                         [](const XmlElement& e) { return e.name == "SnapShot"; });
    EXPECT_EQ(snapshots, 17);
    EXPECT_EQ(summary.snapshots, 17u);
    EXPECT_EQ(summary.bytes, out.str().size());

    for (const std::uint64_t target : {1000ull, 300000ull, 3000000ull}) {
        SnapshotOptions sized;
        sized.snapshots = 1; // the byte target wins
        sized.targetBytes = target;
        sized.hostile = SnapshotHostile::InFileKinds();
        sized.hostile.hugeAttributeBytes = 2000;
        sized.hostile.nestingDepth = 40;
        const std::string text = MakeSnapshot(sized);
        EXPECT_GE(text.size(), target);
        EXPECT_LT(text.size(), target + 40000) << "one snapshot past the target at most";
        EXPECT_EQ(ParseXml(text).error, XML_ERROR_NONE);
    }

    // A large file streams: the output grows in blocks, not in one piece at the end.
    class CountingBuffer : public std::streambuf {
    public:
        std::uint64_t bytes = 0;
        int writes = 0;

    protected:
        std::streamsize xsputn(const char*, std::streamsize count) override {
            bytes += static_cast<std::uint64_t>(count);
            ++writes;
            return count;
        }
        int overflow(int c) override {
            ++bytes;
            return c;
        }
    } counter;
    std::ostream sink(&counter);
    SnapshotOptions big;
    big.targetBytes = 20u << 20;
    const SnapshotSummary bigSummary = WriteSnapshotWithRows(sink, nullptr, big);
    EXPECT_EQ(counter.bytes, bigSummary.bytes);
    EXPECT_GE(counter.bytes, big.targetBytes);
    EXPECT_GE(counter.writes, 20);
}

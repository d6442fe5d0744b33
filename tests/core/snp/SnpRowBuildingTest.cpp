#include "SnapshotGenerator.h"
#include "snp/SnpDoc.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;

// Collects boxes so a test can check what the user would see.
class Boxes final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { texts.push_back(message.text); }
    bool askYesNo(const zdt::UserMessage&) override { return false; }
    std::vector<std::string> texts;
};

// A row as the generator's side file writes it: the columns joined by tabs.
std::string rowAsLine(SnpDoc& doc, int row) {
    const std::string stored = doc.container().readRow(row);
    std::string line;
    std::size_t start = 0;
    for (std::size_t end; (end = stored.find('\x01', start)) != std::string::npos; start = end + 1) {
        if (start != 0)
            line += '\t';
        line.append(stored, start, end - start);
    }
    return line;
}

std::vector<std::string> allRows(SnpDoc& doc) {
    std::vector<std::string> rows;
    for (int row = 0; row < doc.container().rowCount(); ++row)
        rows.push_back(rowAsLine(doc, row));
    return rows;
}

struct Expected {
    std::string dateTime;
    std::vector<std::string> rows;
};

Expected parseSideFile(const std::string& text) {
    Expected expected;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("#DateTime\t", 0) == 0)
            expected.dateTime = line.substr(10);
        else
            expected.rows.push_back(line);
    }
    return expected;
}

// Opens `xml` written into `dir` as the application does.
bool openXml(SnpDoc& doc, const TempDir& dir, const std::string& xml, Boxes* boxes = nullptr) {
    return doc.OnOpenDocument(dir.Write("t.snp", xml), dir.Path().string() + "/", boxes);
}

void expectMatchesGenerator(const zdtgen::SnapshotOptions& options) {
    TempDir dir;
    std::ostringstream xml, side;
    const zdtgen::SnapshotSummary summary = zdtgen::WriteSnapshotWithRows(xml, &side, options);
    ASSERT_TRUE(summary.rowsKnown);
    const Expected expected = parseSideFile(side.str());
    SnpDoc doc;
    Boxes boxes;
    ASSERT_TRUE(openXml(doc, dir, xml.str(), &boxes)) << (boxes.texts.empty() ? "" : boxes.texts[0]);
    EXPECT_EQ(doc.getDescription()->dateTime(), expected.dateTime);
    const std::vector<std::string> rows = allRows(doc);
    ASSERT_EQ(rows.size(), expected.rows.size());
    EXPECT_EQ(rows.size(), summary.rows);
    for (std::size_t i = 0; i < rows.size(); ++i)
        ASSERT_EQ(rows[i], expected.rows[i]) << "row " << i;
}

TEST(SnpRowBuilding, MatchesGeneratorOnPlainAndHostileFiles) {
    zdtgen::SnapshotOptions plain;
    plain.snapshots = 20;
    expectMatchesGenerator(plain);

    zdtgen::SnapshotOptions compact = plain;
    compact.indent = false;
    compact.listCreated.reset();
    compact.seed = 5;
    expectMatchesGenerator(compact);

    for (std::uint64_t seed : {2u, 9u, 31u}) {
        zdtgen::SnapshotOptions hostile;
        hostile.seed = seed;
        hostile.snapshots = 12;
        hostile.hostile = zdtgen::SnapshotHostile::InFileKinds();
        hostile.hostile.hugeAttributeBytes = 30000; // crosses several read blocks
        hostile.hostile.nestingDepth = 260;         // deeper than the first stack
        SCOPED_TRACE(seed);
        expectMatchesGenerator(hostile);
    }
}

// Hand-made cases where the nesting tables, not the element names, decide.
TEST(SnpRowBuilding, NestingAndSlotRules) {
    TempDir dir;
    SnpDoc doc;
    ASSERT_TRUE(openXml(doc, dir,
                        "<SnapList Created='t,d'>"
                        "<SnapShot ShortName='A'>"
                        "<Service Name='S'><Foo Name='F' Unit='u'>v<![CDATA[1]]>&#10;2</Foo></Service>"
                        "<ComPrimitive Name='NotHere'/>"
                        "<LogicalLink Name='L'><Foo><Service Name='Hidden'/></Foo>"
                        "<Error Name='E'><ProcessValue Name='Skipped'>x</ProcessValue></Error>"
                        "<DTC Name='D'/></LogicalLink>"
                        "<BUS>bus text</BUS></SnapShot>"
                        "<SnapShot LongName='Second'/><SnapShot/>"
                        "</SnapList>"));
    const std::vector<std::string> expected = {
        "000\tStart SnapShot\tA [ t,d ]\t\t\t", // the list's Created survives into the first snapshot
        "000\tService\tS\t\t\t",
        "002\t\tProcessValue\tF\tv12\tu", // any child of a service is a value; the line feed is dropped
        "000\tStart LogicalLink\t\tL\t\t",
        "003\tError\tE\t\t\t",
        "000\tDTC\tD\t\t\t",
        "000\tStop LogicalLink\t\tL\t\t",
        "000\tStop SnapShot\tA [ t,d ]\t\t\t",
        "000\tStart SnapShot\t Second\t\t\t",
        "000\tStop SnapShot\t Second\t\t\t",
        "000\tStart SnapShot\t\t\t\t",
        "000\tStop SnapShot\t\t\t\t",
    };
    EXPECT_EQ(allRows(doc), expected);
    EXPECT_EQ(doc.sessionInformation().time, "t");
    EXPECT_EQ(doc.sessionInformation().date, "d");
}

TEST(SnpRowBuilding, SessionInformationSplitsAtFirstComma) {
    TempDir dir;
    SnpDoc withTwo, withNone, empty;
    ASSERT_TRUE(openXml(withTwo, dir, "<SnapList Created='14:05:09,21.11.2023,x'/>"));
    EXPECT_EQ(withTwo.sessionInformation().time, "14:05:09");
    EXPECT_EQ(withTwo.sessionInformation().date, "21.11.2023,x");
    ASSERT_TRUE(openXml(withNone, dir, "<SnapList Created='only date'/>"));
    EXPECT_EQ(withNone.sessionInformation().time, "");
    EXPECT_EQ(withNone.sessionInformation().date, "only date");
    ASSERT_TRUE(openXml(empty, dir, ""));
    EXPECT_EQ(empty.container().rowCount(), 0);
    EXPECT_EQ(empty.sessionInformation().date, "");
    EXPECT_EQ(empty.sessionInformation().fileName, dir.File("t.snp"));

    Boxes boxes;
    empty.showSessionInformation(&boxes, [](const auto&) { throw 1; });
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"Fatal unknown error occured."});
}

TEST(SnpOpen, FailuresShowTheirMessageAndOpenNothing) {
    TempDir dir;
    struct Case {
        std::string xml;
        std::string message;
    };
    const Case cases[] = {
        {"<SnapList><SnapShot ShortName='A'>", "XML error: 1 no element found"},
        {"<SnapList><SnapShot ShortName='A", "XML error: 1 unclosed token"},
        {"<SnapList>\n<a></b></SnapList>", "XML error: 2 mismatched tag"},
    };
    for (const Case& c : cases) {
        SnpDoc doc;
        Boxes boxes;
        EXPECT_FALSE(openXml(doc, dir, c.xml, &boxes));
        ASSERT_EQ(boxes.texts.size(), 1u);
        EXPECT_EQ(boxes.texts[0].substr(0, c.message.size()), c.message) << boxes.texts[0];
    }
    SnpDoc missing;
    Boxes boxes;
    EXPECT_FALSE(missing.OnOpenDocument(dir.File("none.snp"), dir.Path().string() + "/", &boxes));
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"Could not open input xml file."});

    SnpDoc noSwap;
    boxes.texts.clear();
    EXPECT_FALSE(noSwap.OnOpenDocument(dir.Write("a.snp", "<SnapList/>"),
                                       dir.Write("blocker", "a file, not a directory") + "/sub/", &boxes));
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"Could not open file."});

    // A foreign root is well-formed: an empty list and no message.
    SnpDoc foreign;
    boxes.texts.clear();
    EXPECT_TRUE(openXml(foreign, dir, "<SnapArchive><SnapList><SnapShot/></SnapList></SnapArchive>", &boxes));
    EXPECT_EQ(foreign.container().rowCount(), 0);
    EXPECT_TRUE(boxes.texts.empty());
}

class CancelAfter final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long done, unsigned long long total) override {
        lastTotal = total;
        return ++calls < 2 && done > 0;
    }
    int calls = 0;
    unsigned long long lastTotal = 0;
};

TEST(SnpOpen, CancelledOpenFailsSilentlyAndLeavesNoSwapFile) {
    TempDir dir;
    zdtgen::SnapshotOptions options;
    options.targetBytes = 200000;
    const std::string path = dir.Write("big.snp", zdtgen::MakeSnapshot(options));
    const std::string swapDir = dir.Path().string() + "/swap/";
    std::filesystem::create_directory(swapDir);
    {
        SnpDoc doc;
        Boxes boxes;
        CancelAfter cancel;
        EXPECT_FALSE(doc.OnOpenDocument(path, swapDir, &boxes, &cancel));
        EXPECT_TRUE(boxes.texts.empty());
        EXPECT_EQ(cancel.calls, 2);
        EXPECT_EQ(cancel.lastTotal, std::filesystem::file_size(path));
    }
    EXPECT_TRUE(std::filesystem::is_empty(swapDir));
}

} // namespace

#include "SnapshotGenerator.h"
#include "snp/SnpDoc.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;

class Boxes final : public zdt::MessageSink {
public:
    void showMessage(const zdt::UserMessage& message) override { texts.push_back(message.text); }
    bool askYesNo(const zdt::UserMessage&) override { return false; }
    std::vector<std::string> texts;
};

std::string column(SnpDoc& doc, int row, int index) {
    return doc.container().columnText(row, index);
}

// The rows the search marked, found independently from the rows the display pass
// wrote: a row is expected when its columns hold the criterion in the right field.
std::vector<int> expectedByColumns(SnpDoc& doc, const std::string& event, int columnIndex, const std::string& text) {
    std::vector<int> rows;
    for (int row = 0; row < doc.container().rowCount(); ++row)
        if (column(doc, row, 1) == event && column(doc, row, columnIndex).find(text) != std::string::npos)
            rows.push_back(row);
    return rows;
}

struct Opened {
    TempDir dir;
    SnpDoc doc;
    explicit Opened(const std::string& xml) {
        if (!doc.OnOpenDocument(dir.Write("t.snp", xml), dir.Path().string() + "/", nullptr))
            throw std::runtime_error("open failed");
    }
};

std::string hostileFile(std::uint64_t seed) {
    zdtgen::SnapshotOptions options;
    options.seed = seed;
    options.snapshots = 16;
    options.hostile = zdtgen::SnapshotHostile::InFileKinds();
    options.hostile.hugeAttributeBytes = 20000;
    options.hostile.nestingDepth = 220;
    return zdtgen::MakeSnapshot(options);
}

// The two passes must count rows identically, or every mark after the first
// difference lands on the wrong row; hostile files exercise every nesting rule.
TEST(SnpSearch, MarksTheRowsTheDisplayPassMade) {
    for (std::uint64_t seed : {1u, 2u, 7u}) {
        SCOPED_TRACE(seed);
        Opened file(hostileFile(seed));
        SnpDoc& doc = file.doc;

        SnpFindCriteria services;
        services.searchService = services.serviceNameOn = true; // empty text: every service
        ASSERT_TRUE(doc.find(services, nullptr));
        EXPECT_EQ(doc.findResults(), expectedByColumns(doc, "Service", 2, ""));
        EXPECT_FALSE(doc.findResults().empty());

        SnpFindCriteria values;
        values.searchProcessValue = values.valueNameOn = true;
        ASSERT_TRUE(doc.find(values, nullptr));
        EXPECT_EQ(doc.findResults(), expectedByColumns(doc, "", 2, "ProcessValue"));
        EXPECT_TRUE(doc.findResultsSorted());

        SnpFindCriteria links;
        links.searchLogicalLink = links.linkNameOn = true;
        ASSERT_TRUE(doc.find(links, nullptr));
        std::vector<int> both = expectedByColumns(doc, "Start LogicalLink", 3, "");
        const std::vector<int> stops = expectedByColumns(doc, "Stop LogicalLink", 3, "");
        both.insert(both.end(), stops.begin(), stops.end());
        std::sort(both.begin(), both.end());
        EXPECT_EQ(doc.findResults(), both);

        SnpFindCriteria dtcs;
        dtcs.searchDtc = dtcs.dtcValueOn = true;
        ASSERT_TRUE(doc.find(dtcs, nullptr));
        EXPECT_EQ(doc.findResults(), expectedByColumns(doc, "DTC", 2, ""));
        for (int row : doc.findResults())
            EXPECT_EQ(doc.container().readRow(row)[0], '1');
    }
}

TEST(SnpSearch, FieldsAlternativesAndCase) {
    Opened file("<SnapList Created='c'>"
                "<SnapShot ShortName='Alpha' LongName='Beta' Created='Gamma'>"
                "<ZDTProject>Alpha</ZDTProject><VIT>Alpha</VIT>"
                "<LogicalLink Name='Link'><Error Name='Alpha'/>"
                "<Service Name='Read'><ProcessValue Name='Speed' Unit='km/h'>1&#9;2</ProcessValue></Service>"
                "<ComPrimitive Name='Read'/></LogicalLink>"
                "</SnapShot></SnapList>");
    // Rows: 0 start, 1 project, 2 VIT, 3 link start, 4 error, 5 service, 6 value,
    // 7 primitive, 8 link stop, 9 snapshot stop.
    SnpDoc& doc = file.doc;
    ASSERT_EQ(doc.container().rowCount(), 10);

    SnpFindCriteria c;
    c.searchSnapShot = c.longNameOn = true;
    c.longName = "Beta";
    c.shortNameOn = true;
    c.shortName = "nothing";
    ASSERT_TRUE(doc.find(c, nullptr));
    EXPECT_EQ(doc.findResults(), (std::vector<int>{0, 9})); // start and stop; never project, VIT or error

    c.longName = "beta"; // another case does not match
    ASSERT_TRUE(doc.find(c, nullptr));
    EXPECT_TRUE(doc.findResults().empty());
    EXPECT_EQ(doc.container().readRow(0)[0], '0'); // the last search's marks are gone

    SnpFindCriteria groupOnly; // a kind without any field flag marks nothing
    groupOnly.searchSnapShot = groupOnly.searchService = groupOnly.searchProcessValue = true;
    ASSERT_TRUE(doc.find(groupOnly, nullptr));
    EXPECT_TRUE(doc.findResults().empty());

    SnpFindCriteria read; // the service's name is not the primitive's
    read.searchComPrimitive = read.comPrimitiveNameOn = true;
    read.comPrimitiveName = "Read";
    ASSERT_TRUE(doc.find(read, nullptr));
    EXPECT_EQ(doc.findResults(), std::vector<int>{7});

    SnpFindCriteria text; // the tab was removed before the comparison
    text.searchProcessValue = text.valueTextOn = true;
    text.valueText = "12";
    ASSERT_TRUE(doc.find(text, nullptr));
    EXPECT_EQ(doc.findResults(), std::vector<int>{6});
    text.valueTextOn = false;
    text.valueUnitOn = true;
    text.valueUnit = "km";
    ASSERT_TRUE(doc.find(text, nullptr));
    EXPECT_EQ(doc.findResults(), std::vector<int>{6});
}

TEST(SnpSearch, FailuresKeepEarlierMarksAndShowTheirMessage) {
    TempDir dir;
    const std::string path =
        dir.Write("t.snp", "<SnapList><SnapShot ShortName='A'/><SnapShot ShortName='A'/></SnapList>");
    SnpDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(path, dir.Path().string() + "/", nullptr));
    int updates = 0;
    doc.setUpdateListener([&] { ++updates; });

    SnpFindCriteria c;
    c.searchSnapShot = c.shortNameOn = true;
    Boxes boxes;
    dir.Write("t.snp", "<SnapList><SnapShot ShortName='A'/><Snap");
    EXPECT_FALSE(doc.find(c, &boxes));
    ASSERT_EQ(boxes.texts.size(), 1u);
    EXPECT_EQ(boxes.texts[0].rfind("XML error: 1 ", 0), 0u) << boxes.texts[0];
    EXPECT_EQ(doc.findResults(), (std::vector<int>{0, 1}));

    std::filesystem::remove(path);
    boxes.texts.clear();
    EXPECT_FALSE(doc.find(c, &boxes));
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"Could not open input xml file."});
    EXPECT_TRUE(doc.findResults().empty());

    // The file grew after the open: a mark past the last row stops the search.
    dir.Write("t.snp", "<SnapList><SnapShot ShortName='A'/><SnapShot ShortName='A'/><SnapShot ShortName='A'/>"
                       "</SnapList>");
    boxes.texts.clear();
    EXPECT_FALSE(doc.find(c, &boxes));
    EXPECT_EQ(boxes.texts, std::vector<std::string>{"element with index not in this container"});
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(doc.container().readRow(row)[0], '1') << row;
    EXPECT_EQ(updates, 0); // views are told only after a search that ended well
}

TEST(SnpGoTo, MessagesAndWrap) {
    Opened file("<SnapList><SnapShot ShortName='A'/><SnapShot ShortName='B'/><SnapShot ShortName='A'/></SnapList>");
    SnpDoc& doc = file.doc;
    Boxes boxes;
    using G = SnpDoc::GoToCommand;
    EXPECT_FALSE(doc.goTo(G::FindNext, -1, 6, &boxes));
    EXPECT_FALSE(doc.goTo(G::FindPrevious, 0, 6, &boxes));
    EXPECT_FALSE(doc.goTo(G::PreviousBookmark, 0, 6, &boxes));
    EXPECT_FALSE(doc.goTo(G::NextBookmark, 0, 6, &boxes));
    EXPECT_EQ(boxes.texts, (std::vector<std::string>{"No row selected. Please select a row.",
                                                     "No find results. Can't go next find result.",
                                                     "No bookmarks are set. Can't go back bookmark.",
                                                     "No bookmarks are set. Can't go next bookmark."}));
    SnpFindCriteria c;
    c.searchSnapShot = c.shortNameOn = true;
    c.shortName = "A";
    ASSERT_TRUE(doc.find(c, nullptr));
    ASSERT_EQ(doc.findResults(), (std::vector<int>{0, 1, 4, 5}));
    EXPECT_EQ(doc.goTo(G::FindNext, 1, 6, nullptr), 4);
    EXPECT_EQ(doc.goTo(G::FindNext, 5, 6, nullptr), 0);
    EXPECT_EQ(doc.goTo(G::FindPrevious, 0, 6, nullptr), 5);
    EXPECT_EQ(doc.goTo(G::FindNext, 3, 4, nullptr), std::nullopt); // row 4 lies outside a list of 4
    doc.addBookmark(2, "b", "d");
    EXPECT_EQ(doc.goTo(G::NextBookmark, 2, 6, nullptr), 2);
}

} // namespace

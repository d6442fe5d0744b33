#include "XpvtTestFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace ZDTAnalyzer;
using xpvttest::OpenedTrace;
using xpvttest::xpvtFile;

int swapFilesIn(const std::string& directory) {
    int count = 0;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(directory, ignored))
        count += entry.path().extension() == ".fc" ? 1 : 0;
    return count;
}

// --- the header and the schema ----------------------------------------------------------

TEST(XpvtDocSchema, OnlyTheExactCommaSpellingIsSchema702) {
    struct Case {
        std::string schemaElement;
        bool is702;
        std::string stored;
    };
    const std::vector<Case> cases = {
        {"<Schema>7,02</Schema>", true, "7,02"},
        {"<Schema>7.02</Schema>", false, "7.02"},
        {"<Schema>7,02 </Schema>", false, "7,02 "},
        // Line breaks and tabs never reach the header: the filter removes them.
        {"<Schema>7,02\n</Schema>", true, "7,02"},
        {"<Schema>\t7,0<!-- split -->2</Schema>", true, "7,02"},
        {"<Schema>7,01</Schema>", false, "7,01"},
        {"<Schema></Schema>", false, ""},
        {"", false, ""},
    };
    for (const Case& c : cases) {
        OpenedTrace trace(xpvtFile(c.schemaElement, ""));
        ASSERT_TRUE(trace.opened) << c.schemaElement;
        EXPECT_EQ(trace.doc.is702(), c.is702) << c.schemaElement;
        EXPECT_EQ(trace.doc.description().Schema, c.stored) << c.schemaElement;
    }
}

TEST(XpvtDocSchema, HeaderFieldsComeFromTheirSlotsAndDateTimeSplitsAtTheFirstT) {
    const std::string description = R"(<Title>Session
 one</Title><Schema>7.01</Schema><ProductVersion>7.1</ProductVersion>
<Date>D:</Date><Time>T:</Time><Author>Ann</Author><Comment>c</Comment>
<Project ShortName="PA"><ShortName>PB</ShortName>
  <VehicleInformationTable ShortName="VA"><ShortName>VB</ShortName>
    <LogicalLink><ShortName>LL</ShortName><DatabaseAccessKey>DAK</DatabaseAccessKey></LogicalLink>
  </VehicleInformationTable>
</Project>)";
    OpenedTrace trace(xpvtFile(description, "", " DateTime=\"2024-05-06T07:08T09\""));
    ASSERT_TRUE(trace.opened);
    const XpvtDoc::Description& d = trace.doc.description();
    EXPECT_EQ(d.Title, "Session one");
    EXPECT_EQ(d.Schema, "7.01");
    EXPECT_EQ(d.ProductVersion, "7.1");
    EXPECT_EQ(d.Date, "D:2024-05-06");
    EXPECT_EQ(d.Time, "T:07:08T09");
    EXPECT_EQ(d.Author, "Ann");
    EXPECT_EQ(d.Comment, "c");
    EXPECT_EQ(d.Project, "PAPB");
    EXPECT_EQ(d.VehicleInformationTable, "VAVB");
    EXPECT_EQ(d.DateTime, "2024-05-06T07:08T09");
    EXPECT_EQ(d.LogicalLink, "LL");
    EXPECT_EQ(d.DatabaseAccessKey, "DAK");
    EXPECT_FALSE(trace.doc.is702());
}

TEST(XpvtDocSchema, DateTimeWithoutTGoesWholeIntoTime) {
    OpenedTrace noT(xpvtFile("<Date>d</Date>", "", " DateTime=\"12:00\""));
    EXPECT_EQ(noT.doc.description().Date, "d");
    EXPECT_EQ(noT.doc.description().Time, "12:00");
    OpenedTrace leadingT(xpvtFile("", "", " DateTime=\"T1\""));
    EXPECT_EQ(leadingT.doc.description().Date, "");
    EXPECT_EQ(leadingT.doc.description().Time, "1");
    OpenedTrace none(xpvtFile("<Time>t</Time>", ""));
    EXPECT_EQ(none.doc.description().Time, "t");
    EXPECT_EQ(none.doc.description().DateTime, "");
}

TEST(XpvtDocSchema, SetFieldTakesTheTwelveNamesExactlyAndIgnoresOthers) {
    XpvtDoc doc;
    BaseDoc::Description* description = doc.getDescription();
    ASSERT_NE(description, nullptr);
    const std::vector<std::string> names = {
        "Title",   "Schema",  "ProductVersion",          "Date",     "Time",        "Author",
        "Comment", "Project", "VehicleInformationTable", "DateTime", "LogicalLink", "DatabaseAccessKey"};
    for (const std::string& name : names)
        description->setField(name, "v-" + name);
    description->setField("title", "x");
    description->setField("Schema ", "x");
    description->setField("", "x");
    const XpvtDoc::Description& d = doc.description();
    const std::vector<std::string> values = {
        d.Title,   d.Schema,  d.ProductVersion,          d.Date,     d.Time,        d.Author,
        d.Comment, d.Project, d.VehicleInformationTable, d.DateTime, d.LogicalLink, d.DatabaseAccessKey};
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(values[i], "v-" + names[i]);
    // The schema counts from the end of the header on, which a parse publishes (see the
    // open cases above): a window may ask while the read is still writing the description.
    description->setField("Schema", "7,02");
    EXPECT_EQ(d.Schema, "7,02");
    EXPECT_FALSE(doc.is702());
}

TEST(XpvtDocSchema, ASchema702HeaderSwitchesRowsAndSearchToThe702Tables) {
    // A 7.01 result is no child of a 7.02 trace: it only makes a row on the 7.01 tables.
    const std::string body = "<ZdtResult><LogicalLink><ShortName>L</ShortName></LogicalLink></ZdtResult>";
    OpenedTrace as701(xpvtFile("<Schema>7.02</Schema>", body));
    OpenedTrace as702(xpvtFile("<Schema>7,02</Schema>", body));
    ASSERT_TRUE(as701.opened);
    ASSERT_TRUE(as702.opened);
    EXPECT_EQ(as701.rows().size(), 1u);
    EXPECT_EQ(as702.rows().size(), 0u);
    for (OpenedTrace* trace : {&as701, &as702}) {
        XpvtFindCriteria701& k = trace->doc.findCriteria701();
        k.searchBothSides = k.matchAll = true;
        ASSERT_TRUE(trace->doc.find(&trace->messages));
    }
    EXPECT_EQ(as701.doc.findResults(), std::vector<int>{0});
    EXPECT_TRUE(as702.doc.findResults().empty());
}

TEST(XpvtDocSchema, AHeaderAfterTheTraceComesTooLateForItsRows) {
    // The trace is read on the 7.01 tables whatever a later header says.
    const std::string xml = "<ProcessValueTrace><Trace><StopTrace><Time>t</Time></StopTrace></Trace>"
                            "<Description><Schema>7.01</Schema></Description></ProcessValueTrace>";
    OpenedTrace trace(xml);
    ASSERT_TRUE(trace.opened);
    ASSERT_EQ(trace.rows().size(), 1u);
    EXPECT_EQ(trace.doc.description().Schema, "7.01");
}

// --- failures and the swap file ---------------------------------------------------------

TEST(XpvtDocOpen, FailuresShowTheParserTextAndNothingElse) {
    TempDir dir;
    {
        XpvtDoc doc;
        RecordingMessages messages;
        EXPECT_FALSE(doc.OnOpenDocument(dir.File("missing.xpvt"), dir.File("swap"), &messages));
        EXPECT_EQ(messages.Texts(), std::vector<std::string>{"Could not open input xml file."});
    }
    {
        // Rows were made before the error; the open fails all the same.
        OpenedTrace trace("<ProcessValueTrace><Trace>\n<StopTrace/>\n<StartTrace></StopTrace></Trace>");
        EXPECT_FALSE(trace.opened);
        EXPECT_EQ(trace.messages.Texts(), std::vector<std::string>{"XML error: 3 mismatched tag"});
    }
    {
        OpenedTrace trace("");
        EXPECT_TRUE(trace.opened);
        EXPECT_TRUE(trace.messages.shown.empty());
        EXPECT_EQ(trace.doc.container().rowCount(), 0);
    }
}

TEST(XpvtDocOpen, AWellFormedForeignFileOpensAsAnEmpty701List) {
    OpenedTrace trace("<SnapList><Description><Schema>7,02</Schema></Description>"
                      "<Trace><StopTrace/></Trace></SnapList>");
    EXPECT_TRUE(trace.opened);
    EXPECT_TRUE(trace.messages.shown.empty());
    EXPECT_EQ(trace.doc.container().rowCount(), 0);
    EXPECT_FALSE(trace.doc.is702());
    EXPECT_EQ(trace.doc.description().Schema, "");
}

TEST(XpvtDocOpen, TheSwapFileLivesExactlyAsLongAsTheDocument) {
    TempDir dir;
    const std::string swap = dir.File("swap");
    const std::string good = dir.Write("good.xpvt", xpvttest::trace701("<StopTrace/>"));
    const std::string bad = dir.Write("bad.xpvt", "<ProcessValueTrace><Trace><StopTrace/>");
    {
        XpvtDoc doc;
        ASSERT_TRUE(doc.OnOpenDocument(good, swap, nullptr));
        EXPECT_EQ(swapFilesIn(swap), 1);
        EXPECT_EQ(doc.container().rowCount(), 1);
    }
    EXPECT_EQ(swapFilesIn(swap), 0);
    {
        XpvtDoc doc;
        RecordingMessages messages;
        EXPECT_FALSE(doc.OnOpenDocument(bad, swap, &messages));
        ASSERT_EQ(messages.shown.size(), 1u);
        EXPECT_EQ(messages.shown[0].text.rfind("XML error: ", 0), 0u);
    }
    EXPECT_EQ(swapFilesIn(swap), 0);
}

TEST(XpvtDocOpen, AnUnwritableSwapDirectoryFailsWithTheContainerText) {
    TempDir dir;
    const std::string path = dir.Write("t.xpvt", xpvttest::trace701(""));
    // A regular file where the directory should be: no swap file can be made in it.
    const std::string notADirectory = dir.Write("plain", "x");
    XpvtDoc doc;
    RecordingMessages messages;
    EXPECT_FALSE(doc.OnOpenDocument(path, notADirectory, &messages));
    EXPECT_EQ(messages.Texts(), std::vector<std::string>{"Could not open file."});
}

class CancelAfterFirstBlock final : public zdt::ProgressSink {
public:
    bool onProgress(unsigned long long done, unsigned long long total) override {
        lastTotal = total;
        lastDone = done;
        return ++calls < 2;
    }
    unsigned long long lastDone = 0;
    unsigned long long lastTotal = 0;
    int calls = 0;
};

TEST(XpvtDocOpen, ACancelledOpenFailsWithoutAMessage) {
    std::string body;
    for (int i = 0; i < 2000; ++i)
        body += "<StopTrace><Time>" + std::to_string(i) + "</Time></StopTrace>\n";
    TempDir dir;
    const std::string xml = xpvttest::trace701(body);
    const std::string path = dir.Write("t.xpvt", xml);
    XpvtDoc doc;
    RecordingMessages messages;
    CancelAfterFirstBlock progress;
    EXPECT_FALSE(doc.OnOpenDocument(path, dir.File("swap"), &messages, &progress));
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_EQ(progress.calls, 2);
    EXPECT_EQ(progress.lastDone, 2u * 10240u);
    EXPECT_LT(doc.container().rowCount(), 2000);
    EXPECT_EQ(progress.lastTotal, xml.size());
}

// --- commands ---------------------------------------------------------------------------

TEST(XpvtDocCommands, GoToNeedsASelectionAndSomethingToGoTo) {
    OpenedTrace trace(xpvttest::trace701("<StopTrace/><StopTrace/><StopTrace/><StopTrace/>"));
    ASSERT_TRUE(trace.opened);
    XpvtDoc& doc = trace.doc;
    RecordingMessages messages;
    using C = XpvtDoc::GoToCommand;
    EXPECT_EQ(doc.goTo(C::NextBookmark, -1, 4, &messages), std::nullopt);
    EXPECT_EQ(doc.goTo(C::PreviousBookmark, 0, 4, &messages), std::nullopt);
    EXPECT_EQ(doc.goTo(C::NextBookmark, 0, 4, &messages), std::nullopt);
    EXPECT_EQ(doc.goTo(C::FindNext, 0, 4, &messages), std::nullopt);
    EXPECT_EQ(doc.goTo(C::FindPrevious, 0, 4, &messages), std::nullopt);
    EXPECT_EQ(messages.Texts(), (std::vector<std::string>{XpvtDoc::NoRowSelectedText, XpvtDoc::NoPreviousBookmarkText,
                                                          XpvtDoc::NoNextBookmarkText, XpvtDoc::NoFindResultsText,
                                                          XpvtDoc::NoFindResultsText}));
    doc.addBookmark(1, "b", "");
    doc.addBookmark(3, "c", "");
    doc.markFindResult(2);
    EXPECT_EQ(doc.goTo(C::NextBookmark, 1, 4, &messages), 3);
    EXPECT_EQ(doc.goTo(C::PreviousBookmark, 1, 4, &messages), 3);
    EXPECT_EQ(doc.goTo(C::FindNext, 3, 4, &messages), 2);
    // A row outside a shorter list is not selected.
    EXPECT_EQ(doc.goTo(C::NextBookmark, 1, 3, &messages), std::nullopt);
    EXPECT_EQ(messages.shown.size(), 5u);
}

TEST(XpvtDocCommands, RowsTellTheViewsAsTheyArrive) {
    TempDir dir;
    const std::string path = dir.Write("t.xpvt", xpvttest::trace701("<StopTrace/><StartTrace/><StopTrace/>"));
    XpvtDoc doc;
    std::vector<int> rowCountsSeen;
    doc.setUpdateListener([&] { rowCountsSeen.push_back(doc.container().rowCount()); });
    ASSERT_TRUE(doc.OnOpenDocument(path, dir.File("swap"), nullptr));
    EXPECT_EQ(rowCountsSeen, (std::vector<int>{1, 2, 3}));
}

TEST(XpvtDocCommands, ASearchOnAFileThatIsGoneFailsAndKeepsNoOldMarks) {
    OpenedTrace trace(xpvttest::trace701("<OpenComPrimitive/><CloseComPrimitive/>"));
    ASSERT_TRUE(trace.opened);
    trace.doc.findCriteria701().searchPrimitives = true;
    trace.doc.findCriteria701().matchAll = true;
    ASSERT_TRUE(trace.doc.find(&trace.messages));
    EXPECT_EQ(trace.doc.findResults(), (std::vector<int>{0, 1}));
    std::filesystem::remove(trace.path);
    EXPECT_FALSE(trace.doc.find(&trace.messages));
    EXPECT_EQ(trace.messages.Texts(), std::vector<std::string>{"Could not open input xml file."});
    EXPECT_TRUE(trace.doc.findResults().empty());
    // The marks are gone from the rows too.
    EXPECT_EQ(trace.doc.container().readRow(0).substr(0, 3), "001");
}

} // namespace

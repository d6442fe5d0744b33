// A document filtered in pieces gives the very bytes of the run over the whole document:
// the pieces' results are joined inside the list's container, and the blanks that the
// 7.02 filter's empty strings leave between kept events are restored across the cuts.
#include "FilterEngineSupport.h"
#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "common/Operation.h"
#include "filter/FilterRun.h"
#include "filter/PvfltFile.h"

#include <filesystem>
#include <functional>

namespace {

using namespace ZDTAnalyzer::Filter;
using XPVT_7_02::FilterCondition702;

using FilterJob =
    std::function<zdt::OperationStatus(const FilterRunTarget&, zdt::MessageSink&, zdt::OperationControl&)>;

class PieceFilterRun : public testing::Test {
protected:
    void SetUp() override { SKIP_WITHOUT_XQUERY_ENGINE(); }

    // The result of `run` over `document`, whole (pieceBytes 0 on a small file) or in pieces.
    std::string resultOf(const std::string& document, std::uint64_t pieceBytes, const FilterJob& run,
                         int* progressReports = nullptr) {
        zdt::MessageList messages;
        zdt::OperationControl control;
        int reports = 0;
        control.setReportListener([&reports] { ++reports; });
        const std::string out = dir.File(pieceBytes == 0 ? "whole.out" : "pieces.out");
        std::filesystem::remove(out);
        FilterRunTarget target{document, out, dir.File("")};
        target.pieceBytes = pieceBytes;
        EXPECT_EQ(run(target, messages, control), zdt::OperationStatus::Done);
        EXPECT_TRUE(messages.messages().empty());
        if (progressReports != nullptr)
            *progressReports = reports;
        return TempDir::Read(out);
    }

    // Whole and in about `pieces` pieces: the same bytes.
    void expectPiecesAsWhole(const std::string& document, const FilterJob& run, const std::string& what,
                             std::uint64_t pieces = 3) {
        const std::uint64_t size = std::filesystem::file_size(document);
        const std::string whole = resultOf(document, 0, run);
        ASSERT_FALSE(whole.empty()) << what;
        int reports = 0;
        EXPECT_EQ(resultOf(document, size / pieces, run, &reports), whole) << what;
        EXPECT_GE(reports, 2) << what << ": one report per piece";
    }

    std::string writeXpvt(zdtgen::XpvtSchema schema, std::uint64_t results, bool hostile) {
        zdtgen::XpvtTraceOptions options;
        options.schema = schema;
        options.results = results;
        options.seed = 11;
        if (hostile)
            options.hostile = zdtgen::XpvtHostile::InFileKinds();
        return dir.Write(schema == zdtgen::XpvtSchema::V702 ? "t702.xpvt" : "t701.xpvt",
                         zdtgen::MakeXpvtTrace(options));
    }

    TempDir dir;
};

FilterJob run702(const FilterCondition702& record) {
    return [record](const FilterRunTarget& target, zdt::MessageSink& messages, zdt::OperationControl& control) {
        return runFilter702(target, record, messages, control);
    };
}

TEST_F(PieceFilterRun, ProcessValues702AsWhole) {
    const std::string document = writeXpvt(zdtgen::XpvtSchema::V702, 40, true);
    // Every event dropped: the trace holds nothing but the blanks of the empty strings.
    expectPiecesAsWhole(document, run702({}), "groups off");
    // Results kept, links and primitives dropped: runs of blanks between kept events.
    FilterCondition702 results;
    results.includeResults = true;
    expectPiecesAsWhole(document, run702(results), "results only");
    FilterCondition702 links;
    links.includeOpenCloseLogicalLinks = true;
    links.logicalLink = {false, true, "1"};
    links.includeStartFinishPrimitives = true;
    expectPiecesAsWhole(document, run702(links), "links with a 1 and primitives", 4);
}

TEST_F(PieceFilterRun, ProcessValues701AsWhole) {
    const std::string document = writeXpvt(zdtgen::XpvtSchema::V701, 40, true);
    auto conditions = XPVT_7_01::defaultFilterConditionMap();
    conditions["ExcludeItems"] = "0";
    const std::string filter = dir.File("f.pvflt");
    const FilterJob run = [&filter](const FilterRunTarget& target, zdt::MessageSink& messages,
                                    zdt::OperationControl& control) {
        return runFilter701(target, filter, messages, control);
    };
    XPVT_7_01::writeFilterFile(filter, conditions);
    expectPiecesAsWhole(document, run, "defaults");
    // Nothing kept: an empty trace, written as the whole run writes it.
    conditions["ExcludeItems"] = "1";
    XPVT_7_01::writeFilterFile(filter, conditions);
    expectPiecesAsWhole(document, run, "exclude everything");
}

TEST_F(PieceFilterRun, SnapshotsAsWholeAndTheirServiceList) {
    zdtgen::SnapshotOptions options;
    options.snapshots = 30;
    options.seed = 5;
    options.hostile.unknownElements = true;
    options.hostile.nonAscii = true;
    const std::string document = dir.Write("t.snp", zdtgen::MakeSnapshot(options));
    const std::uint64_t size = std::filesystem::file_size(document);

    zdt::MessageList messages;
    zdt::OperationControl control;
    std::set<std::string> whole;
    std::set<std::string> pieces;
    ASSERT_EQ(listSnapshotServices(document, dir.File(""), whole, messages, control), zdt::OperationStatus::Done);
    ASSERT_EQ(listSnapshotServices(document, dir.File(""), pieces, messages, control, size / 3),
              zdt::OperationStatus::Done);
    ASSERT_GE(whole.size(), 3u);
    EXPECT_EQ(pieces, whole);

    const std::vector<std::string> some(whole.begin(), std::next(whole.begin(), 2));
    for (const std::vector<std::string>& chosen : {some, std::vector<std::string>{}}) {
        expectPiecesAsWhole(
            document,
            [&chosen](const FilterRunTarget& target, zdt::MessageSink& sink, zdt::OperationControl& operation) {
                return runSnapshotFilter(target, chosen, sink, operation);
            },
            std::to_string(chosen.size()) + " services");
    }
}

TEST_F(PieceFilterRun, AFailingPieceLeavesNothingAndACancelStopsBetweenPieces) {
    const std::string document = writeXpvt(zdtgen::XpvtSchema::V702, 20, false);
    FilterCondition702 quote;
    quote.includeResults = true;
    quote.requestShortName = {false, true, "a\"b"};
    zdt::MessageList messages;
    zdt::OperationControl control;
    FilterRunTarget target{document, dir.File("bad.out"), dir.File("")};
    target.pieceBytes = std::filesystem::file_size(document) / 3;
    EXPECT_EQ(runFilter702(target, quote, messages, control), zdt::OperationStatus::Failed);
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, Filter702ErrorTitle);
    EXPECT_FALSE(std::filesystem::exists(target.outputPath));

    // A cancel asked for after the first piece ends the run there.
    zdt::MessageList quiet;
    zdt::OperationControl cancelling;
    cancelling.setReportListener([&cancelling] { cancelling.requestCancel(); });
    target.outputPath = dir.File("cancelled.out");
    EXPECT_EQ(runFilter702(target, {}, quiet, cancelling), zdt::OperationStatus::Cancelled);
    EXPECT_TRUE(quiet.messages().empty());
    EXPECT_FALSE(std::filesystem::exists(target.outputPath));
    // Only the result's own folder content is left: no piece, no partial result.
    for (const auto& entry : std::filesystem::directory_iterator(dir.File("")))
        EXPECT_TRUE(entry.path().filename() == "t702.xpvt") << entry.path();
}

} // namespace

namespace {

TEST(FilterPieceBytes, WholeWhereTheEngineFitsAQuarterOfTheMachineElsePiecesThatFit) {
    constexpr std::uint64_t MB = 1ull << 20;
    constexpr std::uint64_t GB = 1ull << 30;
    EXPECT_EQ(filterPieceBytes(500 * MB, 23 * GB), 0u);
    EXPECT_EQ(filterPieceBytes(2 * GB, 23 * GB), 256 * MB);
    // A laptop: 500 MB would take 2.5 GB whole.
    const std::uint64_t laptop = filterPieceBytes(500 * MB, 8 * GB);
    EXPECT_GT(laptop, 0u);
    EXPECT_LE(laptop / 2 * 9 + 300 * MB, 2 * GB);
    // Unknown memory counts as 2 GB; a tiny machine still gets pieces of a useful size.
    EXPECT_EQ(filterPieceBytes(100 * MB, 0), 0u);
    EXPECT_GT(filterPieceBytes(500 * MB, 0), 0u);
    EXPECT_EQ(filterPieceBytes(500 * MB, 512 * MB), 64 * MB);
}

} // namespace

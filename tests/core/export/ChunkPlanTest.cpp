#include "export/ChunkPlan.h"

#include "common/Operation.h"
#include "export/ChunkRowCount.h"

#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "support/RecordingMessages.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <expat.h>

namespace {

using ZDTAnalyzer::ChunkPlan;
using ZDTAnalyzer::ConversionKind;
using ZDTAnalyzer::CountListRows;
using ZDTAnalyzer::PlanChunks;
using ZDTAnalyzer::WriteChunk;

bool WellFormed(const std::string& bytes) {
    XML_Parser parser = XML_ParserCreate(nullptr);
    const bool ok = XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), 1) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

struct Family {
    const char* name;
    ConversionKind kind;
    std::string document;
};

std::vector<Family> Families() {
    zdtgen::XpvtTraceOptions v701;
    v701.schema = zdtgen::XpvtSchema::V701;
    v701.results = 60;
    v701.hostile = zdtgen::XpvtHostile::InFileKinds();
    zdtgen::XpvtTraceOptions v702 = v701;
    v702.schema = zdtgen::XpvtSchema::V702;
    v702.seed = 7;
    zdtgen::SnapshotOptions snapshots;
    snapshots.snapshots = 40;
    snapshots.hostile = zdtgen::SnapshotHostile::InFileKinds();
    snapshots.hostile.hugeAttributes = false;
    return {{"7.01", ConversionKind::Xpvt701, zdtgen::MakeXpvtTrace(v701)},
            {"7.02", ConversionKind::Xpvt702, zdtgen::MakeXpvtTrace(v702)},
            {"snapshots", ConversionKind::Snapshot, zdtgen::MakeSnapshot(snapshots)}};
}

// Each piece is a document of its own whose rows, piece after piece, are the rows of the
// whole: that is what lets the tools run piece by piece.
TEST(ChunkPlan, PiecesAreWholeDocumentsThatTogetherMakeTheRowsOfTheWhole) {
    for (const Family& family : Families()) {
        SCOPED_TRACE(family.name);
        TempDir dir;
        const std::string path = dir.Write("whole.xml", family.document);
        RecordingMessages messages;
        const std::optional<zdt::RowCount> wholeRows = CountListRows(path, family.kind, dir.File(""), messages);
        ASSERT_TRUE(wholeRows.has_value());
        ASSERT_GT(*wholeRows, 0);

        const std::optional<ChunkPlan> plan = PlanChunks(path, family.kind, family.document.size() / 7, nullptr);
        ASSERT_TRUE(plan.has_value());
        EXPECT_GE(plan->chunkCount(), 5u);
        EXPECT_EQ(plan->fileSize, family.document.size());

        std::string bodies;
        zdt::RowCount rows = 0;
        for (std::size_t index = 0; index < plan->chunkCount(); ++index) {
            const std::string piece = dir.File("piece" + std::to_string(index) + ".xml");
            ASSERT_TRUE(WriteChunk(*plan, index, path, piece));
            const std::string bytes = TempDir::Read(piece);
            EXPECT_TRUE(WellFormed(bytes)) << "piece " << index;
            EXPECT_EQ(bytes.substr(0, plan->headerEnd), family.document.substr(0, plan->headerEnd));
            const std::optional<zdt::RowCount> pieceRows = CountListRows(piece, family.kind, dir.File(""), messages);
            ASSERT_TRUE(pieceRows.has_value()) << "piece " << index;
            rows += *pieceRows;
            bodies += family.document.substr(plan->cuts[index], plan->cuts[index + 1] - plan->cuts[index]);
        }
        EXPECT_EQ(rows, *wholeRows);
        EXPECT_EQ(family.document.substr(0, plan->headerEnd) + bodies + family.document.substr(plan->tailStart()),
                  family.document);
        EXPECT_TRUE(messages.shown.empty());
    }
}

TEST(ChunkPlan, CutsOnlyBetweenChildrenOfTheContainer) {
    TempDir dir;
    const std::string document = "<?xml version=\"1.0\"?>\n<ProcessValueTrace><Description><Schema>7,02</Schema>"
                                 "</Description>\n<Trace>\n<A><B/></A>\n<C/>\n<D>text</D>\n</Trace>\n"
                                 "</ProcessValueTrace>\n";
    const std::string path = dir.Write("t.xpvt", document);
    const std::optional<ChunkPlan> plan = PlanChunks(path, ConversionKind::Xpvt702, 1, nullptr);
    ASSERT_TRUE(plan.has_value());
    ASSERT_EQ(plan->chunkCount(), 3u);
    const auto piece = [&](std::size_t index) {
        return document.substr(plan->cuts[index], plan->cuts[index + 1] - plan->cuts[index]);
    };
    EXPECT_EQ(document.substr(0, plan->headerEnd).substr(document.find("<Trace>")), "<Trace>");
    EXPECT_EQ(piece(0), "\n<A><B/></A>");
    EXPECT_EQ(piece(1), "\n<C/>");
    EXPECT_EQ(piece(2), "\n<D>text</D>\n");
    EXPECT_EQ(document.substr(plan->tailStart()), "</Trace>\n</ProcessValueTrace>\n");
}

TEST(ChunkPlan, RefusesDocumentsThatCannotBeCut) {
    TempDir dir;
    const std::pair<const char*, std::string> cases[] = {
        {"not well-formed", "<ProcessValueTrace><Trace><A/><B/></Trace>"},
        {"empty container", "<ProcessValueTrace><Trace/></ProcessValueTrace>"},
        {"one child only", "<ProcessValueTrace><Trace><A/></Trace></ProcessValueTrace>"},
        {"no container", "<ProcessValueTrace><Other><A/><B/></Other></ProcessValueTrace>"},
        {"two containers", "<ProcessValueTrace><Trace><A/><B/></Trace><Trace><C/></Trace></ProcessValueTrace>"},
        {"container too deep", "<ProcessValueTrace><X><Trace><A/><B/></Trace></X></ProcessValueTrace>"},
    };
    for (const auto& [name, document] : cases) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(PlanChunks(dir.Write("t.xpvt", document), ConversionKind::Xpvt701, 1, nullptr).has_value());
    }
    EXPECT_FALSE(PlanChunks(dir.File("missing.xpvt"), ConversionKind::Xpvt701, 1, nullptr).has_value());
}

TEST(ChunkPlan, ACancelStopsThePlan) {
    TempDir dir;
    const std::string path = dir.Write("s.snp", "<SnapList><SnapShot/><SnapShot/><SnapShot/></SnapList>");
    ASSERT_TRUE(PlanChunks(path, ConversionKind::Snapshot, 1, nullptr).has_value());
    zdt::OperationControl control;
    control.requestCancel();
    EXPECT_FALSE(PlanChunks(path, ConversionKind::Snapshot, 1, &control).has_value());
}

} // namespace

#include "export/ConversionPaths.h"
#include "xpvt/XpvtSchemaProbe.h"

#include "XpvtTraceGenerator.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

namespace {

using ZDTAnalyzer::ConversionKind;

TEST(ConversionChoice, TheListSeparatorFollowsTheDecimalPointAndPicksTheCsvSheet) {
    EXPECT_EQ(ZDTAnalyzer::ListSeparatorForDecimalPoint(","), ';');
    EXPECT_EQ(ZDTAnalyzer::ListSeparatorForDecimalPoint("."), ',');
    EXPECT_EQ(ZDTAnalyzer::ListSeparatorForDecimalPoint("\xD9\xAB"), ','); // the Arabic decimal separator
    EXPECT_EQ(ZDTAnalyzer::ListSeparatorForDecimalPoint(""), ',');

    const ZDTAnalyzer::ConversionPaths paths("/opt/zdt/Analyzer");
    EXPECT_EQ(paths.csvSheet(ConversionKind::Snapshot, ';'), "/opt/zdt/Analyzer/xsl/snp/csv/snp_to_csv1.xsl");
    EXPECT_EQ(paths.csvSheet(ConversionKind::Snapshot, ','), "/opt/zdt/Analyzer/xsl/snp/csv/snp_to_csv.xsl");
    EXPECT_EQ(paths.csvSheet(ConversionKind::Xpvt701, ';'), "/opt/zdt/Analyzer/xsl/xpvt/csv/xpvt_to_csv1.xsl");
    EXPECT_EQ(paths.csvSheet(ConversionKind::Xpvt702, ';'), "/opt/zdt/Analyzer/xsl/xpvt_7_02/csv/xpvt_to_csv1.xsl");
}

// The header decides, exactly as the document reads it, and the probe stops after it.
TEST(ConversionChoice, TheSchemaProbeReadsTheHeaderAsTheDocumentDoes) {
    TempDir dir;
    zdtgen::XpvtTraceOptions options;
    const auto probe = [&](const zdtgen::XpvtTraceOptions& traceOptions) {
        return ZDTAnalyzer::ProbeXpvtIs702(dir.Write("t.xpvt", zdtgen::MakeXpvtTrace(traceOptions)), dir.File(""));
    };
    options.schema = zdtgen::XpvtSchema::V702;
    EXPECT_TRUE(probe(options));
    options.schema = zdtgen::XpvtSchema::V701;
    EXPECT_FALSE(probe(options));
    options.schema = zdtgen::XpvtSchema::V702;
    options.schemaText = "7.02";
    EXPECT_FALSE(probe(options));
    options.schemaText.reset();
    options.omitSchema = true;
    EXPECT_FALSE(probe(options));
    options.omitSchema = false;
    options.hostile.truncatedEnd = true;
    EXPECT_TRUE(probe(options)); // the header is whole; the break comes later
    EXPECT_FALSE(
        ZDTAnalyzer::ProbeXpvtIs702(dir.Write("cut.xpvt", "<ProcessValueTrace><Description><Sch"), dir.File("")));
    EXPECT_FALSE(ZDTAnalyzer::ProbeXpvtIs702(dir.File("missing.xpvt"), dir.File("")));
    // No swap file stays behind.
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
        EXPECT_NE(entry.path().extension(), ".fc") << entry.path();
}

} // namespace

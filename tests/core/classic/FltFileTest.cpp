#include "classic/FltFile.h"
#include "classic/CAnalyzerDoc.h"
#include "support/ClassicTraces.h"
#include "trace/CIniFile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace {

using classic_traces::Can601;

std::vector<std::uint32_t> Ids(std::initializer_list<std::uint32_t> ids) {
    return ids;
}

TEST(FltFile, WritesWhatTheDocumentReadsBack) {
    TempDir dir;
    FltFilter filter;
    filter.stopFilter = true;
    for (std::uint32_t id = 0x100; id < 0x10C; ++id)
        filter.identifiers.push_back(id);
    filter.identifiers.push_back(0x18DAF110u | FltExtendedFlag);
    const std::string path = dir.File("stop.flt");
    ASSERT_TRUE(WriteFltFile(path, filter));

    // Thirteen entries: the count and the keys from 10 up are hex, as the reader expects.
    CIniFile ini(path);
    EXPECT_EQ(ini.GetString("Type", "", "CAN"), "StopFilter");
    EXPECT_EQ(ini.GetString("NoOfEntries", "", "CAN"), "D");
    EXPECT_EQ(ini.GetString("A", "", "CAN"), "0x109");
    EXPECT_EQ(ini.GetString("D", "", "CAN"), "0x98DAF110");
    EXPECT_EQ(ini.GetString("10", "none", "CAN"), "none");

    const FltFilter back = ReadFltFile(path);
    EXPECT_TRUE(back.stopFilter);
    EXPECT_EQ(back.identifiers, filter.identifiers);
}

TEST(FltFile, AWrittenPassFilterKeepsItsFramesAndEventsInTheDocument) {
    TempDir dir;
    FltFilter filter;
    filter.identifiers = {0x7E8, *ParseIdentifierText("18DAF110", true)};
    ASSERT_TRUE(WriteFltFile(dir.File("pass.flt"), filter));

    CAnalyzerDoc doc;
    ASSERT_TRUE(doc.OnOpenDocument(dir.Write("c.trc", Can601())));
    doc.ApplyFilter(dir.File("pass.flt"), "pass.flt");
    ASSERT_EQ(doc.GetVisibleCount(), 3u);
    std::vector<std::uint32_t> types;
    for (std::uint32_t row = 0; row < 3; ++row) {
        std::unique_ptr<CTraceItemI> item(doc.GetItem(row));
        types.push_back(item->GetTypeCode());
    }
    EXPECT_EQ(types, Ids({0x5000, 0x5800, 0x4403}));
}

TEST(FltFile, ReadsLikeTheDocumentDoes) {
    TempDir dir;
    // Missing file: a pass filter without entries.
    FltFilter missing = ReadFltFile(dir.File("none.flt"));
    EXPECT_FALSE(missing.stopFilter);
    EXPECT_TRUE(missing.identifiers.empty());

    // Values with or without "0x"; an absent entry is the free-slot value, not an identifier.
    dir.Write("gaps.flt", "[can]\nType=StopFilter\nNoOfEntries=3\n1=7e8\n3=0x7E0\n");
    EXPECT_EQ(ReadFltFile(dir.File("gaps.flt")).identifiers, Ids({0x7E8, 0x7E0}));

    // An unknown type passes; a count beyond the table is cut where the document cuts it.
    std::string many = "[CAN]\r\nType=Whatever\r\nNoOfEntries=FF\r\n";
    for (int n = 1; n <= 0xFF; ++n) {
        char line[32];
        std::snprintf(line, sizeof line, "%X=%X\r\n", n, n);
        many += line;
    }
    const FltFilter cut = ReadFltFile(dir.Write("many.flt", many));
    EXPECT_FALSE(cut.stopFilter);
    ASSERT_EQ(cut.identifiers.size(), FltMaxEntries);
    EXPECT_EQ(cut.identifiers.back(), FltMaxEntries);
}

TEST(FltFile, RewritingKeepsForeignLinesAndDropsStaleEntries) {
    const std::string before = "; made elsewhere\n[Info]\nAuthor=me\n1=not an entry\n\n[CAN]\nType=PassFilter\n"
                               "Comment=engine ids\nNoOfEntries=3\n1=0x1\n2=0x2\n3=0x3\n[Other]\nX=1\n";
    FltFilter filter;
    filter.stopFilter = true;
    filter.identifiers = {0x7DF};

    EXPECT_EQ(FormatFlt(filter, before), "; made elsewhere\n[Info]\nAuthor=me\n1=not an entry\n\n[CAN]\n"
                                         "Type=StopFilter\nNoOfEntries=1\n1=0x7DF\nComment=engine ids\n"
                                         "[Other]\nX=1\n");
}

TEST(FltFile, NewTextsUseCrLfAndAFileWithoutTheSectionGetsIt) {
    FltFilter filter;
    EXPECT_EQ(FormatFlt(filter, ""), "[CAN]\r\nType=PassFilter\r\nNoOfEntries=0\r\n");
    EXPECT_EQ(FormatFlt(filter, "[Info]\r\nA=1"), "[Info]\r\nA=1\r\n\r\n[CAN]\r\nType=PassFilter\r\nNoOfEntries=0\r\n");
}

TEST(FltFile, WritingToAnUnwritablePlaceFails) {
    TempDir dir;
    EXPECT_FALSE(WriteFltFile(dir.File("missing/dir/x.flt"), FltFilter{}));
    if (geteuid() != 0) {
        const std::string path = dir.Write("ro.flt", "[CAN]\r\n");
        chmod(path.c_str(), 0444);
        EXPECT_FALSE(WriteFltFile(path, FltFilter{}));
    }
}

TEST(FltFile, IdentifierTextsAreCheckedAgainstTheFrameKind) {
    EXPECT_EQ(ParseIdentifierText("7df", false), 0x7DFu);
    EXPECT_EQ(ParseIdentifierText(" 0x7FF ", false), 0x7FFu);
    EXPECT_EQ(ParseIdentifierText("800", false), std::nullopt);
    EXPECT_EQ(ParseIdentifierText("800", true), 0x80000800u);
    EXPECT_EQ(ParseIdentifierText("0x1FFFFFFF", true), 0x9FFFFFFFu);
    EXPECT_EQ(ParseIdentifierText("20000000", true), std::nullopt);
    EXPECT_EQ(ParseIdentifierText("0000000000001", false), 1u);
    EXPECT_EQ(ParseIdentifierText("100000000", true), std::nullopt);
    EXPECT_EQ(ParseIdentifierText("0x", false), std::nullopt);
    EXPECT_EQ(ParseIdentifierText("7G", false), std::nullopt);

    EXPECT_EQ(FormatIdentifierText(0x7DF), "0x7DF");
    EXPECT_EQ(FormatIdentifierText(0x98DAF110u), "0x18DAF110 (extended)");
}

} // namespace

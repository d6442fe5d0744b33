#include "app/DocumentRoute.h"

#include <gtest/gtest.h>

using zdt::DocumentFamily;
using zdt::FamilyForPath;
using zdt::IsRoutablePath;

TEST(DocumentRoute, AcceptsEveryTraceExtensionInAnyCase) {
    for (const char* path : {"/t/a.xpvt", "/t/a.trc", "/t/a.trc1", "/t/a.trc2", "/t/a.tr0", "/t/a.crc", "/t/a.trx",
                             "/t/a.snp", "/t/A.TRC", "/t/a.trX", "/t/a.Xpvt", "rel.SNP", "/t/a.b.c.trc"})
        EXPECT_TRUE(IsRoutablePath(path)) << path;
}

TEST(DocumentRoute, RejectsOtherExtensionsAndATrailingDot) {
    for (const char* path :
         {"/t/a.trc3", "/t/a.txt", "/t/a.tr", "/t/a.", "/t/a.trc.", "/t/a.trc ", "/t/a.xpvt.bak", ".", ""})
        EXPECT_FALSE(IsRoutablePath(path)) << path;
}

TEST(DocumentRoute, LastDotOfTheWholePathDecides) {
    // A dot in a directory name takes the rest of the path as its "extension".
    EXPECT_FALSE(IsRoutablePath("/data.d/trace"));
    EXPECT_FALSE(IsRoutablePath("/data.d/trace.log/x"));
    EXPECT_FALSE(IsRoutablePath("/a.b/trc"));
    // With no dot at all the whole path is compared: only a bare listed word passes.
    EXPECT_TRUE(IsRoutablePath("trc"));
    EXPECT_TRUE(IsRoutablePath("SNP"));
    EXPECT_FALSE(IsRoutablePath("/data/trc"));
    EXPECT_FALSE(IsRoutablePath("tracefile"));
}

TEST(DocumentRoute, FamilyFollowsTheFileNameExtensionOnly) {
    EXPECT_EQ(FamilyForPath("/t/a.xpvt"), DocumentFamily::Xpvt);
    EXPECT_EQ(FamilyForPath("/t/a.XPVT"), DocumentFamily::Xpvt);
    EXPECT_EQ(FamilyForPath("/t/a.snp"), DocumentFamily::Snp);
    EXPECT_EQ(FamilyForPath("a.Snp"), DocumentFamily::Snp);
    EXPECT_EQ(FamilyForPath("/t/a.trc"), DocumentFamily::Classic);
    EXPECT_EQ(FamilyForPath("/t/a.trX"), DocumentFamily::Classic);
    // Not routable by the dialog, yet the command line may still bring these.
    EXPECT_EQ(FamilyForPath("/t/a.xpvt.bak"), DocumentFamily::Classic);
    EXPECT_EQ(FamilyForPath("/t.xpvt/a"), DocumentFamily::Classic);
    EXPECT_EQ(FamilyForPath("xpvt"), DocumentFamily::Classic);
    EXPECT_EQ(FamilyForPath("/t/unknown.bin"), DocumentFamily::Classic);
}

TEST(DocumentRoute, DialogWithOneUnknownOfThreeOpensTwoCascadesAndWarnsOnce) {
    const auto selection = zdt::SelectFromFileDialog({"/t/one.trc", "/t/notes.txt", "/t/two.XPVT"});

    EXPECT_EQ(selection.accepted, (std::vector<std::string>{"/t/one.trc", "/t/two.XPVT"}));
    EXPECT_EQ(selection.rejected, (std::vector<std::string>{"/t/notes.txt"}));
    EXPECT_TRUE(selection.cascade);
    ASSERT_TRUE(selection.warning.has_value());
    EXPECT_EQ(selection.warning->title, "E001_003 [Wrong file type.]");
    EXPECT_EQ(selection.warning->text, "Can't open:\n/t/notes.txt");
    EXPECT_EQ(selection.warning->icon, zdt::MessageIcon::Warning);
    EXPECT_FALSE(selection.warnBeforeCascade);
    EXPECT_FALSE(selection.warningOnMainFrame);
}

TEST(DocumentRoute, OnlyUnknownFilesWarnWithEveryNameAndDoNotCascade) {
    const auto selection = zdt::SelectFromFileDialog({"/t/a.trc3", "/t/b.", "/t/c"});

    EXPECT_TRUE(selection.accepted.empty());
    EXPECT_FALSE(selection.cascade);
    ASSERT_TRUE(selection.warning.has_value());
    EXPECT_EQ(selection.warning->text, "Can't open:\n/t/a.trc3\n/t/b.\n/t/c");
}

TEST(DocumentRoute, AllKnownFilesCascadeWithoutWarning) {
    const auto selection = zdt::SelectFromFileDialog({"/t/a.snp", "/t/b.tr0"});

    EXPECT_EQ(selection.accepted.size(), 2u);
    EXPECT_TRUE(selection.cascade);
    EXPECT_FALSE(selection.warning.has_value());
}

TEST(DocumentRoute, DroppedFilesWarnOnTheFrameBeforeCascading) {
    const auto mixed = zdt::SelectDroppedFiles({"/t/x.doc", "/t/a.crc"});
    EXPECT_EQ(mixed.accepted, (std::vector<std::string>{"/t/a.crc"}));
    EXPECT_TRUE(mixed.cascade);
    ASSERT_TRUE(mixed.warning.has_value());
    EXPECT_EQ(mixed.warning->title, "E005_001 [Wrong file type.]");
    EXPECT_EQ(mixed.warning->text, "Can't open:\n/t/x.doc");
    EXPECT_EQ(mixed.warning->icon, zdt::MessageIcon::Warning);
    EXPECT_TRUE(mixed.warnBeforeCascade);
    EXPECT_TRUE(mixed.warningOnMainFrame);

    const auto unknownOnly = zdt::SelectDroppedFiles({"/t/x.doc"});
    EXPECT_FALSE(unknownOnly.cascade);
    EXPECT_TRUE(unknownOnly.warning.has_value());
}

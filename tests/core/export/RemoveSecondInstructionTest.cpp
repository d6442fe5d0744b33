#include "export/RemoveSecondInstruction.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using ZDTAnalyzer::removeSecondInstruction;

std::string Stripped(const TempDir& dir, const std::string& content) {
    const std::string input = dir.Write("in.xml", content);
    const std::string output = dir.File("out.txt");
    removeSecondInstruction(input, output);
    return TempDir::Read(output);
}

TEST(RemoveSecondInstruction, DropsTheInstructionAfterTheDeclarationAndKeepsTheRest) {
    TempDir dir;
    const std::string body = "<Trace a=\"x\"><Row>1 &lt; 2 ?</Row>\n<Row/></Trace>\n";
    EXPECT_EQ(Stripped(dir, "<?xml version=\"1.0\"?>\n<?xml-stylesheet href=\"x.xsl\"?>\n" + body),
              "<?xml version=\"1.0\"?>\n" + body);
    // Right after the declaration, with no line break between.
    EXPECT_EQ(Stripped(dir, "<?xml version=\"1.0\"?><?pi data?><a/>"), "<?xml version=\"1.0\"?><a/>");
}

TEST(RemoveSecondInstruction, LeavesADocumentWithoutASecondInstructionAsItIs) {
    TempDir dir;
    const std::string documents[] = {
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ProcessValueTrace>\n  <Trace><?pi later?></Trace>\n"
        "</ProcessValueTrace>\n",
        // "<" and "?" inside the declaration's quotes count for nothing.
        "<?xml version=\"1.0\" encoding=\"<?x\"?>\n<a>\"</a>",
        "<?xml version=\"1.0\"?>",
    };
    for (const std::string& document : documents)
        EXPECT_EQ(Stripped(dir, document), document);
}

TEST(RemoveSecondInstruction, DamagesADocumentWithoutDeclarationAtItsThirdTag) {
    TempDir dir;
    // The third "<" is taken for the end of a dropped instruction and goes.
    EXPECT_EQ(Stripped(dir, "<SnapList>\n<SnapShot/>\n<SnapShot/>\n</SnapList>\n"),
              "<SnapList>\n<SnapShot/>\nSnapShot/>\n</SnapList>\n");
    // A "?" in the text after the second tag turns copying off until the third tag.
    EXPECT_EQ(Stripped(dir, "<a><b>why?</b></a>"), "<a><b>why/b></a>");
}

TEST(RemoveSecondInstruction, AByteFFEndsTheHeadAndTheRestFollowsUnchanged) {
    TempDir dir;
    EXPECT_EQ(Stripped(dir, "<?xml version=\"1.0\"?>\xFF<?pi?><a/>"), "<?xml version=\"1.0\"?><?pi?><a/>");
}

TEST(RemoveSecondInstruction, DoesNothingWhenAFileCannotBeOpened) {
    TempDir dir;
    removeSecondInstruction(dir.File("missing.xml"), dir.File("out.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.txt")));
    const std::string input = dir.Write("in.xml", "<?xml version=\"1.0\"?><a/>");
    removeSecondInstruction(input, dir.File("no/such/folder/out.txt"));
    EXPECT_EQ(TempDir::Read(input), "<?xml version=\"1.0\"?><a/>");
}

} // namespace

// The engine behind the filters: its failure texts, its results, odd paths and cancel.
#include "FilterEngineSupport.h"
#include "common/Operation.h"
#include "filter/FilterRun.h"

#include <chrono>
#include <filesystem>
#include <thread>

namespace {

using namespace ZDTAnalyzer::Filter;

const char* const SmallSnapshot = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<SnapList Created=\"c\"><SnapShot ShortName=\"S\"><Service Name=\" B \"/>"
                                  "<LogicalLink Name=\"L\"><Service Name=\"A\"/><Service Name=\"B\"/></LogicalLink>"
                                  "</SnapShot></SnapList>\n";

TEST(XQueryEngine, MissingEngineFailsWithTheInitializationTextAndLeavesNoFile) {
    TempDir dir;
    const std::string document = dir.Write("s.snp", SmallSnapshot);
    {
        ScopedEnvironment jar("ZDT_XQUERY_JAR", dir.File("no-such.jar"));
        const XQueryRunResult toFile = runXQueryToFile("1", document, dir.File("out.xml"));
        EXPECT_FALSE(toFile.succeeded);
        EXPECT_EQ(toFile.errorText, "Altova XQuery Component initialization failed!");
        EXPECT_FALSE(std::filesystem::exists(dir.File("out.xml")));
        EXPECT_EQ(runXQueryToString("1", document).errorText, InitializationFailedText);
    }
    ScopedEnvironment java("ZDT_XQUERY_JAVA", dir.File("no-java"));
    zdt::MessageList messages;
    zdt::OperationControl control;
    EXPECT_EQ(runSnapshotFilter({document, dir.File("out.snp"), ""}, {"A"}, messages, control),
              zdt::OperationStatus::Failed);
    ASSERT_EQ(messages.messages().size(), 1u);
    EXPECT_EQ(messages.messages()[0].title, "E009_003 [Filter.]");
    EXPECT_EQ(messages.messages()[0].text, "Filter error : Altova XQuery Component initialization failed! !");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.Path()), {}), 1);
}

TEST(XQueryEngine, ResultsAsTextAndErrorsWithThePrefix) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string document = dir.Write("s.snp", SmallSnapshot);
    const XQueryRunResult names = runXQueryToString("for $s in //Service return string($s/@Name)", document);
    ASSERT_TRUE(names.succeeded) << names.errorText;
    EXPECT_EQ(names.resultText, " B  A B");
    EXPECT_TRUE(names.errorText.empty());

    const XQueryRunResult empty = runXQueryToString("()", document);
    EXPECT_TRUE(empty.succeeded);
    EXPECT_EQ(empty.resultText, "");

    const XQueryRunResult broken = runXQueryToFile("for $x in", document, dir.File("o.xml"));
    EXPECT_FALSE(broken.succeeded);
    EXPECT_EQ(broken.errorText.rfind("Altova XQuery Error:\n", 0), 0u);
    EXPECT_GT(broken.errorText.size(), std::string(EngineErrorPrefix).size());
    EXPECT_TRUE(broken.resultText.empty());
}

TEST(XQueryEngine, BlankAfterTheDollarSignAndTheDocumentAsContextItem) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string document = dir.Write("s.snp", SmallSnapshot);
    // A one-letter value reads as a path below the document; "." is the document itself.
    const XQueryRunResult result =
        runXQueryToString("let $ v:=A\nlet $w:=.\nreturn concat(count($ v), '/', count($w/SnapList))", document);
    ASSERT_TRUE(result.succeeded) << result.errorText;
    EXPECT_EQ(result.resultText, "0/1");
    // Bytes that are no UTF-8 reach the engine as Latin-1 letters: a valid name.
    const XQueryRunResult latin = runXQueryToString("let $\xFF:=\xFF return count($\xFF)", document);
    ASSERT_TRUE(latin.succeeded) << latin.errorText;
    EXPECT_EQ(latin.resultText, "0");
    EXPECT_EQ(engineQueryText("a\xFF\xC3\xA4"), "a\xC3\xBF\xC3\xA4");
}

TEST(XQueryEngine, DocumentsWithBlanksHashPercentAndUmlautsFilterLikePlainOnes) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string plain = dir.Write("s.snp", SmallSnapshot);
    std::filesystem::create_directory(dir.File("dir \xC3\xBC #1 %41"));
    const std::string odd = dir.Write("dir \xC3\xBC #1 %41/t #2 %41 x.snp", SmallSnapshot);
    zdt::MessageList messages;
    zdt::OperationControl control;
    std::set<std::string> plainNames, oddNames;
    ASSERT_EQ(listSnapshotServices(plain, "", plainNames, messages, control), zdt::OperationStatus::Done);
    ASSERT_EQ(listSnapshotServices(odd, dir.File("dir \xC3\xBC #1 %41"), oddNames, messages, control),
              zdt::OperationStatus::Done);
    EXPECT_EQ(plainNames, (std::set<std::string>{"A", "B"}));
    EXPECT_EQ(oddNames, plainNames);

    const std::string oddOut = dir.File("dir \xC3\xBC #1 %41/out #3 %41.snp");
    ASSERT_EQ(runSnapshotFilter({plain, dir.File("plain-out.snp"), ""}, {"B"}, messages, control),
              zdt::OperationStatus::Done);
    ASSERT_EQ(runSnapshotFilter({odd, oddOut, ""}, {"B"}, messages, control), zdt::OperationStatus::Done);
    EXPECT_TRUE(messages.messages().empty());
    const std::string result = TempDir::Read(oddOut);
    EXPECT_EQ(result, TempDir::Read(dir.File("plain-out.snp")));
    EXPECT_EQ(countOf(result, "<Service Name=\"B\"/>"), 1u);
    EXPECT_EQ(countOf(result, "<LogicalLink Name=\"L\">"), 1u);
}

TEST(XQueryEngine, CancelKillsTheEngineAndLeavesNothingAtTheOutput) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string document = dir.Write("s.snp", SmallSnapshot);
    zdt::OperationControl control;
    std::thread canceller([&control] {
        std::this_thread::sleep_for(std::chrono::milliseconds(800));
        control.requestCancel();
    });
    const auto start = std::chrono::steady_clock::now();
    // Runs for minutes unless stopped.
    const XQueryRunResult result = runXQueryToFile("<r>{sum(for $i in 1 to 2000000000 return $i mod 7)}</r>", document,
                                                   dir.File("o.xml"), &control);
    canceller.join();
    EXPECT_FALSE(result.succeeded);
    EXPECT_TRUE(result.errorText.empty()) << result.errorText;
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));

    zdt::MessageList messages;
    EXPECT_EQ(runSnapshotFilter({document, dir.File("out.snp"), ""}, {"A"}, messages, control),
              zdt::OperationStatus::Cancelled);
    EXPECT_TRUE(messages.messages().empty());
    EXPECT_FALSE(std::filesystem::exists(dir.File("out.snp")));
}

TEST(XQueryEngine, RunningOutOfMemoryIsAClearMessage) {
    SKIP_WITHOUT_XQUERY_ENGINE();
    TempDir dir;
    const std::string document = dir.Write("s.snp", SmallSnapshot);
    // Some 600 million characters on a small document's heap.
    const XQueryRunResult result =
        runXQueryToString("string-join(for $i in 1 to 60000000 return 'abcdefghij', '')", document);
    EXPECT_FALSE(result.succeeded);
    EXPECT_EQ(result.errorText.rfind("Altova XQuery Error:\nThe query needs more memory than the ", 0), 0u)
        << result.errorText;
}

TEST(XQueryEngine, HeapFollowsTheDocumentWithinTheMachine) {
    constexpr std::uint64_t MiB = 1024 * 1024;
    EXPECT_EQ(engineHeapMegabytes(16384 * MiB, 0), 256u);
    EXPECT_EQ(engineHeapMegabytes(16384 * MiB, 100 * MiB), 856u);
    EXPECT_EQ(engineHeapMegabytes(8192 * MiB, 2048 * MiB), 6144u);
    EXPECT_EQ(engineHeapMegabytes(0, 10 * MiB), 316u);
    EXPECT_EQ(engineHeapMegabytes(200 * MiB, 10 * MiB), 256u);
    EXPECT_GT(machineMemoryBytes(), 0u);
}

} // namespace

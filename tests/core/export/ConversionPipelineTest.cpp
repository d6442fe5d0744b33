#include "export/ConversionProxy.h"
#include "export/SnpConversion.h"
#include "export/XpvtNewConversion.h"
#include "export/XpvtOldConversion.h"

#include "core/export/ExportInstallation.h"

#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "common/ChildProcess.h"
#include "export/ChunkRowCount.h"
#include "support/RecordingMessages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <numeric>
#include <sstream>
#include <thread>

namespace {

namespace fs = std::filesystem;
using zdt::OperationStatus;
using ZDTAnalyzer::ConversionKind;
using ZDTAnalyzer::ExportFormat;

constexpr const char* Html702 = "xsl/xpvt_7_02/html/xpvt_to_html.xsl";
const std::string SmallTrace = "<?xml version=\"1.0\"?>\n<ProcessValueTrace><Description><Schema>7,02</Schema>"
                               "</Description>\n<Trace><StartTrace/><Result/><StopTrace/></Trace>\n"
                               "</ProcessValueTrace>\n";

class ConversionPipelineTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!ExportInstallation::HasTools())
            GTEST_SKIP() << "Xalan is not installed";
    }

    OperationStatus run(ZDTAnalyzer::Conversion& conversion, ExportFormat format, const std::string& input,
                        const std::string& output) {
        zdt::OperationControl control;
        return conversion.convert(format, input, output, messages, control);
    }

    // The files of `folder`, hidden ones included.
    static std::vector<std::string> filesIn(const std::string& folder) {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    // Cancels `control` once the tool has written its process id to `pidFile`.
    static std::thread cancelOnceStarted(const std::string& pidFile, zdt::OperationControl& control) {
        return std::thread([pidFile, &control] {
            while (!fs::exists(pidFile) || TempDir::Read(pidFile).empty())
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            control.requestCancel();
        });
    }

    // A tool that would run for half a minute and tells where it runs.
    static std::string sleepingScript(const std::string& pidFile) {
        return "#!/bin/sh\necho $$ > '" + pidFile + "'\nexec sleep 30\n";
    }

    ExportInstallation installation;
    TempDir out;
    RecordingMessages messages;
};

TEST_F(ConversionPipelineTest, HtmlReachesTheToolWithoutTheSecondInstructionWhateverTheNames) {
    installation.write(Html702, ChildListSheet());
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    const std::string odd = "blank 'quote' \"double\" #hash %25 \xC3\xA9t\xC3\xA9";
    fs::create_directories(out.File(odd));
    const std::string input =
        out.Write(odd + "/in " + odd + ".xpvt", "<?xml version=\"1.0\"?>\n<?xml-stylesheet href=\"elsewhere.xsl\"?>\n" +
                                                    SmallTrace.substr(SmallTrace.find('<', 2)));
    const std::string output = out.File(odd + "/out " + odd + ".html");

    EXPECT_EQ(run(conversion, ExportFormat::Html, input, output), OperationStatus::Done);
    EXPECT_EQ(TempDir::Read(output), "HEAD instructions=0\n@1\nStartTrace\nResult\nStopTrace\nTAIL\n");
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_EQ(filesIn(out.File(odd)),
              (std::vector<std::string>{fs::path(input).filename().string(), fs::path(output).filename().string()}));
}

TEST_F(ConversionPipelineTest, CsvTakesTheSheetOfTheListSeparator) {
    installation.write("xsl/snp/csv/snp_to_csv.xsl", FixedTextSheet("comma"));
    installation.write("xsl/snp/csv/snp_to_csv1.xsl", FixedTextSheet("semicolon"));
    const std::string input = out.Write("s.snp", "<?xml version=\"1.0\"?>\n<SnapList><SnapShot/></SnapList>");
    for (const auto& [separator, expected] : {std::pair{',', "comma"}, std::pair{';', "semicolon"}}) {
        ZDTAnalyzer::SnpConversion conversion(installation.settings(separator));
        EXPECT_EQ(run(conversion, ExportFormat::Csv, input, out.File("s.csv")), OperationStatus::Done);
        EXPECT_EQ(TempDir::Read(out.File("s.csv")), expected);
    }
}

TEST_F(ConversionPipelineTest, RtfRunsTheSecondSheetOverTheFirstOnesOutput) {
    installation.write("xsl/xpvt/rtf/xpvt_to_xhtml_for_rtf.xsl",
                       R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:template match="/"><html><xsl:for-each select="//Trace/*"><p><xsl:value-of select="name()"/></p></xsl:for-each></html></xsl:template>
</xsl:stylesheet>)XSL");
    installation.write("xsl/xpvt/rtf/xpvt_to_xhtml_for_rtf_to_rtf.xsl",
                       R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="text"/><xsl:template match="/">{\rtf1 <xsl:for-each select="/html/p"><xsl:value-of select="."/>\par </xsl:for-each>}</xsl:template>
</xsl:stylesheet>)XSL");
    ZDTAnalyzer::XpvtOldConversion conversion(installation.settings());
    EXPECT_EQ(run(conversion, ExportFormat::Rtf, out.Write("t.xpvt", SmallTrace), out.File("t.rtf")),
              OperationStatus::Done);
    EXPECT_EQ(TempDir::Read(out.File("t.rtf")), "{\\rtf1 StartTrace\\par Result\\par StopTrace\\par }");
}

TEST_F(ConversionPipelineTest, AFailingSheetShowsTheToolsStreamsAndLeavesTheChosenFileAlone) {
    installation.write(Html702, FailingSheet("sheet gave up"));
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    const std::string output = out.Write("kept.html", "earlier export");
    EXPECT_EQ(run(conversion, ExportFormat::Html, out.Write("t.xpvt", SmallTrace), output), OperationStatus::Failed);
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_EQ(messages.shown[0].title, "E011_001 [XSL Transformation failed.]");
    EXPECT_EQ(messages.shown[0].icon, zdt::MessageIcon::Warning);
    const std::string& text = messages.shown[0].text;
    EXPECT_EQ(text.rfind("Error messages:\n\nstandard output stream:\n", 0), 0u) << text;
    EXPECT_NE(text.find("\nstandard error stream:\n"), std::string::npos) << text;
    EXPECT_NE(text.find("sheet gave up", text.find("standard error stream:")), std::string::npos) << text;
    EXPECT_EQ(TempDir::Read(output), "earlier export");
    EXPECT_EQ(filesIn(out.Path().string()), (std::vector<std::string>{"kept.html", "t.xpvt"}));
}

TEST_F(ConversionPipelineTest, WhatTheToolCannotReadEndsInItsOwnWords) {
    installation.write(Html702, ChildListSheet());
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    const std::string withoutDeclaration = SmallTrace.substr(SmallTrace.find('<', 2));
    const std::pair<const char*, std::string> inputs[] = {
        // Its third "<" is lost on the way, so the tool sees a broken document.
        {"no declaration", out.Write("bare.xpvt", withoutDeclaration)},
        {"deleted after opening", out.File("gone.xpvt")},
    };
    for (const auto& [name, input] : inputs) {
        SCOPED_TRACE(name);
        messages.shown.clear();
        EXPECT_EQ(run(conversion, ExportFormat::Html, input, out.File("x.html")), OperationStatus::Failed);
        ASSERT_EQ(messages.shown.size(), 1u);
        EXPECT_EQ(messages.shown[0].title, "E011_001 [XSL Transformation failed.]");
        EXPECT_GT(messages.shown[0].text.size(), std::string("Error messages:\n\n").size() + 50);
        EXPECT_FALSE(fs::exists(out.File("x.html")));
    }
    messages.shown.clear();
    EXPECT_EQ(run(conversion, ExportFormat::Html, out.Write("t.xpvt", SmallTrace), out.File("no/folder/x.html")),
              OperationStatus::Failed);
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_NE(messages.shown[0].text.find("no/folder"), std::string::npos) << messages.shown[0].text;
}

TEST_F(ConversionPipelineTest, AScriptThatCannotStartShowsItsErrorCodeAndRtfStillTriesItsSecondStage) {
    fs::remove(installation.analyzerDir() + "xalan.sh");
    ZDTAnalyzer::XpvtOldConversion conversion(installation.settings());
    const std::string input = out.Write("t.xpvt", SmallTrace);
    EXPECT_EQ(run(conversion, ExportFormat::Html, input, out.File("t.html")), OperationStatus::Failed);
    EXPECT_EQ(run(conversion, ExportFormat::Rtf, input, out.File("t.rtf")), OperationStatus::Failed);
    ASSERT_EQ(messages.shown.size(), 3u);
    for (const zdt::UserMessage& message : messages.shown) {
        EXPECT_EQ(message.title, "E006_001 [Create process failed.]");
        EXPECT_EQ(message.text, "Error code: 2 !");
    }
    EXPECT_EQ(filesIn(out.Path().string()), std::vector<std::string>{"t.xpvt"});
}

TEST_F(ConversionPipelineTest, KindsWithoutConversionRefuseThroughTheProxy) {
    ZDTAnalyzer::ConversionProxy proxy;
    zdt::OperationControl control;
    try {
        proxy.toPdf("in", "out", messages, control);
        FAIL() << "no exception";
    } catch (const ZDTAnalyzer::Conversion::Exception& error) {
        EXPECT_STREQ(error.what(), "Converion of this type not implemented yet.");
    }
    installation.write(Html702, FixedTextSheet("forwarded"));
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    proxy.setTarget(&conversion);
    EXPECT_EQ(run(proxy, ExportFormat::Html, out.Write("t.xpvt", SmallTrace), out.File("t.html")),
              OperationStatus::Done);
    EXPECT_EQ(TempDir::Read(out.File("t.html")), "forwarded");
}

// Pieces of a big trace, run one after the other, give the whole run's output: one head,
// every child in order, one tail, and line numbers that go on from piece to piece.
TEST_F(ConversionPipelineTest, AChunkedRunGivesTheWholeRunsOutput) {
    installation.write(Html702, ChildListSheet());
    zdtgen::XpvtTraceOptions options;
    options.results = 120;
    const std::string trace = zdtgen::MakeXpvtTrace(options);
    const std::string input = out.Write("big.xpvt", trace);

    ZDTAnalyzer::XpvtNewConversion whole(installation.settings());
    ASSERT_EQ(run(whole, ExportFormat::Html, input, out.File("whole.html")), OperationStatus::Done);
    ZDTAnalyzer::ConversionSettings chunked = installation.settings();
    chunked.chunkBytes = trace.size() / 6;
    ZDTAnalyzer::XpvtNewConversion pieces(chunked);
    ASSERT_EQ(run(pieces, ExportFormat::Html, input, out.File("pieces.html")), OperationStatus::Done)
        << (messages.shown.empty() ? std::string() : messages.shown.back().title + ": " + messages.shown.back().text);
    EXPECT_TRUE(messages.shown.empty());

    const auto withoutMarks = [](const std::string& text, std::vector<long>* marks) {
        std::string kept;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            if (line.rfind('@', 0) == 0)
                marks->push_back(std::stol(line.substr(1)));
            else
                kept += line + "\n";
        }
        return kept;
    };
    std::vector<long> wholeMarks;
    std::vector<long> pieceMarks;
    const std::string wholeText = withoutMarks(TempDir::Read(out.File("whole.html")), &wholeMarks);
    EXPECT_EQ(withoutMarks(TempDir::Read(out.File("pieces.html")), &pieceMarks), wholeText);
    EXPECT_GT(std::count(wholeText.begin(), wholeText.end(), '\n'), 120);
    EXPECT_EQ(wholeMarks, std::vector<long>{1});
    ASSERT_GE(pieceMarks.size(), 5u);
    EXPECT_EQ(pieceMarks.front(), 1);
    EXPECT_TRUE(std::is_sorted(pieceMarks.begin(), pieceMarks.end()) &&
                std::adjacent_find(pieceMarks.begin(), pieceMarks.end()) == pieceMarks.end());
    // The list makes several rows per result, so the last piece starts far down.
    EXPECT_GT(pieceMarks.back(), 120);
}

TEST_F(ConversionPipelineTest, ACancelEndsTheToolAndLeavesNothing) {
    const std::string pidFile = out.File("tool.pid");
    installation.write("xalan.sh", sleepingScript(pidFile));
    fs::permissions(installation.analyzerDir() + "xalan.sh", fs::perms::owner_all);
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    const std::string input = out.Write("t.xpvt", SmallTrace);

    zdt::OperationControl control;
    std::thread canceller = cancelOnceStarted(pidFile, control);
    const auto start = std::chrono::steady_clock::now();
    const OperationStatus status = conversion.toHtml(input, out.File("t.html"), messages, control);
    canceller.join();
    EXPECT_EQ(status, OperationStatus::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(messages.shown.empty());
    const pid_t tool = static_cast<pid_t>(std::stol(TempDir::Read(pidFile)));
    EXPECT_NE(::kill(tool, 0), 0) << "the tool outlived the cancel";
    EXPECT_EQ(filesIn(out.Path().string()), (std::vector<std::string>{"t.xpvt", "tool.pid"}));
}

} // namespace

namespace {

TEST_F(ConversionPipelineTest, SheetsLearnTheDocumentsPathWhateverQuotesItHolds) {
    installation.write(Html702, R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:param name="file-name" select="''"/><xsl:output method="text"/>
<xsl:template match="/"><xsl:value-of select="$file-name"/></xsl:template></xsl:stylesheet>)XSL");
    ZDTAnalyzer::XpvtNewConversion conversion(installation.settings());
    for (const std::string name : {"plain", "it's", "say \"hi\"", "it's \"both\" 'twice'"}) {
        const std::string input = out.Write(name + ".xpvt", SmallTrace);
        ASSERT_EQ(run(conversion, ExportFormat::Html, input, out.File("t.html")), OperationStatus::Done) << name;
        EXPECT_EQ(TempDir::Read(out.File("t.html")), input);
    }
}

// One page sequence per child of the trace; the document's start and end only in the pieces
// that hold them, so that the pieces' outputs join into one document. `failOn` names a
// child whose piece writes an element the formatter refuses.
std::string PagePerChildSheet(const std::string& failOn = "") {
    return R"XSL(<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
 xmlns:fo="http://www.w3.org/1999/XSL/Format">
<xsl:param name="chunk" select="'whole'"/><xsl:output method="xml" omit-xml-declaration="yes"/>
<xsl:template match="/"><xsl:if test="$chunk = 'whole' or $chunk = 'first'"><xsl:text disable-output-escaping="yes"
>&lt;fo:root xmlns:fo="http://www.w3.org/1999/XSL/Format"&gt;</xsl:text><fo:layout-master-set><fo:simple-page-master
 master-name="p" page-width="297mm" page-height="210mm" margin="1cm"><fo:region-body/></fo:simple-page-master>
</fo:layout-master-set></xsl:if>
<xsl:if test="/*/Trace/*[@n = ')XSL" +
           failOn + R"XSL(']"><fo:no-such-thing/></xsl:if>
<xsl:for-each select="/*/Trace/*"><fo:page-sequence master-reference="p"><fo:flow flow-name="xsl-region-body">
<fo:block>Page <fo:page-number/> of <xsl:value-of select="@n"/></fo:block></fo:flow></fo:page-sequence></xsl:for-each>
<xsl:if test="$chunk = 'whole' or $chunk = 'last'"><xsl:text disable-output-escaping="yes">&lt;/fo:root&gt;</xsl:text>
</xsl:if></xsl:template></xsl:stylesheet>)XSL";
}

// Nine children of a 7.01 trace, cut into three pieces by the settings it returns.
std::string NineChildTrace() {
    std::string trace = "<?xml version=\"1.0\"?>\n<ProcessValueTrace><Description/><Trace>";
    for (int child = 1; child <= 9; ++child)
        trace += "\n<Result n=\"" + std::to_string(child) + "\">" + std::string(200, 'x') + "</Result>";
    return trace + "\n</Trace></ProcessValueTrace>\n";
}

std::string PdfText(const std::string& pdf) {
    zdt::ChildProcessCommand command;
    command.arguments = {"pdftotext", "-layout", pdf, "-"};
    command.standardOutput = zdt::ChildStream::capture();
    return zdt::RunChildProcess(command, nullptr).standardOutput;
}

// The pieces stream into one formatter, whose page numbers run through the whole document.
TEST_F(ConversionPipelineTest, APdfInPiecesIsOneDocumentWithPagesNumberedThrough) {
    if (!ExportInstallation::HasPdfTools())
        GTEST_SKIP() << "FOP or poppler-utils are not installed";
    installation.write("xsl/xpvt/pdf/xpvt_to_fo.xsl", PagePerChildSheet());
    const std::string trace = NineChildTrace();
    ZDTAnalyzer::ConversionSettings settings = installation.settings();
    settings.pdfChunkBytes = trace.size() / 3;
    ZDTAnalyzer::XpvtOldConversion conversion(settings);
    const std::string output = out.File("trace \xC3\xBC.pdf");

    ASSERT_EQ(run(conversion, ExportFormat::Pdf, out.Write("t.xpvt", trace), output), OperationStatus::Done)
        << (messages.shown.empty() ? "" : messages.shown[0].text);
    const std::string text = PdfText(output);
    std::size_t at = 0;
    for (int page = 1; page <= 9; ++page) {
        const std::string line = "Page " + std::to_string(page) + " of " + std::to_string(page);
        at = text.find(line, at);
        ASSERT_NE(at, std::string::npos) << line << " in\n" << text;
    }
    EXPECT_EQ(std::count(text.begin(), text.end(), '\f'), 9);
    EXPECT_EQ(filesIn(out.Path().string()), (std::vector<std::string>{"t.xpvt", "trace \xC3\xBC.pdf"}));
    for (const std::string& name : filesIn(installation.temporaryDirectory()))
        EXPECT_EQ(name.find(".fo"), std::string::npos) << name;
}

// A formatter that refuses a piece in the middle, one that never reads its input, and one
// that is cancelled while it waits: each run ends, with the kind's box where the tool failed,
// and leaves no output behind.
TEST_F(ConversionPipelineTest, APdfInPiecesEndsCleanlyWhateverTheFormatterDoes) {
    const std::string trace = NineChildTrace();
    ZDTAnalyzer::ConversionSettings settings = installation.settings();
    settings.pdfChunkBytes = trace.size() / 3;
    ZDTAnalyzer::XpvtOldConversion conversion(settings);
    const std::string input = out.Write("t.xpvt", trace);

    if (ExportInstallation::HasPdfTools()) {
        installation.write("xsl/xpvt/pdf/xpvt_to_fo.xsl", PagePerChildSheet("5"));
        EXPECT_EQ(run(conversion, ExportFormat::Pdf, input, out.File("refused.pdf")), OperationStatus::Failed);
        ASSERT_EQ(messages.shown.size(), 1u);
        EXPECT_EQ(messages.shown[0].title, "E008_009 [Wrong file type]");
        EXPECT_NE(messages.shown[0].text.find("no-such-thing"), std::string::npos) << messages.shown[0].text;
        messages.shown.clear();
    }

    installation.write("xsl/xpvt/pdf/xpvt_to_fo.xsl", PagePerChildSheet());
    for (const char* exitCode : {"3", "0"}) {
        installation.write("fo2pdf.sh", "#!/bin/sh\necho 'no formatter here' >>\"$4\"\necho > \"$2\"\nexit " +
                                            std::string(exitCode) + "\n");
        fs::permissions(installation.analyzerDir() + "fo2pdf.sh", fs::perms::owner_all);
        EXPECT_EQ(run(conversion, ExportFormat::Pdf, input, out.File("unread.pdf")), OperationStatus::Failed);
        ASSERT_EQ(messages.shown.size(), 1u) << exitCode;
        EXPECT_EQ(messages.shown[0].title, "E008_009 [Wrong file type]");
        EXPECT_NE(messages.shown[0].text.find("no formatter here"), std::string::npos) << messages.shown[0].text;
        messages.shown.clear();
    }

    const std::string pidFile = out.File("formatter.pid");
    installation.write("fo2pdf.sh", sleepingScript(pidFile));
    zdt::OperationControl control;
    std::thread canceller = cancelOnceStarted(pidFile, control);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(conversion.toPdf(input, out.File("cancelled.pdf"), messages, control), OperationStatus::Cancelled);
    canceller.join();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_TRUE(messages.shown.empty());
    EXPECT_NE(::kill(static_cast<pid_t>(std::stol(TempDir::Read(pidFile))), 0), 0)
        << "the formatter outlived the cancel";

    EXPECT_EQ(filesIn(out.Path().string()), (std::vector<std::string>{"formatter.pid", "t.xpvt"}));
    for (const std::string& name : filesIn(installation.temporaryDirectory()))
        EXPECT_EQ(name.find(".fo"), std::string::npos) << name;
}

TEST_F(ConversionPipelineTest, AFailedPdfShowsTheBoxOfItsKind) {
    installation.write("xsl/snp/pdf/snp_to_fo.xsl", FailingSheet("no fo today"));
    installation.write("xsl/xpvt_7_02/pdf/xpvt_to_fo.xsl", FailingSheet("no fo today"));
    const std::string snapshot = out.Write("s.snp", "<?xml version=\"1.0\"?>\n<SnapList><SnapShot/></SnapList>");
    ZDTAnalyzer::SnpConversion snp(installation.settings());
    ZDTAnalyzer::XpvtNewConversion xpvt(installation.settings());
    EXPECT_EQ(run(snp, ExportFormat::Pdf, snapshot, out.File("s.pdf")), OperationStatus::Failed);
    EXPECT_EQ(run(xpvt, ExportFormat::Pdf, out.Write("t.xpvt", SmallTrace), out.File("t.pdf")),
              OperationStatus::Failed);
    ASSERT_EQ(messages.shown.size(), 2u);
    EXPECT_EQ(messages.shown[0].title, "E007_002 [Java Conversion Failed]");
    EXPECT_EQ(messages.shown[0].text.rfind("Java conversion application errors:\n\nstandard output stream:\n", 0), 0u);
    EXPECT_EQ(messages.shown[1].title, "E008_009 [Wrong file type]");
    EXPECT_EQ(messages.shown[1].text.rfind("The file does not have SNP content.standard output stream:\n", 0), 0u);
    for (const zdt::UserMessage& message : messages.shown)
        EXPECT_NE(message.text.find("no fo today", message.text.find("standard error stream:\n")), std::string::npos)
            << message.text;
    EXPECT_EQ(filesIn(out.Path().string()), (std::vector<std::string>{"s.snp", "t.xpvt"}));
}

// The line numbers at the start of the rows of a PDF's text, in order: a number right
// under the "Line" title, within the width of that column.
std::vector<long> PdfLineNumbers(const std::string& text) {
    std::vector<long> numbers;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t digits = line.find_first_not_of(' ');
        if (digits == std::string::npos || digits > 10 || !std::isdigit(static_cast<unsigned char>(line[digits])))
            continue;
        std::size_t end = digits;
        while (end < line.size() && std::isdigit(static_cast<unsigned char>(line[end])))
            ++end;
        if (end <= 12 && (end == line.size() || line[end] == ' '))
            numbers.push_back(std::stol(line.substr(digits, end - digits)));
    }
    return numbers;
}

// The installation's FO sheets over a document in pieces: every row of the list once, in
// its order, on pages numbered through, for each family.
TEST_F(ConversionPipelineTest, TheRealPdfOfADocumentInPiecesShowsEveryRowOnceInOrder) {
    if (!ExportInstallation::HasPdfTools())
        GTEST_SKIP() << "FOP or poppler-utils are not installed";
    installation.copyRealSheets();
    zdtgen::SnapshotOptions snapshots;
    snapshots.snapshots = 20;
    zdtgen::XpvtTraceOptions xpvt702;
    xpvt702.schema = zdtgen::XpvtSchema::V702;
    xpvt702.results = 30;
    const std::vector<std::pair<ConversionKind, std::string>> documents{
        {ConversionKind::Snapshot, out.Write("list.snp", zdtgen::MakeSnapshot(snapshots))},
        {ConversionKind::Xpvt702, out.Write("trace.xpvt", zdtgen::MakeXpvtTrace(xpvt702))}};
    for (const auto& [kind, input] : documents) {
        ZDTAnalyzer::ConversionSettings settings = installation.settings();
        settings.pdfChunkBytes = fs::file_size(input) / 4;
        std::unique_ptr<ZDTAnalyzer::Conversion> conversion;
        if (kind == ConversionKind::Snapshot)
            conversion = std::make_unique<ZDTAnalyzer::SnpConversion>(settings);
        else
            conversion = std::make_unique<ZDTAnalyzer::XpvtNewConversion>(settings);
        const std::string output = input + ".pdf";
        ASSERT_EQ(run(*conversion, ExportFormat::Pdf, input, output), OperationStatus::Done)
            << input << (messages.shown.empty() ? "" : ": " + messages.shown[0].text);

        const std::optional<zdt::RowCount> rows =
            ZDTAnalyzer::CountListRows(input, kind, installation.temporaryDirectory(), messages);
        ASSERT_TRUE(rows && *rows > 100) << input;
        std::vector<long> expected(static_cast<std::size_t>(*rows));
        std::iota(expected.begin(), expected.end(), 1L);
        const std::string text = PdfText(output);
        EXPECT_EQ(PdfLineNumbers(text), expected) << input;
        const long pages = std::count(text.begin(), text.end(), '\f');
        EXPECT_GT(pages, 2) << input;
        std::size_t at = 0;
        for (long page = 1; page <= pages; ++page) {
            at = text.find("Page " + std::to_string(page) + "\n", at);
            ASSERT_NE(at, std::string::npos) << "Page " << page << " of " << input;
        }
    }
}

} // namespace

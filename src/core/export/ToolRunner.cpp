#include "export/ToolRunner.h"

#include "common/ChildProcess.h"
#include "export/TemporaryName.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace ZDTAnalyzer {
namespace {

std::string fileText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::string formatted(const char* format, int value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

} // namespace

std::string XPathStringLiteral(const std::string& text) {
    if (text.find('\'') == std::string::npos)
        return "'" + text + "'";
    if (text.find('"') == std::string::npos)
        return "\"" + text + "\"";
    // Both kinds of quote: XPath 1.0 has no escape, so the pieces are joined.
    std::string expression = "concat(''";
    std::size_t start = 0;
    for (std::size_t quote; (quote = text.find('\'', start)) != std::string::npos; start = quote + 1)
        expression += ", '" + text.substr(start, quote - start) + "', \"'\"";
    return expression + ", '" + text.substr(start) + "')";
}

void AppendSheetParameters(std::vector<std::string>& arguments, const SheetParameters& parameters) {
    for (const auto& [name, value] : parameters) {
        arguments.push_back(name);
        arguments.push_back(value);
    }
}

ToolRunner::ToolRunner(const ConversionSettings& settings, ConversionKind kind, zdt::MessageSink& messages,
                       zdt::OperationControl& control)
    : m_settings(settings), m_kind(kind), m_messages(messages), m_control(control) {
    // The temporary files of every step go there; a run's directory that went missing
    // (or was never made, as for the command line's private one) is made again.
    std::error_code ignored;
    if (!m_settings.temporaryDirectory.empty())
        std::filesystem::create_directories(m_settings.temporaryDirectory, ignored);
}

std::string ToolRunner::temporary(const std::string& extension) const {
    return temporaryName(m_settings.temporaryDirectory, extension);
}

void ToolRunner::showNotStarted(int error) {
    m_messages.showMessage(
        {CreateProcessFailedTitle, formatted(CreateProcessFailedText, error), zdt::MessageIcon::Warning});
}

ToolRunner::FailureBox ToolRunner::pdfFailureBox() const {
    if (m_kind == ConversionKind::Snapshot)
        return {SnpPdfFailedTitle, SnpPdfFailedText, false};
    return {XpvtPdfFailedTitle, XpvtPdfFailedText, false};
}

ProcessOutcome ToolRunner::runScript(std::vector<std::string> arguments, const std::string& standardOutput,
                                     const std::string& standardError, const FailureBox& box) {
    return report(runProcess(arguments, &m_control), standardOutput, standardError, box);
}

ProcessOutcome ToolRunner::report(const ProcessRun& run, const std::string& standardOutput,
                                  const std::string& standardError, const FailureBox& box) {
    if (run.outcome == ProcessOutcome::NotStarted) {
        showNotStarted(run.startError);
    } else if (run.outcome == ProcessOutcome::Failed) {
        std::string text = std::string(box.text) + "standard output stream:\n" + fileText(standardOutput);
        if (box.lineFeedBetween)
            text += "\n";
        text += "standard error stream:\n" + fileText(standardError);
        m_messages.showMessage({box.title, text, zdt::MessageIcon::Warning});
    }
    return run.outcome;
}

ProcessOutcome ToolRunner::xalan(const std::string& input, const std::string& sheet, const std::string& output,
                                 const SheetParameters& parameters) {
    return runXalan(input, sheet, output, parameters, {TransformationFailedTitle, TransformationFailedText, true});
}

ProcessOutcome ToolRunner::xalanForPdf(const std::string& input, const std::string& sheet, const std::string& output,
                                       const SheetParameters& parameters) {
    return runXalan(input, sheet, output, parameters, pdfFailureBox());
}

ProcessOutcome ToolRunner::runXalan(const std::string& input, const std::string& sheet, const std::string& output,
                                    const SheetParameters& parameters, const FailureBox& box) {
    const std::string standardOutput = temporary(TmpTxtExtension);
    const std::string standardError = temporary(TmpTxtExtension);
    std::vector<std::string> arguments{
        m_settings.paths.xalanScript(), input, sheet, output, standardOutput, standardError};
    AppendSheetParameters(arguments, parameters);
    return runScript(std::move(arguments), standardOutput, standardError, box);
}

ProcessOutcome ToolRunner::pdf(const std::string& input, const std::string& output, const SheetParameters& parameters) {
    const std::string standardOutput = temporary(TmpTxtExtension);
    const std::string standardError = temporary(TmpTxtExtension);
    std::vector<std::string> arguments{m_settings.paths.sheets(m_kind).pdfScript, input, output, standardOutput,
                                       standardError};
    AppendSheetParameters(arguments, parameters);
    return runScript(std::move(arguments), standardOutput, standardError, pdfFailureBox());
}

ToolRunner::Formatter ToolRunner::formatter(const std::string& fo, const std::string& output) const {
    Formatter run{{}, temporary(TmpTxtExtension), temporary(TmpTxtExtension)};
    run.arguments = {m_settings.paths.formatterScript(), fo, output, run.standardOutput, run.standardError};
    return run;
}

ProcessOutcome ToolRunner::reportPdf(const ProcessRun& run, const Formatter& formatter) {
    return report(run, formatter.standardOutput, formatter.standardError, pdfFailureBox());
}

} // namespace ZDTAnalyzer

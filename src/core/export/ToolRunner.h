#pragma once

#include "common/Operation.h"
#include "export/ConversionPipeline.h"
#include "export/RunProcess.h"

#include <string>
#include <utility>
#include <vector>

namespace ZDTAnalyzer {

// Sheet parameters: names with XPath expressions ("'first'" is a string, "12" a number).
using SheetParameters = std::vector<std::pair<std::string, std::string>>;

// Runs the tools of one export and puts up each failure's box.
class ToolRunner {
public:
    ToolRunner(const ConversionSettings& settings, ConversionKind kind, zdt::MessageSink& messages,
               zdt::OperationControl& control);

    // Xalan with `sheet` from `input` to `output` through the installation's script.
    ProcessOutcome xalan(const std::string& input, const std::string& sheet, const std::string& output,
                         const SheetParameters& parameters = {});
    // Xalan as above, a failure shown in the box of the kind's PDF script: the step that
    // makes the XSL-FO of a document that goes to the formatter in pieces.
    ProcessOutcome xalanForPdf(const std::string& input, const std::string& sheet, const std::string& output,
                               const SheetParameters& parameters);
    // The kind's PDF script from `input` to `output`.
    ProcessOutcome pdf(const std::string& input, const std::string& output, const SheetParameters& parameters = {});
    // The formatter alone, from the XSL-FO at `fo` (a file or a named pipe) to `output`: its
    // command, to be run where the caller likes, and its capture files.
    struct Formatter {
        std::vector<std::string> arguments;
        std::string standardOutput;
        std::string standardError;
    };
    Formatter formatter(const std::string& fo, const std::string& output) const;
    // Puts up the box of the kind's PDF script for a formatter run that did not succeed.
    ProcessOutcome reportPdf(const ProcessRun& run, const Formatter& formatter);

    std::string temporary(const std::string& extension) const;
    zdt::MessageSink& messages() { return m_messages; }
    zdt::OperationControl& control() { return m_control; }

private:
    // The box a tool's failure puts up: its title, the text before the captured streams, and
    // whether a line feed stands between them.
    struct FailureBox {
        const char* title;
        const char* text;
        bool lineFeedBetween;
    };
    FailureBox pdfFailureBox() const;
    ProcessOutcome runXalan(const std::string& input, const std::string& sheet, const std::string& output,
                            const SheetParameters& parameters, const FailureBox& box);
    ProcessOutcome runScript(std::vector<std::string> arguments, const std::string& standardOutput,
                             const std::string& standardError, const FailureBox& box);
    ProcessOutcome report(const ProcessRun& run, const std::string& standardOutput, const std::string& standardError,
                          const FailureBox& box);
    void showNotStarted(int error);

    const ConversionSettings& m_settings;
    ConversionKind m_kind;
    zdt::MessageSink& m_messages;
    zdt::OperationControl& m_control;
};

// `text` as an XPath string expression, whatever quotes it holds.
std::string XPathStringLiteral(const std::string& text);

// Appends the sheet parameters to a script's arguments as name, value pairs.
void AppendSheetParameters(std::vector<std::string>& arguments, const SheetParameters& parameters);

} // namespace ZDTAnalyzer

#pragma once

#include "common/Operation.h"
#include "export/ConversionPipeline.h"
#include "export/RunProcess.h"

#include <optional>
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
    // The kind's PDF script from `input` to `output`.
    ProcessOutcome pdf(const std::string& input, const std::string& output, const SheetParameters& parameters = {});
    // Joins PDF files into `output`, in order.
    ProcessOutcome joinPdf(const std::vector<std::string>& parts, const std::string& output);
    // The number of pages of a PDF file; empty when it cannot be read.
    std::optional<unsigned> pdfPageCount(const std::string& pdfPath);

    std::string temporary(const std::string& extension) const;
    zdt::MessageSink& messages() { return m_messages; }
    zdt::OperationControl& control() { return m_control; }

private:
    ProcessOutcome runScript(std::vector<std::string> arguments, const std::string& standardOutput,
                             const std::string& standardError, const char* failureTitle, const std::string& failureText,
                             bool lineFeedBetween);
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

#include "export/XpvtOldConversion.h"

#include <utility>

namespace ZDTAnalyzer {

XpvtOldConversion::XpvtOldConversion(ConversionSettings settings)
    : m_pipeline(ConversionKind::Xpvt701, std::move(settings)) {}

zdt::OperationStatus XpvtOldConversion::toHtml(const std::string& inputPath, const std::string& outputPath,
                                               zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toHtml(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtOldConversion::toRtf(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toRtf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtOldConversion::toPdf(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toPdf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtOldConversion::toCsv(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toCsv(inputPath, outputPath, messages, control);
}

} // namespace ZDTAnalyzer

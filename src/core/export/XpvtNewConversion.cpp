#include "export/XpvtNewConversion.h"

#include <utility>

namespace ZDTAnalyzer {

XpvtNewConversion::XpvtNewConversion(ConversionSettings settings)
    : m_pipeline(ConversionKind::Xpvt702, std::move(settings)) {}

zdt::OperationStatus XpvtNewConversion::toHtml(const std::string& inputPath, const std::string& outputPath,
                                               zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toHtml(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtNewConversion::toRtf(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toRtf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtNewConversion::toPdf(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toPdf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus XpvtNewConversion::toCsv(const std::string& inputPath, const std::string& outputPath,
                                              zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toCsv(inputPath, outputPath, messages, control);
}

} // namespace ZDTAnalyzer

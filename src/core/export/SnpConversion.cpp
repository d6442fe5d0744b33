#include "export/SnpConversion.h"

#include <utility>

namespace ZDTAnalyzer {

SnpConversion::SnpConversion(ConversionSettings settings) : m_pipeline(ConversionKind::Snapshot, std::move(settings)) {}

zdt::OperationStatus SnpConversion::toHtml(const std::string& inputPath, const std::string& outputPath,
                                           zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toHtml(inputPath, outputPath, messages, control);
}

zdt::OperationStatus SnpConversion::toRtf(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toRtf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus SnpConversion::toPdf(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toPdf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus SnpConversion::toCsv(const std::string& inputPath, const std::string& outputPath,
                                          zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toCsv(inputPath, outputPath, messages, control);
}

} // namespace ZDTAnalyzer

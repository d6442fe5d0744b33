#include "export/PipelineConversion.h"

#include <utility>

namespace ZDTAnalyzer {

PipelineConversion::PipelineConversion(ConversionKind kind, ConversionSettings settings)
    : m_pipeline(kind, std::move(settings)) {}

zdt::OperationStatus PipelineConversion::toHtml(const std::string& inputPath, const std::string& outputPath,
                                                zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toHtml(inputPath, outputPath, messages, control);
}

zdt::OperationStatus PipelineConversion::toRtf(const std::string& inputPath, const std::string& outputPath,
                                               zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toRtf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus PipelineConversion::toPdf(const std::string& inputPath, const std::string& outputPath,
                                               zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toPdf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus PipelineConversion::toCsv(const std::string& inputPath, const std::string& outputPath,
                                               zdt::MessageSink& messages, zdt::OperationControl& control) {
    return m_pipeline.toCsv(inputPath, outputPath, messages, control);
}

} // namespace ZDTAnalyzer

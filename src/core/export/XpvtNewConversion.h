#pragma once

#include "export/Conversion.h"
#include "export/ConversionPipeline.h"

namespace ZDTAnalyzer {

// The exports of process value traces of schema 7.02.
class XpvtNewConversion final : public Conversion {
public:
    explicit XpvtNewConversion(ConversionSettings settings);

    zdt::OperationStatus toHtml(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                                zdt::OperationControl& control) override;
    zdt::OperationStatus toRtf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toPdf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toCsv(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;

    const ConversionPipeline& pipeline() const { return m_pipeline; }

private:
    ConversionPipeline m_pipeline;
};

} // namespace ZDTAnalyzer

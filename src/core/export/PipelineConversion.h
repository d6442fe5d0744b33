#pragma once

#include "export/Conversion.h"
#include "export/ConversionPipeline.h"

namespace ZDTAnalyzer {

// A conversion that runs every format through the pipeline of one kind of document; the
// kinds differ only in their sheets and scripts.
class PipelineConversion : public Conversion {
public:
    zdt::OperationStatus toHtml(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                                zdt::OperationControl& control) override;
    zdt::OperationStatus toRtf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toPdf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toCsv(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;

    const ConversionPipeline& pipeline() const { return m_pipeline; }

protected:
    PipelineConversion(ConversionKind kind, ConversionSettings settings);

private:
    ConversionPipeline m_pipeline;
};

} // namespace ZDTAnalyzer

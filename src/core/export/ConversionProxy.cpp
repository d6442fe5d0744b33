#include "export/ConversionProxy.h"

namespace ZDTAnalyzer {

Conversion& ConversionProxy::target() {
    if (m_target == nullptr)
        throw Exception(NotImplementedText);
    return *m_target;
}

zdt::OperationStatus ConversionProxy::toHtml(const std::string& inputPath, const std::string& outputPath,
                                             zdt::MessageSink& messages, zdt::OperationControl& control) {
    return target().toHtml(inputPath, outputPath, messages, control);
}

zdt::OperationStatus ConversionProxy::toRtf(const std::string& inputPath, const std::string& outputPath,
                                            zdt::MessageSink& messages, zdt::OperationControl& control) {
    return target().toRtf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus ConversionProxy::toPdf(const std::string& inputPath, const std::string& outputPath,
                                            zdt::MessageSink& messages, zdt::OperationControl& control) {
    return target().toPdf(inputPath, outputPath, messages, control);
}

zdt::OperationStatus ConversionProxy::toCsv(const std::string& inputPath, const std::string& outputPath,
                                            zdt::MessageSink& messages, zdt::OperationControl& control) {
    return target().toCsv(inputPath, outputPath, messages, control);
}

} // namespace ZDTAnalyzer

#include "xmldoc/ConversionProxy.h"

namespace zdtui {

Conversion& ConversionProxy::target() {
    if (m_target == nullptr)
        throw Exception(NotImplementedText);
    return *m_target;
}

void ConversionProxy::toHtml(const std::string& inputPath, const std::string& outputPath) {
    target().toHtml(inputPath, outputPath);
}

void ConversionProxy::toRtf(const std::string& inputPath, const std::string& outputPath) {
    target().toRtf(inputPath, outputPath);
}

void ConversionProxy::toPdf(const std::string& inputPath, const std::string& outputPath) {
    target().toPdf(inputPath, outputPath);
}

void ConversionProxy::toCsv(const std::string& inputPath, const std::string& outputPath) {
    target().toCsv(inputPath, outputPath);
}

} // namespace zdtui

#pragma once

#include "export/Conversion.h"

namespace ZDTAnalyzer {

// What a view holds: it forwards to the conversion of the document's kind, and a kind
// without one refuses every format.
class ConversionProxy final : public Conversion {
public:
    static constexpr const char* NotImplementedText = "Converion of this type not implemented yet.";

    void setTarget(Conversion* target) { m_target = target; }
    bool hasTarget() const { return m_target != nullptr; }

    zdt::OperationStatus toHtml(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                                zdt::OperationControl& control) override;
    zdt::OperationStatus toRtf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toPdf(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;
    zdt::OperationStatus toCsv(const std::string& inputPath, const std::string& outputPath, zdt::MessageSink& messages,
                               zdt::OperationControl& control) override;

private:
    // Throws Conversion::Exception when there is no target.
    Conversion& target();

    Conversion* m_target = nullptr;
};

} // namespace ZDTAnalyzer

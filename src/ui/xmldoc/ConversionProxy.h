#pragma once

#include "xmldoc/Conversion.h"

namespace zdtui {

// Forwards to the view's conversion; a kind without one refuses every format.
class ConversionProxy final : public Conversion {
public:
    static constexpr const char* NotImplementedText = "Converion of this type not implemented yet.";

    void setTarget(Conversion* target) { m_target = target; }
    bool hasTarget() const { return m_target != nullptr; }

    void toHtml(const std::string& inputPath, const std::string& outputPath) override;
    void toRtf(const std::string& inputPath, const std::string& outputPath) override;
    void toPdf(const std::string& inputPath, const std::string& outputPath) override;
    void toCsv(const std::string& inputPath, const std::string& outputPath) override;

private:
    Conversion& target();

    Conversion* m_target = nullptr;
};

} // namespace zdtui

#pragma once

#include "xmldoc/PrintPrintPreview.h"

namespace zdtui {

// Forwards to the view's printing; a kind without one refuses both.
class PrintPrintPreviewProxy final : public PrintPrintPreview {
public:
    static constexpr const char* PrintNotImplementedText = "Print not implemented for this type!";
    static constexpr const char* PreviewNotImplementedText = "Print preview not implemented for this type!";

    void setTarget(PrintPrintPreview* target) { m_target = target; }
    bool hasTarget() const { return m_target != nullptr; }

    void print(const std::string& pathName) override;
    void printPreview(const std::string& pathName) override;

private:
    PrintPrintPreview* m_target = nullptr;
};

} // namespace zdtui

#include "xmldoc/PrintPrintPreviewProxy.h"

namespace zdtui {

void PrintPrintPreviewProxy::print(const std::string& pathName) {
    if (m_target == nullptr)
        throw Exception(PrintNotImplementedText);
    m_target->print(pathName);
}

void PrintPrintPreviewProxy::printPreview(const std::string& pathName) {
    if (m_target == nullptr)
        throw Exception(PreviewNotImplementedText);
    m_target->printPreview(pathName);
}

} // namespace zdtui

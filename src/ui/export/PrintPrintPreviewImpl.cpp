#include "export/PrintPrintPreviewImpl.h"

#include "export/DesktopConversionSettings.h"
#include "export/HtmlPrinter.h"
#include "export/TemporaryName.h"

#include <QFile>

namespace zdtui {

PrintPrintPreviewImpl::PrintPrintPreviewImpl(ZDTAnalyzer::Conversion& conversion, OperationRunner runner,
                                             QWidget* parent)
    : m_conversion(conversion), m_runner(std::move(runner)), m_parent(parent) {}

void PrintPrintPreviewImpl::print(const std::string& pathName) {
    convertThen(pathName, false);
}

void PrintPrintPreviewImpl::printPreview(const std::string& pathName) {
    convertThen(pathName, true);
}

void PrintPrintPreviewImpl::convertThen(const std::string& pathName, bool preview) {
    const std::string page =
        ZDTAnalyzer::temporaryName(DesktopConversionSettings().temporaryDirectory, ZDTAnalyzer::HtmlExtension);
    const QString pagePath = QFile::decodeName(page.c_str());
    const QString label =
        (preview ? QStringLiteral("Preparing the preview of %1") : QStringLiteral("Preparing %1 for print"))
            .arg(QFile::decodeName(pathName.c_str()));
    const QPointer<QWidget> parent = m_parent;
    const OperationRunner runner = m_runner;
    m_runner(label, ZDTAnalyzer::ConversionJob(m_conversion, ZDTAnalyzer::ExportFormat::Html, pathName, page),
             [pagePath, preview, parent, runner, pathName](const zdt::OperationOutcome& outcome) {
                 // A failed conversion has shown its box and left no page: there is nothing to print.
                 const bool loaded =
                     outcome.status == zdt::OperationStatus::Done && HtmlPrinter::instance().load(pagePath);
                 // The page lives on in the printer's document; the file is not needed again.
                 QFile::remove(pagePath);
                 if (!loaded)
                     return;
                 if (preview)
                     HtmlPrinter::instance().preview();
                 else if (HtmlPrinter::instance().confirmPrint(parent))
                     runner(QStringLiteral("Printing %1").arg(QFile::decodeName(pathName.c_str())),
                            HtmlPrinter::instance().printJob(), {});
             });
}

} // namespace zdtui

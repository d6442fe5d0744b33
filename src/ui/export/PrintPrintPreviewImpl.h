#pragma once

#include "common/Operation.h"
#include "export/Conversion.h"
#include "xmldoc/PrintPrintPreview.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>

namespace zdtui {

// Prints a document by converting it to a temporary HTML file with the view's conversion,
// as the document's operation, then handing that page to the process's HtmlPrinter.
class PrintPrintPreviewImpl final : public PrintPrintPreview {
public:
    using Finish = std::function<void(const zdt::OperationOutcome& outcome)>;
    // Runs a job as the document's operation, its boxes shown when it ended, then `finish`;
    // false when it could not start.
    using OperationRunner = std::function<bool(const QString& label, zdt::OperationJob job, Finish finish)>;

    PrintPrintPreviewImpl(ZDTAnalyzer::Conversion& conversion, OperationRunner runner, QWidget* parent);

    void print(const std::string& pathName) override;
    void printPreview(const std::string& pathName) override;

private:
    void convertThen(const std::string& pathName, bool preview);

    ZDTAnalyzer::Conversion& m_conversion;
    OperationRunner m_runner;
    QPointer<QWidget> m_parent;
};

} // namespace zdtui

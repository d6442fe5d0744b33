#pragma once

#include "common/Operation.h"
#include "export/PagedHtml.h"

#include <QObject>
#include <QPointer>
#include <QPrintPreviewDialog>
#include <QTextDocument>

#include <functional>
#include <memory>

class QPrinter;
class QWidget;

namespace zdtui {

// The one HTML page of the process that prints and previews the XML windows' exports,
// with the printer that Print Setup sets up and one preview window, both reused. The page
// is laid out a piece at a time; the preview shows the first PreviewRows rows only, so
// that it opens at once whatever the trace's size, and says so in its title.
class HtmlPrinter final : public QObject {
    Q_OBJECT
public:
    static constexpr int RowsPerPiece = 200;
    static constexpr int PreviewRows = 600;

    // Asks the user about `printer` before a print; false gives the print up.
    using PrintConfirmer = std::function<bool(QPrinter& printer, QWidget* parent)>;

    static HtmlPrinter& instance();

    // Replaces the page with the HTML file at `path`; false when it cannot be read.
    bool load(const QString& path);
    // The print dialog on the printer of Print Setup; false when the user gave up.
    bool confirmPrint(QWidget* parent);
    // Every page of the page loaded now, on a printer set up as the printer of Print Setup,
    // as long work: a piece at a time with its progress; a cancel aborts the print job.
    zdt::OperationJob printJob();
    // Shows the preview window (made on first use) with the page as it stands.
    void preview();

    // The printer of Print Setup; one of its own without the application.
    QPrinter& printer();
    const PagedHtml& pages() const { return m_pages; }
    // The first piece of the page, as the rich text layout holds it.
    QString firstPieceText();
    QPrintPreviewDialog* previewDialog() const { return m_previewDialog; }
    void setPrintConfirmer(PrintConfirmer confirmer) { m_confirmer = std::move(confirmer); }

private:
    explicit HtmlPrinter(QObject* parent);
    ~HtmlPrinter() override;
    QPrintPreviewDialog& previewDialogFor(QPrinter& printer);
    // Lays out and paints the first `pieceLimit` pieces of `pages` with `document`, each
    // from a new page; false when it stopped for a cancel.
    static bool PaintPieces(const PagedHtml& pages, QTextDocument& document, QPrinter& target, int pieceLimit,
                            zdt::OperationControl* control);
    int previewPieces() const;

    PagedHtml m_pages;
    QTextDocument m_document;
    std::unique_ptr<QPrinter> m_ownPrinter;
    QPointer<QPrintPreviewDialog> m_previewDialog;
    QPrinter* m_previewPrinter = nullptr;
    PrintConfirmer m_confirmer;
};

} // namespace zdtui

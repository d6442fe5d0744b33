#include "export/HtmlPrinter.h"

#include "app/CAnalyzerApp.h"

#include <QCoreApplication>
#include <QFile>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrintPreviewWidget>
#include <QPrinter>

namespace zdtui {

namespace {

QPointer<HtmlPrinter>& Instance() {
    static QPointer<HtmlPrinter> printer;
    return printer;
}

// Widgets must go while the application object still stands, before its children.
void DeletePreviewWindow() {
    if (Instance() != nullptr)
        delete Instance()->previewDialog();
}

} // namespace

HtmlPrinter::HtmlPrinter(QObject* parent) : QObject(parent) {
    qAddPostRoutine(DeletePreviewWindow);
}

HtmlPrinter::~HtmlPrinter() = default;

// Lives as long as the application object, so that the preview window goes with it.
HtmlPrinter& HtmlPrinter::instance() {
    if (Instance() == nullptr)
        Instance() = new HtmlPrinter(QCoreApplication::instance());
    return *Instance();
}

QPrinter& HtmlPrinter::printer() {
    if (CAnalyzerApp* app = CAnalyzerApp::instance())
        return app->printer();
    if (m_ownPrinter == nullptr)
        m_ownPrinter = std::make_unique<QPrinter>();
    return *m_ownPrinter;
}

bool HtmlPrinter::load(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    m_pages = PagedHtml(QString::fromUtf8(file.readAll()), RowsPerPiece);
    return true;
}

QString HtmlPrinter::firstPieceText() {
    m_document.setHtml(m_pages.piece(0));
    return m_document.toPlainText();
}

int HtmlPrinter::previewPieces() const {
    int pieces = 0;
    for (int rows = 0; pieces < m_pages.pieceCount() && (pieces == 0 || rows < PreviewRows); ++pieces)
        rows += m_pages.rowsIn(pieces);
    return pieces;
}

// As QTextDocument::print lays a page out: in screen units, scaled to the printer's.
bool HtmlPrinter::PaintPieces(const PagedHtml& pages, QTextDocument& document, QPrinter& target, int pieceLimit,
                              zdt::OperationControl* control) {
    QPainter painter(&target);
    if (!painter.isActive())
        return true;
    const QRectF pageRect = target.pageRect(QPrinter::DevicePixel);
    const qreal scale = qreal(target.resolution()) / 96.0;
    const QSizeF pageSize(pageRect.width() / scale, pageRect.height() / scale);
    const int pieces = qMin(pieceLimit, pages.pieceCount());
    bool firstPage = true;
    for (int index = 0; index < pieces; ++index) {
        if (control != nullptr &&
            !control->onProgress(static_cast<unsigned long long>(index), static_cast<unsigned long long>(pieces))) {
            target.abort();
            return false;
        }
        document.setPageSize(pageSize);
        document.setHtml(pages.piece(index));
        const int pageCount = document.pageCount();
        for (int page = 0; page < pageCount; ++page) {
            if (!firstPage)
                target.newPage();
            firstPage = false;
            const QRectF visible(0, page * pageSize.height(), pageSize.width(), pageSize.height());
            painter.save();
            painter.scale(scale, scale);
            painter.translate(0, -visible.top());
            document.drawContents(&painter, visible);
            painter.restore();
        }
    }
    return true;
}

bool HtmlPrinter::confirmPrint(QWidget* parent) {
    QPrinter& target = printer();
    if (m_confirmer)
        return m_confirmer(target, parent);
    QPrintDialog dialog(&target, parent);
    return dialog.exec() == QDialog::Accepted;
}

zdt::OperationJob HtmlPrinter::printJob() {
    // The job prints on a printer of its own, so that Print Setup may run meanwhile.
    const QPrinter& setUp = printer();
    auto target = std::make_shared<QPrinter>(QPrinter::HighResolution);
    target->setPrinterName(setUp.printerName());
    target->setOutputFormat(setUp.outputFormat());
    target->setOutputFileName(setUp.outputFileName());
    target->setPageLayout(setUp.pageLayout());
    target->setCopyCount(setUp.copyCount());
    target->setCollateCopies(setUp.collateCopies());
    target->setDuplex(setUp.duplex());
    target->setColorMode(setUp.colorMode());
    target->setDocName(setUp.docName());
    return [target, pages = m_pages](zdt::MessageSink&, zdt::OperationControl& control) {
        QTextDocument document;
        const bool done = PaintPieces(pages, document, *target, pages.pieceCount(), &control);
        return done ? zdt::OperationStatus::Done : zdt::OperationStatus::Cancelled;
    };
}

QPrintPreviewDialog& HtmlPrinter::previewDialogFor(QPrinter& target) {
    // A new application object brings a new printer: the window must paint on that one.
    if (m_previewDialog != nullptr && m_previewPrinter != &target)
        delete m_previewDialog;
    if (m_previewDialog == nullptr) {
        m_previewDialog = new QPrintPreviewDialog(&target);
        m_previewPrinter = &target;
        connect(m_previewDialog, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter* pagePrinter) {
            PaintPieces(m_pages, m_document, *pagePrinter, previewPieces(), nullptr);
        });
    }
    return *m_previewDialog;
}

void HtmlPrinter::preview() {
    const bool reused = m_previewDialog != nullptr && m_previewPrinter == &printer();
    QPrintPreviewDialog& dialog = previewDialogFor(printer());
    const int pieces = previewPieces();
    int shownRows = 0;
    for (int index = 0; index < pieces; ++index)
        shownRows += m_pages.rowsIn(index);
    dialog.setWindowTitle(shownRows < m_pages.rowCount()
                              ? tr("Print Preview - the first %1 of %2 rows; Print prints them all")
                                    .arg(shownRows)
                                    .arg(m_pages.rowCount())
                              : tr("Print Preview"));
    dialog.show();
    dialog.raise();
    // The widget paints by itself only when first shown; a reused window shows the new page.
    if (auto* pages = dialog.findChild<QPrintPreviewWidget*>(); pages != nullptr && reused)
        pages->updatePreview();
}

} // namespace zdtui

#include "app/CChildFrame.h"

#include "app/OperationStrip.h"

#include <QApplication>
#include <QCloseEvent>
#include <QVBoxLayout>

namespace zdtui {

CChildFrame::CChildFrame(std::unique_ptr<UiDocument> document, StatusSink* status, const QString& caption,
                         QWidget* parent)
    : QMdiSubWindow(parent), m_document(std::move(document)), m_status(status) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(caption);
    // The program's icon, whichever family: the frame's icon is the application's.
    if (parent != nullptr && !parent->window()->windowIcon().isNull())
        setWindowIcon(parent->window()->windowIcon());
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_view = m_document->createView(body, status);
    m_strip = new OperationStrip(body);
    if (m_view != nullptr)
        layout->addWidget(m_view, 1);
    layout->addWidget(m_strip);
    setWidget(body);
    if (m_view != nullptr)
        setFocusProxy(m_view);
    connect(m_document.get(), &UiDocument::titleChanged, this, &QWidget::setWindowTitle);
    connect(m_document.get(), &UiDocument::operationStarted, m_strip, &OperationStrip::follow);
}

CChildFrame::~CChildFrame() {
    // The status bar may already be gone when the whole frame is torn down, so only
    // the document's own close step runs here.
    if (!m_documentClosed) {
        m_documentClosed = true;
        m_document->close();
    }
    // The view reads the document to its end, so it goes first.
    QWidget* body = widget();
    setWidget(nullptr);
    delete body;
    m_document.reset();
}

CommandView* CChildFrame::commandView() const {
    return dynamic_cast<CommandView*>(m_view.data());
}

void CChildFrame::closeEvent(QCloseEvent* event) {
    // The status is cleared before the window goes, so that the next window's view,
    // activated while this one closes, has the last word on the status bar. Work that
    // still runs is cancelled and has unwound when closeDocument() returns.
    closeDocument();
    QMdiSubWindow::closeEvent(event);
}

void CChildFrame::closeDocument() {
    if (m_documentClosed)
        return;
    m_documentClosed = true;
    m_document->close();
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
}

} // namespace zdtui

#include "app/CChildFrame.h"

#include <QCloseEvent>

namespace zdtui {

CChildFrame::CChildFrame(std::unique_ptr<UiDocument> document, StatusSink* status, const QString& caption,
                         QWidget* parent)
    : QMdiSubWindow(parent), m_document(std::move(document)), m_status(status) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(caption);
    setWidget(m_document->createView(this, status));
    connect(m_document.get(), &UiDocument::titleChanged, this, &QWidget::setWindowTitle);
}

CChildFrame::~CChildFrame() {
    // The status bar may already be gone when the whole frame is torn down, so only
    // the document's own close step runs here.
    if (!m_documentClosed) {
        m_documentClosed = true;
        m_document->close();
    }
    // The view reads the document to its end, so it goes first.
    QWidget* view = widget();
    setWidget(nullptr);
    delete view;
    m_document.reset();
}

CommandView* CChildFrame::commandView() const {
    return dynamic_cast<CommandView*>(widget());
}

void CChildFrame::closeEvent(QCloseEvent* event) {
    // The parse is on the stack below this event: the window may only go once it returned.
    if (m_document->isOpening()) {
        m_closeWhenOpened = true;
        m_document->cancelOpening();
        event->ignore();
        return;
    }
    // The status is cleared before the window goes, so that the next window's view,
    // activated while this one closes, has the last word on the status bar.
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

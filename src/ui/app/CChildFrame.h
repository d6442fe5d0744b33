#pragma once

#include "app/UiDocument.h"

#include <QMdiSubWindow>

#include <memory>

namespace zdtui {

// The child window of one document, for every document family. It owns the document;
// the document's view is its widget.
class CChildFrame final : public QMdiSubWindow {
    Q_OBJECT
public:
    // Makes the document's view; `caption` is the document's title at this moment.
    CChildFrame(std::unique_ptr<UiDocument> document, StatusSink* status, const QString& caption,
                QWidget* parent = nullptr);
    ~CChildFrame() override;

    UiDocument* document() const { return m_document.get(); }
    // The view's commands; null only if a family's view forgot to implement them.
    CommandView* commandView() const;

    // The user closed the window while its document was still reading: the read was
    // cancelled and the window waits for open() to return before it goes.
    bool closeRequestedWhileOpening() const { return m_closeWhenOpened; }
    // Closes the document of a window that is about to go without having been shown
    // as open (a failed or cancelled open); the caller then deletes the window.
    void discard() { closeDocument(); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void closeDocument();

    std::unique_ptr<UiDocument> m_document;
    StatusSink* m_status;
    bool m_documentClosed = false;
    bool m_closeWhenOpened = false;
};

} // namespace zdtui

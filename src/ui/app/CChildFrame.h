#pragma once

#include "app/UiDocument.h"

#include <QMdiSubWindow>
#include <QPointer>

#include <memory>

namespace zdtui {

class OperationStrip;

// The child window of one document, for every document family. It owns the document;
// its widget holds the document's view and, below it, the progress of the document's
// long work.
class CChildFrame final : public QMdiSubWindow {
    Q_OBJECT
public:
    // Makes the document's view; `caption` is the document's title at this moment.
    CChildFrame(std::unique_ptr<UiDocument> document, StatusSink* status, const QString& caption,
                QWidget* parent = nullptr);
    ~CChildFrame() override;

    UiDocument* document() const { return m_document.get(); }
    QWidget* view() const { return m_view; }
    // The view's commands; null only if a family's view forgot to implement them.
    CommandView* commandView() const;
    OperationStrip* operationStrip() const { return m_strip; }

    // Closes the document of a window that goes without having been shown as open (a
    // failed or cancelled read); the caller then deletes the window.
    void discard() { closeDocument(); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void closeDocument();

    std::unique_ptr<UiDocument> m_document;
    StatusSink* m_status;
    QPointer<QWidget> m_view;
    OperationStrip* m_strip;
    bool m_documentClosed = false;
};

} // namespace zdtui

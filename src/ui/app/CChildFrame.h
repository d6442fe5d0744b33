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

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void closeDocument();

    std::unique_ptr<UiDocument> m_document;
    StatusSink* m_status;
    bool m_documentClosed = false;
};

} // namespace zdtui

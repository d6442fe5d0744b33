#pragma once

#include "app/UiDocument.h"

#include <QLabel>

namespace zdtui {

class PlaceholderDocument;

// The view of a placeholder document: one line of text and no commands of its own.
class PlaceholderView final : public QLabel, public CommandView {
    Q_OBJECT
public:
    PlaceholderView(const PlaceholderDocument& document, StatusSink* status, QWidget* parent);

    QAction* commandAction(ViewCommand) override { return nullptr; }
    // The frame's own menu: there is nothing to offer beyond it.
    int menuResource() const override { return 0; }
    void activateView() override;

private:
    const PlaceholderDocument& m_document;
    StatusSink* m_status;
};

} // namespace zdtui

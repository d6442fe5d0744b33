#pragma once

#include "app/BackgroundOperation.h"

#include <QPointer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace zdtui {

// The progress of a document's long work at the foot of its window: what runs, how far
// it is, and Cancel. Hidden while nothing runs; the list above stays usable.
class OperationStrip final : public QWidget {
    Q_OBJECT
public:
    explicit OperationStrip(QWidget* parent = nullptr);

    // Follows `operation` until it finishes; one at a time.
    void follow(BackgroundOperation* operation);
    BackgroundOperation* followed() const { return m_operation; }

    QPushButton* cancelButton() const { return m_cancel; }
    QProgressBar* progressBar() const { return m_bar; }
    QLabel* label() const { return m_label; }

private:
    void refresh();
    void stop();

    QPointer<BackgroundOperation> m_operation;
    QLabel* m_label;
    QProgressBar* m_bar;
    QPushButton* m_cancel;
};

} // namespace zdtui

#pragma once

#include "common/UserMessage.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class QProgressDialog;
class QWidget;

namespace zdtui {

// Reads an XML document on the user-interface thread, as its rows are appended to a list
// that is already on screen: a progress dialog (not modal, with Cancel) shows how far the
// read is, and at most every few dozen milliseconds the event loop runs, so the list
// grows, paints and scrolls while the file is read. The job sees Cancel (the button or
// cancel()) through the sink's answer.
class IncrementalOpen final : public QObject, public zdt::ProgressSink {
    Q_OBJECT
public:
    IncrementalOpen(QWidget* dialogParent, const QString& label);
    ~IncrementalOpen() override;

    // Runs `job` with this object as its progress sink; `refresh` runs before every pass
    // of the event loop (the views take the rows appended since). Returns the job's
    // result, false when the user cancelled.
    bool run(const std::function<bool(zdt::ProgressSink&)>& job, const std::function<void()>& refresh);
    void cancel() { m_cancelled = true; }
    bool isRunning() const { return m_running; }
    bool wasCancelled() const { return m_cancelled; }

    bool onProgress(unsigned long long done, unsigned long long total) override;

signals:
    // The dialog exists and the job has not begun yet.
    void started(QProgressDialog* dialog);

private:
    QPointer<QWidget> m_parent;
    QString m_label;
    QPointer<QProgressDialog> m_dialog;
    std::function<void()> m_refresh;
    QElapsedTimer m_sinceEvents;
    bool m_running = false;
    bool m_cancelled = false;
};

} // namespace zdtui

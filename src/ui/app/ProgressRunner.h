#pragma once

#include "common/UserMessage.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <functional>

class QProgressDialog;
class QWidget;

namespace zdtui {

// Runs one long job of a document on a worker thread while a progress dialog shows how
// far it is; the calling thread waits in a local event loop, so every window keeps
// repainting. The job must not touch widgets, and nothing else may touch the job's data
// until run() returns.
class ProgressRunner final : public QObject {
    Q_OBJECT
public:
    // Without `cancellable` the dialog has no Cancel button: for work that cannot be
    // left half-done.
    ProgressRunner(QWidget* parent, const QString& label, bool cancellable);
    ~ProgressRunner() override;

    // Returns false when the user cancelled. The job sees Cancel through the sink's answer.
    bool run(const std::function<void(zdt::ProgressSink&)>& job);

signals:
    // The dialog exists and the job has not begun yet.
    void started(QProgressDialog* dialog);

private:
    class Sink final : public zdt::ProgressSink {
    public:
        bool onProgress(unsigned long long done, unsigned long long total) override;
        std::atomic<unsigned long long> done{0};
        std::atomic<unsigned long long> total{0};
        std::atomic<bool> cancelled{false};
    };

    void showProgress(QProgressDialog& dialog);

    QPointer<QWidget> m_parent;
    QString m_label;
    bool m_cancellable;
    Sink m_sink;
};

} // namespace zdtui

#pragma once

#include "common/Operation.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class QThread;

namespace zdtui {

// Runs one long operation of the core on a thread of its own, away from the windows.
// The thread of the windows learns how far it is through updated(), coalesced so that
// it comes at most once per pass of the event loop, and of its end through one
// finished(). Whoever owns it may cancel it at any time; destroying it cancels the work
// and waits for it to unwind, so nothing the job uses may go before this object.
class BackgroundOperation final : public QObject {
    Q_OBJECT
public:
    BackgroundOperation(QString label, zdt::OperationJob job, QObject* parent = nullptr);
    ~BackgroundOperation() override;
    BackgroundOperation(const BackgroundOperation&) = delete;
    BackgroundOperation& operator=(const BackgroundOperation&) = delete;

    // Starts the job; once only.
    void start();
    // Asks the job to stop as soon as it can; finished() still follows.
    void cancel();
    // Asks the job to stop and waits until it has; finished() no longer comes.
    void cancelAndWait();

    // Whether a user may stop it; set before start(). Work that may not stop half-way
    // still unwinds when its owner goes: cancelAndWait() then waits for its end.
    void setCancellable(bool cancellable) { m_cancellable = cancellable; }
    bool isCancellable() const { return m_cancellable; }
    bool isRunning() const { return m_running; }
    bool isCancelRequested() const { return m_control.isCancelRequested(); }
    const QString& label() const { return m_label; }
    // Thousandths of the work done, 0 while unknown.
    int permille() const { return m_control.permille(); }
    // Valid once finished() came.
    const zdt::OperationOutcome& outcome() const { return m_outcome; }

    // Thread-safe: the job made something new to show (rows, marks). updated() follows
    // on the thread of the windows, once for any number of calls before it.
    void postUpdate();

Q_SIGNALS:
    // Progress or new content; at most once per pass of the event loop.
    void updated();
    // The job has ended; outcome() tells how. The last signal of the operation.
    void finished(zdt::OperationStatus status);

private:
    void deliverUpdate();
    void deliverFinish();
    void joinThread();

    QString m_label;
    zdt::OperationJob m_job;
    zdt::OperationControl m_control;
    zdt::OperationOutcome m_outcome;
    std::unique_ptr<QThread> m_thread;
    std::atomic<bool> m_updatePosted{false};
    std::atomic<bool> m_jobEnded{false};
    bool m_cancellable = true;
    bool m_running = false;
    bool m_delivered = false;
};

} // namespace zdtui

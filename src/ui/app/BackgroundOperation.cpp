#include "app/BackgroundOperation.h"

#include <QThread>

namespace zdtui {

BackgroundOperation::BackgroundOperation(QString label, zdt::OperationJob job, QObject* parent)
    : QObject(parent), m_label(std::move(label)), m_job(std::move(job)) {
    m_control.setReportListener([this] { postUpdate(); });
}

BackgroundOperation::~BackgroundOperation() {
    cancelAndWait();
}

void BackgroundOperation::start() {
    if (m_thread != nullptr)
        return;
    m_running = true;
    m_thread.reset(QThread::create([this] {
        m_outcome = zdt::RunOperation(m_job, m_control);
        m_jobEnded.store(true, std::memory_order_release);
        // Bound to this object: a queued call to an object that went meanwhile is dropped.
        QMetaObject::invokeMethod(this, &BackgroundOperation::deliverFinish, Qt::QueuedConnection);
    }));
    m_thread->setObjectName(QStringLiteral("operation"));
    m_thread->start();
}

void BackgroundOperation::cancel() {
    m_control.requestCancel();
}

void BackgroundOperation::cancelAndWait() {
    m_control.requestCancel();
    joinThread();
    // The queued end may still wait in the event queue: it must not arrive any more.
    m_delivered = true;
    m_running = false;
}

void BackgroundOperation::postUpdate() {
    if (m_updatePosted.exchange(true, std::memory_order_acq_rel))
        return;
    QMetaObject::invokeMethod(this, &BackgroundOperation::deliverUpdate, Qt::QueuedConnection);
}

void BackgroundOperation::deliverUpdate() {
    // Cleared before the signal: what the job adds while the receivers work posts anew.
    // Acquire: what the job wrote before it posted is seen here.
    m_updatePosted.exchange(false, std::memory_order_acq_rel);
    if (!m_delivered)
        Q_EMIT updated();
}

void BackgroundOperation::deliverFinish() {
    if (m_delivered)
        return;
    joinThread();
    m_delivered = true;
    m_running = false;
    Q_EMIT updated();
    Q_EMIT finished(m_outcome.status);
}

void BackgroundOperation::joinThread() {
    if (m_thread == nullptr)
        return;
    m_thread->wait();
    // Pairs with the job's last store, so that everything the job did is seen by this
    // thread, also by tools that cannot see inside the thread library's own waiting.
    m_jobEnded.load(std::memory_order_acquire);
}

} // namespace zdtui

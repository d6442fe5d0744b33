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
    if (m_thread != nullptr)
        m_thread->wait();
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
    m_updatePosted.store(false, std::memory_order_release);
    if (!m_delivered)
        Q_EMIT updated();
}

void BackgroundOperation::deliverFinish() {
    if (m_delivered)
        return;
    m_thread->wait();
    m_delivered = true;
    m_running = false;
    Q_EMIT updated();
    Q_EMIT finished(m_outcome.status);
}

} // namespace zdtui

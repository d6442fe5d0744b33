#include "app/UiDocument.h"

#include "app/BackgroundOperation.h"

#include <QPointer>

namespace zdtui {

UiDocument::UiDocument() = default;

UiDocument::~UiDocument() {
    // A document destroyed without close() still must not leave its work running.
    m_operation.reset();
}

void UiDocument::startOpen(const QString& path) {
    if (m_opening || !m_path.isEmpty())
        return; // a document reads its file once
    m_path = path;
    Q_EMIT titleChanged(path);
    m_opening = true;
    const bool started = runOperation(
        tr("Reading %1").arg(path), openJob(path),
        [this](const zdt::OperationOutcome& outcome) {
            m_opening = false;
            m_openMessages = outcome.messages;
            const bool opened = openEnded(outcome);
            Q_EMIT openFinished(opened);
        },
        [this] { takeRowsReadSoFar(); });
    if (!started) {
        m_opening = false;
        Q_EMIT openFinished(false);
    }
}

bool UiDocument::runOperation(const QString& label, zdt::OperationJob job, OperationFinish finish,
                              std::function<void()> update, bool cancellable) {
    if (m_operation != nullptr || m_closed)
        return false;
    m_operation = std::make_unique<BackgroundOperation>(label, std::move(job));
    m_operation->setCancellable(cancellable);
    m_finish = std::move(finish);
    m_update = std::move(update);
    connect(m_operation.get(), &BackgroundOperation::updated, this, [this] {
        if (m_update)
            m_update();
    });
    connect(m_operation.get(), &BackgroundOperation::finished, this, &UiDocument::operationFinished);
    beforeOperation(*m_operation);
    m_operation->start();
    Q_EMIT operationStarted(m_operation.get());
    Q_EMIT busyChanged(true);
    return true;
}

void UiDocument::operationFinished() {
    // The operation goes first, so that what the finish step starts may be the next one.
    const zdt::OperationOutcome outcome = m_operation->outcome();
    m_operation.release()->deleteLater();
    const OperationFinish finish = std::move(m_finish);
    m_finish = nullptr;
    m_update = nullptr;
    // The finish step may end the document itself: a read that failed takes its window,
    // and the document with it, away.
    const QPointer<UiDocument> alive(this);
    if (finish)
        finish(outcome);
    if (alive != nullptr)
        Q_EMIT busyChanged(isBusy());
}

void UiDocument::cancelOperation() {
    if (m_operation != nullptr)
        m_operation->cancel();
}

void UiDocument::close() {
    if (m_closed)
        return;
    m_closed = true;
    if (m_operation != nullptr) {
        // The work unwinds before anything it uses goes; its end is no longer reported.
        m_operation->cancelAndWait();
        m_operation.reset();
        m_finish = nullptr;
        m_update = nullptr;
        m_opening = false;
    }
    closeDocument();
}

} // namespace zdtui

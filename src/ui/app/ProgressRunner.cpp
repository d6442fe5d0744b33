#include "app/ProgressRunner.h"

#include <QEventLoop>
#include <QProgressDialog>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <memory>

namespace zdtui {
namespace {

constexpr int kSteps = 1000;
constexpr int kPollMilliseconds = 50;
// Short jobs finish before the dialog would flash up.
constexpr int kShowAfterMilliseconds = 400;

} // namespace

bool ProgressRunner::Sink::onProgress(unsigned long long doneSoFar, unsigned long long totalWork) {
    done.store(doneSoFar, std::memory_order_relaxed);
    total.store(totalWork, std::memory_order_relaxed);
    return !cancelled.load(std::memory_order_relaxed);
}

ProgressRunner::ProgressRunner(QWidget* parent, const QString& label, bool cancellable)
    : m_parent(parent), m_label(label), m_cancellable(cancellable) {}

ProgressRunner::~ProgressRunner() = default;

void ProgressRunner::showProgress(QProgressDialog& dialog) {
    const unsigned long long total = m_sink.total.load(std::memory_order_relaxed);
    if (total == 0)
        return;
    const unsigned long long done = std::min(m_sink.done.load(std::memory_order_relaxed), total);
    // Stay below the maximum: reaching it would reset the dialog while the job still runs.
    dialog.setValue(std::min(kSteps - 1, static_cast<int>(done * kSteps / total)));
}

bool ProgressRunner::run(const std::function<void(zdt::ProgressSink&)>& job) {
    m_sink.done = 0;
    m_sink.total = 0;
    m_sink.cancelled = false;

    // On the heap: the parent window might go while the job runs, and take the dialog along.
    QPointer<QProgressDialog> dialog =
        new QProgressDialog(m_label, m_cancellable ? tr("Cancel") : QString(), 0, kSteps, m_parent);
    dialog->setWindowModality(m_parent ? Qt::WindowModal : Qt::ApplicationModal);
    dialog->setMinimumDuration(kShowAfterMilliseconds);
    dialog->setAutoReset(false);
    dialog->setAutoClose(false);
    if (!m_cancellable)
        dialog->setCancelButton(nullptr);
    connect(dialog, &QProgressDialog::canceled, this, [this] { m_sink.cancelled = true; });
    dialog->setValue(0);

    emit started(dialog);
    // Cancel by the button or by cancel() alike: the latter only raises wasCanceled().
    const auto noticeCancel = [this, &dialog] {
        if (dialog && dialog->wasCanceled())
            m_sink.cancelled = true;
    };
    noticeCancel();

    std::unique_ptr<QThread> worker(QThread::create([this, &job] { job(m_sink); }));
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [this, &dialog, &noticeCancel] {
        noticeCancel();
        if (dialog)
            showProgress(*dialog);
    });
    poll.start(kPollMilliseconds);
    worker->start();
    // Windows repaint all along; clicks and keys wait until the dialog shows (and with it
    // the modality that keeps them away from the document's windows) or the job ends.
    QEventLoop loop;
    connect(worker.get(), &QThread::finished, &loop, [] {});
    while (!worker->isFinished()) {
        const QEventLoop::ProcessEventsFlags flags =
            dialog && dialog->isVisible() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents;
        loop.processEvents(flags | QEventLoop::WaitForMoreEvents);
    }
    worker->wait();
    poll.stop();
    delete dialog;
    return !m_sink.cancelled.load();
}

} // namespace zdtui

#include "xmldoc/IncrementalOpen.h"

#include <QCoreApplication>
#include <QProgressDialog>
#include <QWidget>

#include <algorithm>

namespace zdtui {
namespace {

constexpr int kSteps = 1000;
// Often enough for the list to scroll smoothly, seldom enough that the read is not
// slowed down by painting.
constexpr qint64 kEventPassMilliseconds = 40;
// Short reads finish before the dialog would flash up.
constexpr int kShowAfterMilliseconds = 400;

int StepOf(unsigned long long done, unsigned long long total) {
    if (total == 0)
        return 0;
    done = std::min(done, total);
    // Stay below the maximum: reaching it would reset the dialog while the read still runs.
    return std::min(kSteps - 1, static_cast<int>(done * kSteps / total));
}

} // namespace

IncrementalOpen::IncrementalOpen(QWidget* dialogParent, const QString& label)
    : m_parent(dialogParent), m_label(label) {}

IncrementalOpen::~IncrementalOpen() {
    delete m_dialog;
}

bool IncrementalOpen::run(const std::function<bool(zdt::ProgressSink&)>& job, const std::function<void()>& refresh) {
    m_cancelled = false;
    m_running = true;
    m_refresh = refresh;

    // On the heap and guarded: the parent window may go during an event pass and take
    // the dialog along.
    m_dialog = new QProgressDialog(m_label, tr("Cancel"), 0, kSteps, m_parent);
    // Not modal: the list behind it must stay usable while it grows.
    m_dialog->setWindowModality(Qt::NonModal);
    m_dialog->setMinimumDuration(kShowAfterMilliseconds);
    m_dialog->setAutoReset(false);
    m_dialog->setAutoClose(false);
    connect(m_dialog, &QProgressDialog::canceled, this, [this] { m_cancelled = true; });
    m_dialog->setValue(0);
    emit started(m_dialog);
    if (m_dialog && m_dialog->wasCanceled())
        m_cancelled = true;

    m_sinceEvents.start();
    bool result = false;
    if (!m_cancelled)
        result = job(*this);

    m_running = false;
    m_refresh = nullptr;
    delete m_dialog;
    return result && !m_cancelled;
}

bool IncrementalOpen::onProgress(unsigned long long done, unsigned long long total) {
    // The dialog's cancel() marks it without a signal; only its button signals.
    if (m_dialog && m_dialog->wasCanceled())
        m_cancelled = true;
    if (m_cancelled)
        return false;
    if (!m_sinceEvents.isValid() || m_sinceEvents.elapsed() < kEventPassMilliseconds)
        return true;
    if (m_dialog)
        m_dialog->setValue(StepOf(done, total));
    if (m_refresh)
        m_refresh();
    // Deferred deletions wait for the outer event loop, so nothing the job uses goes away here.
    QCoreApplication::processEvents(QEventLoop::AllEvents);
    m_sinceEvents.restart();
    if (m_dialog && m_dialog->wasCanceled())
        m_cancelled = true;
    return !m_cancelled;
}

} // namespace zdtui

#include "classic/ClassicDocument.h"

#include "app/BrandEdition.h"
#include "classic/CAnaView.h"
#include "classic/CSettingsInfo.h"
#include "classic/CanFilterDialogPrompt.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicViewLayout.h"
#include "app/CollectedMessages.h"
#include "app/ProgressRunner.h"
#include "classic/StyleDialogs.h"
#include "app/WaitCursor.h"

#include <QFile>
#include <QProgressDialog>
#include <QTimer>

namespace zdtui {
namespace {

std::string LocalPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

} // namespace

ClassicDocument::ClassicDocument() = default;

ClassicDocument::~ClassicDocument() = default;

QString ClassicDocument::title() const {
    if (!m_doc)
        return m_path;
    return QFile::decodeName(ClassicWindowTitle(m_doc->Title(), LocalPath(m_path)).c_str());
}

void ClassicDocument::setFilterPrompt(std::unique_ptr<CanFilterPrompt> prompt) {
    m_filterPrompt = std::move(prompt);
}

CanFilterPrompt& ClassicDocument::filterPrompt(QWidget* parent) {
    // One prompt for the document's life: it remembers the filter last accepted.
    if (!m_filterPrompt)
        m_filterPrompt = std::make_unique<CanFilterDialogPrompt>(parent, m_path);
    return *m_filterPrompt;
}

bool ClassicDocument::runLongWork(QWidget* parent, const QString& label, bool cancellable,
                                  const std::function<void(zdt::ProgressSink&)>& job) {
    ProgressRunner runner(parent, label, cancellable);
    connect(&runner, &ProgressRunner::started, this, &ClassicDocument::progressStarted);
    return runner.run(job);
}

bool ClassicDocument::open(const QString& path, QWidget* dialogParent) {
    m_path = path;
    auto doc = std::make_unique<CAnalyzerDoc>();
    CollectedMessages messages;
    bool opened = false;
    const std::string localPath = LocalPath(path);
    const bool finished = runLongWork(dialogParent, tr("Reading %1").arg(path), true, [&](zdt::ProgressSink& progress) {
        opened = doc->OnOpenDocument(localPath, &messages, &progress, nullptr);
    });
    messages.showAll(dialogParent);
    // Cancel pressed as the last block was read still means the user gave the file up.
    if (!opened || !finished)
        return false;
    m_doc = std::move(doc);
    offerHistoryFilter(dialogParent);
    emit titleChanged(title());
    return true;
}

void ClassicDocument::offerHistoryFilter(QWidget* parent) {
    const std::optional<CanFilterPrompt::Request> request = m_doc->HistoryFilterRequest();
    if (!request)
        return;
    CanFilterPrompt& prompt = filterPrompt(parent);
    const CanFilterPrompt::Answer answer = prompt.Run(*request);
    if (!CAnalyzerDoc::AnswerAppliesFilter(answer)) {
        m_doc->ApplyHistoryFilterAnswer(answer, std::string());
        return;
    }
    const std::string fltPath = prompt.FilterPath(answer.name);
    WaitCursor wait;
    runLongWork(parent, tr("Filtering %1").arg(m_path), false,
                [&](zdt::ProgressSink& progress) { m_doc->ApplyHistoryFilterAnswer(answer, fltPath, &progress); });
}

QWidget* ClassicDocument::createView(QWidget* parent, StatusSink* status) {
    if (!m_doc)
        return nullptr;
    m_status = status;
    auto* view = new CAnaView(*this, status, parent);
    // The frame may connect to the title only once it has the view: tell it again then.
    QTimer::singleShot(0, this, [this] { emit titleChanged(title()); });
    emit titleChanged(title());
    return view;
}

void ClassicDocument::refreshStatus() {
    if (m_status != nullptr && m_doc)
        m_status->SetStatusDocument(m_path, static_cast<int>(m_doc->GetVisibleCount()));
}

void ClassicDocument::close() {
    if (m_closed)
        return;
    m_closed = true;
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
    if (m_doc)
        m_doc->OnCloseDocument();
}

void ClassicDocument::onSessionInfo(QWidget* parent) {
    if (m_doc)
        RunSessionInfo(parent, SessionInfoFields(*m_doc, zdt::BrandEdition()));
}

void ClassicDocument::setTimeMode(TimeMode mode, std::uint32_t byteTime) {
    if (!m_doc)
        return;
    m_doc->SetTimeMode(mode, byteTime);
    emit contentChanged();
}

void ClassicDocument::onStyleCan(QWidget* parent) {
    if (!m_doc)
        return;
    TimeMode mode = m_doc->GetTimeMode();
    if (!RunStyleCan(parent, mode, false))
        return;
    WaitCursor wait;
    setTimeMode(mode);
}

void ClassicDocument::onStyleKLine(QWidget* parent) {
    if (!m_doc)
        return;
    TimeMode mode = m_doc->GetTimeMode();
    std::uint32_t byteTime = m_doc->ByteTime();
    if (!RunStyleDiagnostic(parent, mode, byteTime))
        return;
    setTimeMode(mode, byteTime);
}

void ClassicDocument::onCanFilter(QWidget* parent) {
    if (!m_doc)
        return;
    CanFilterPrompt& prompt = filterPrompt(parent);
    const CanFilterPrompt::Answer answer = prompt.Run(m_doc->BeginCanFilter());
    finishCanFilter(answer, CAnalyzerDoc::AnswerAppliesFilter(answer) ? prompt.FilterPath(answer.name) : std::string(),
                    parent);
}

void ClassicDocument::finishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                                      QWidget* parent) {
    if (!m_doc || !CAnalyzerDoc::CanFilterAnswerActs(answer))
        return;
    emit contentAboutToChange();
    CollectedMessages messages;
    {
        WaitCursor wait;
        runLongWork(
            parent, answer.activate ? tr("Filtering %1").arg(m_path) : tr("Reading %1").arg(m_path), false,
            [&](zdt::ProgressSink& progress) { m_doc->FinishCanFilter(answer, fltPath, &messages, &progress); });
    }
    messages.showAll(parent);
    refreshStatus();
    emit contentChanged();
}

} // namespace zdtui

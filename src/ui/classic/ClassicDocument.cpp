#include "classic/ClassicDocument.h"

#include "app/Boxes.h"
#include "app/BrandEdition.h"
#include "app/WaitCursor.h"
#include "classic/CAnaView.h"
#include "classic/CSettingsInfo.h"
#include "classic/CanFilterDialogPrompt.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicViewLayout.h"
#include "classic/StyleDialogs.h"
#include "common/RowTypes.h"

#include <QFile>
#include <QPointer>

#include <climits>
#include <memory>

namespace zdtui {
namespace {

std::string LocalPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

void ShowMessages(QWidget* parent, const std::vector<zdt::UserMessage>& messages) {
    BoxMessageSink boxes(parent);
    for (const zdt::UserMessage& message : messages)
        boxes.showMessage(message);
}

} // namespace

ClassicDocument::ClassicDocument() : m_doc(std::make_unique<CAnalyzerDoc>()) {}

ClassicDocument::~ClassicDocument() = default;

QString ClassicDocument::title() const {
    if (!m_open)
        return pathName();
    return QFile::decodeName(ClassicWindowTitle(m_doc->Title(), LocalPath(pathName())).c_str());
}

void ClassicDocument::setFilterPrompt(std::unique_ptr<CanFilterPrompt> prompt) {
    m_filterPrompt = std::move(prompt);
}

CanFilterPrompt& ClassicDocument::filterPrompt(QWidget* parent) {
    // One prompt for the document's life: it remembers the filter last accepted.
    if (!m_filterPrompt)
        m_filterPrompt = std::make_unique<CanFilterDialogPrompt>(parent, pathName());
    return *m_filterPrompt;
}

zdt::OperationJob ClassicDocument::openJob(const QString& path) {
    CAnalyzerDoc* doc = m_doc.get();
    return [doc, localPath = LocalPath(path)](zdt::MessageSink& messages, zdt::OperationControl& control) {
        // Cancel pressed as the last block was read still means the user gave the file up.
        const bool opened = doc->OnOpenDocument(localPath, &messages, &control, nullptr);
        return opened && !control.isCancelRequested() ? zdt::OperationStatus::Done : zdt::StatusOf(false, control);
    };
}

void ClassicDocument::takeRowsReadSoFar() {
    Q_EMIT rowsArrived(static_cast<int>(m_doc->RowsReadSoFar()));
    refreshStatus();
}

bool ClassicDocument::openEnded(const zdt::OperationOutcome& outcome) {
    m_open = outcome.status == zdt::OperationStatus::Done;
    if (!m_open)
        return false;
    // Columns and cells that only the whole file decides (the trace's kind) take their
    // final form now.
    Q_EMIT titleChanged(title());
    Q_EMIT contentChanged();
    refreshStatus();
    return true;
}

void ClassicDocument::afterOpen(QWidget* parent) {
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
    CAnalyzerDoc* doc = m_doc.get();
    runFilterWork(tr("Filtering %1").arg(pathName()), parent,
                  [doc, answer, fltPath](zdt::MessageSink&, zdt::OperationControl& control) {
                      doc->ApplyHistoryFilterAnswer(answer, fltPath, &control);
                      return zdt::OperationStatus::Done;
                  });
}

QWidget* ClassicDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    return new CAnaView(*this, status, parent);
}

void ClassicDocument::refreshStatus() {
    if (m_status == nullptr)
        return;
    // While the rows are rebuilt on another thread only the rows published so far count.
    zdt::RowCount rows = 0;
    if (isOpening())
        rows = m_doc->RowsReadSoFar();
    else if (!isBusy())
        rows = static_cast<zdt::RowCount>(std::min<std::uint32_t>(m_doc->GetVisibleCount(), INT_MAX));
    m_status->SetStatusDocument(pathName(), static_cast<int>(rows));
}

void ClassicDocument::closeDocument() {
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
    if (m_open)
        m_doc->OnCloseDocument();
}

void ClassicDocument::onSessionInfo(QWidget* parent) {
    if (m_open && !isBusy())
        RunSessionInfo(parent, SessionInfoFields(*m_doc, zdt::BrandEdition()));
}

void ClassicDocument::setTimeMode(TimeMode mode, std::uint32_t byteTime) {
    if (!m_open || isBusy())
        return;
    m_doc->SetTimeMode(mode, byteTime);
    Q_EMIT contentChanged();
}

void ClassicDocument::onStyleCan(QWidget* parent) {
    if (!m_open || isBusy())
        return;
    TimeMode mode = m_doc->GetTimeMode();
    if (!RunStyleCan(parent, mode, false))
        return;
    WaitCursor wait;
    setTimeMode(mode);
}

void ClassicDocument::onStyleKLine(QWidget* parent) {
    if (!m_open || isBusy())
        return;
    TimeMode mode = m_doc->GetTimeMode();
    std::uint32_t byteTime = m_doc->ByteTime();
    if (!RunStyleDiagnostic(parent, mode, byteTime))
        return;
    setTimeMode(mode, byteTime);
}

void ClassicDocument::onCanFilter(QWidget* parent) {
    if (!m_open || isBusy())
        return;
    CanFilterPrompt& prompt = filterPrompt(parent);
    const CanFilterPrompt::Answer answer = prompt.Run(m_doc->BeginCanFilter());
    finishCanFilter(answer, CAnalyzerDoc::AnswerAppliesFilter(answer) ? prompt.FilterPath(answer.name) : std::string(),
                    parent);
}

void ClassicDocument::finishCanFilter(const CanFilterPrompt::Answer& answer, const std::string& fltPath,
                                      QWidget* parent) {
    if (!m_open || isBusy() || !CAnalyzerDoc::CanFilterAnswerActs(answer))
        return;
    CAnalyzerDoc* doc = m_doc.get();
    runFilterWork(answer.activate ? tr("Filtering %1").arg(pathName()) : tr("Reading %1").arg(pathName()), parent,
                  [doc, answer, fltPath](zdt::MessageSink& messages, zdt::OperationControl& control) {
                      doc->FinishCanFilter(answer, fltPath, &messages, &control);
                      return zdt::OperationStatus::Done;
                  });
}

void ClassicDocument::runFind(const ClassicFindCriteria& criteria, bool markAll, QWidget* parent) {
    if (!m_open || isBusy())
        return;
    CAnalyzerDoc* doc = m_doc.get();
    // The scan only reads; the results reach the document on this thread at the end.
    auto hits = std::make_shared<std::vector<zdt::RowIndex>>();
    const QPointer<QWidget> boxParent = parent;
    runOperation(
        tr("Searching %1").arg(pathName()),
        [doc, criteria, hits](zdt::MessageSink&, zdt::OperationControl& control) {
            return zdt::StatusOf(FindClassicRows(*doc, criteria, *hits, &control), control);
        },
        [this, hits, markAll, boxParent](const zdt::OperationOutcome& outcome) {
            ApplyClassicFindResults(*m_doc, *hits, markAll);
            if (outcome.status == zdt::OperationStatus::Done && hits->empty())
                Boxes::instance().show(boxParent, QString::fromLatin1(SearchTitle),
                                       QString::fromLatin1(NothingFoundText), QMessageBox::Warning);
            Q_EMIT searchEnded(markAll);
        });
}

bool ClassicDocument::runIdentifierStatistics(std::function<void(const IdentifierStatistics&)> done) {
    if (!m_open || isBusy())
        return false;
    auto statistics = std::make_shared<IdentifierStatistics>();
    return runOperation(tr("Identifier statistics of %1").arg(pathName()), IdentifierStatisticsJob(*m_doc, statistics),
                        [statistics, done = std::move(done)](const zdt::OperationOutcome& outcome) {
                            if (outcome.status == zdt::OperationStatus::Done)
                                done(*statistics);
                        });
}

bool ClassicDocument::runCycleSeries(const IdentifierKey& key, std::function<void(const CycleSeries&)> done) {
    if (!m_open || isBusy())
        return false;
    auto series = std::make_shared<CycleSeries>();
    return runOperation(tr("Cycle times of %1").arg(QString::fromStdString(IdentifierText(key))),
                        CycleSeriesJob(*m_doc, key, series),
                        [series, done = std::move(done)](const zdt::OperationOutcome& outcome) {
                            if (outcome.status == zdt::OperationStatus::Done)
                                done(*series);
                        });
}

// A filter pass rewrites the rows and cannot stop half-way: its Cancel is not offered,
// and the list shows no rows until it is done.
void ClassicDocument::runFilterWork(const QString& label, QWidget* parent, zdt::OperationJob job) {
    Q_EMIT contentAboutToChange();
    const QPointer<QWidget> boxParent = parent;
    const bool started = runOperation(
        label, std::move(job),
        [this, boxParent](const zdt::OperationOutcome& outcome) {
            ShowMessages(boxParent, outcome.messages);
            refreshStatus();
            Q_EMIT contentChanged();
        },
        {}, false);
    if (!started)
        Q_EMIT contentChanged();
}

} // namespace zdtui

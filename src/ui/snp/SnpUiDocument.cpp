#include "snp/SnpUiDocument.h"

#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "classic/CollectedMessages.h"
#include "classic/ProgressRunner.h"
#include "xmldoc/IncrementalOpen.h"
#include "snp/SnpSessionInfoDialog.h"
#include "snp/SnpView.h"
#include "snp/dialogs/SnpFindDialog.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"

#include <QDir>
#include <QFile>
#include <QProgressDialog>

namespace zdtui {
namespace {

std::string LocalPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

QString DefaultSwapDirectory() {
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app != nullptr && !app->sessionTempDir().isEmpty())
        return app->sessionTempDir();
    return QDir::tempPath();
}

}  // namespace

SnpUiDocument::SnpUiDocument(QString swapDirectory)
    : m_swapDirectory(std::move(swapDirectory)), m_doc(std::make_unique<ZDTAnalyzer::SnpDoc>()) {
    listenToDocument(true);
}

SnpUiDocument::~SnpUiDocument() {
    listenToDocument(false);
}

// While a search runs on the worker thread nobody may listen, as the views read the same
// swap file.
void SnpUiDocument::listenToDocument(bool listen) {
    if (listen)
        m_doc->setUpdateListener([this] { markChanged(); });
    else
        m_doc->setUpdateListener({});
}

// A read appends rows by the thousand between two event passes: the views take them in
// one step. A jump is asked for only for the length of one update, so it goes at once.
void SnpUiDocument::markChanged() {
    m_changed = true;
    if (m_doc->jumpRow() != -1) {
        deliverChange();
        return;
    }
    if (m_changeQueued)
        return;
    m_changeQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_changeQueued = false;
            deliverChange();
        },
        Qt::QueuedConnection);
}

void SnpUiDocument::deliverChange() {
    if (!m_changed)
        return;
    m_changed = false;
    emit contentChanged();
}

void SnpUiDocument::cancelOpening() {
    if (m_opening != nullptr)
        m_opening->cancel();
}

bool SnpUiDocument::open(const QString& path, QWidget* dialogParent) {
    if (m_opening != nullptr || !m_path.isEmpty())
        return false;  // a document reads its file once
    m_path = path;
    emit titleChanged(m_path);
    CollectedMessages messages;
    const std::string localPath = LocalPath(path);
    const std::string swapDirectory = LocalPath(m_swapDirectory.isEmpty() ? DefaultSwapDirectory() : m_swapDirectory);
    IncrementalOpen runner(dialogParent, tr("Reading %1").arg(path));
    connect(&runner, &IncrementalOpen::started, this, &SnpUiDocument::progressStarted);
    m_opening = &runner;
    // The commands that must wait for the whole file see the open begin.
    emit contentChanged();
    const bool opened = runner.run(
        [&](zdt::ProgressSink& progress) { return m_doc->OnOpenDocument(localPath, swapDirectory, &messages, &progress); },
        [this] {
            deliverChange();
            refreshStatus();
            emit openingRefreshed();
        });
    m_opening = nullptr;
    m_changed = false;
    emit contentChanged();
    refreshStatus();
    messages.showAll(dialogParent);
    // Cancel pressed as the last block was read still means the user gave the file up.
    return opened;
}

QWidget* SnpUiDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    auto* view = new SnpView(*this, parent);
    m_view = view;
    view->initialUpdate();
    connect(this, &SnpUiDocument::contentChanged, view, &SnpView::OnUpdate);
    return view;
}

// Only the active view's document may write the status bar; a list that grows behind
// another window keeps quiet.
void SnpUiDocument::refreshStatus() {
    if (m_status != nullptr && (m_view == nullptr || m_view->isActiveView()))
        m_status->SetStatusDocument(m_path, m_doc->container().rowCount());
}

void SnpUiDocument::close() {
    if (m_closed)
        return;
    m_closed = true;
    listenToDocument(false);
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
}

void SnpUiDocument::onFind(QWidget* parent) {
    if (isOpening())
        return;
    if (!RunSnpFindDialog(parent, m_findCriteria))
        return;
    runFind(parent, m_findCriteria);
}

void SnpUiDocument::runFind(QWidget* parent, const ZDTAnalyzer::SnpFindCriteria& criteria) {
    // The search reads the file on a worker thread; the open still writes the rows.
    if (isOpening())
        return;
    CollectedMessages messages;
    listenToDocument(false);
    ProgressRunner runner(parent, tr("Searching %1").arg(m_path), true);
    connect(&runner, &ProgressRunner::started, this, &SnpUiDocument::progressStarted);
    runner.run([&](zdt::ProgressSink& progress) { m_doc->find(criteria, &messages, &progress); });
    listenToDocument(true);
    messages.showAll(parent);
    // Marks made before a cancel or a failure are real marks: show them too.
    emit contentChanged();
}

void SnpUiDocument::onSessionInformation(QWidget* parent) {
    BoxMessageSink boxes(parent);
    m_doc->showSessionInformation(&boxes, [parent](const ZDTAnalyzer::SnpDoc::SessionInformationDialog& information) {
        SnpSessionInfoDialog dialog(information, parent);
        dialog.exec();
    });
}

void SnpUiDocument::onBookmarkList(QWidget* parent) {
    if (m_doc->canShowBookmarkList())
        RunBookmarkList(parent, *m_doc, m_path);
}

}  // namespace zdtui

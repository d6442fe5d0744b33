#include "snp/SnpUiDocument.h"

#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "classic/CollectedMessages.h"
#include "classic/ProgressRunner.h"
#include "snp/SnpSessionInfoDialog.h"
#include "snp/SnpView.h"
#include "snp/dialogs/SnpFindDialog.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"

#include <QDir>
#include <QFile>
#include <QProgressDialog>
#include <QTimer>

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

SnpUiDocument::SnpUiDocument(QString swapDirectory) : m_swapDirectory(std::move(swapDirectory)) {}

SnpUiDocument::~SnpUiDocument() {
    listenToDocument(false);
}

// The document tells its views of every change; while work runs on the worker thread
// nobody may listen, as the views read the same swap file.
void SnpUiDocument::listenToDocument(bool listen) {
    if (!m_doc)
        return;
    if (listen)
        m_doc->setUpdateListener([this] { emit contentChanged(); });
    else
        m_doc->setUpdateListener({});
}

bool SnpUiDocument::open(const QString& path, QWidget* dialogParent) {
    m_path = path;
    auto doc = std::make_unique<ZDTAnalyzer::SnpDoc>();
    CollectedMessages messages;
    bool opened = false;
    const std::string localPath = LocalPath(path);
    const std::string swapDirectory = LocalPath(m_swapDirectory.isEmpty() ? DefaultSwapDirectory() : m_swapDirectory);
    ProgressRunner runner(dialogParent, tr("Reading %1").arg(path), true);
    connect(&runner, &ProgressRunner::started, this, &SnpUiDocument::progressStarted);
    const bool finished = runner.run([&](zdt::ProgressSink& progress) {
        opened = doc->OnOpenDocument(localPath, swapDirectory, &messages, &progress);
    });
    messages.showAll(dialogParent);
    // Cancel pressed as the last block was read still means the user gave the file up.
    if (!opened || !finished)
        return false;
    m_doc = std::move(doc);
    listenToDocument(true);
    return true;
}

QWidget* SnpUiDocument::createView(QWidget* parent, StatusSink* status) {
    if (!m_doc)
        return nullptr;
    m_status = status;
    auto* view = new SnpView(*this, parent);
    view->initialUpdate();
    connect(this, &SnpUiDocument::contentChanged, view, &SnpView::OnUpdate);
    // The frame may connect to the title only once it has the view: tell it again then.
    QTimer::singleShot(0, this, [this] { emit titleChanged(m_path); });
    emit titleChanged(m_path);
    return view;
}

void SnpUiDocument::refreshStatus() {
    if (m_status != nullptr && m_doc)
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
    if (!m_doc)
        return;
    if (!RunSnpFindDialog(parent, m_findCriteria))
        return;
    runFind(parent, m_findCriteria);
}

void SnpUiDocument::runFind(QWidget* parent, const ZDTAnalyzer::SnpFindCriteria& criteria) {
    if (!m_doc)
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
    if (!m_doc)
        return;
    BoxMessageSink boxes(parent);
    m_doc->showSessionInformation(&boxes, [parent](const ZDTAnalyzer::SnpDoc::SessionInformationDialog& information) {
        SnpSessionInfoDialog dialog(information, parent);
        dialog.exec();
    });
}

void SnpUiDocument::onBookmarkList(QWidget* parent) {
    if (m_doc && m_doc->canShowBookmarkList())
        RunBookmarkList(parent, *m_doc, m_path);
}

}  // namespace zdtui

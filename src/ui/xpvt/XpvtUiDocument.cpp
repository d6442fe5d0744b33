#include "xpvt/XpvtUiDocument.h"

#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "classic/CollectedMessages.h"
#include "classic/ProgressRunner.h"
#include "find/FindSheet701.h"
#include "find/FindSheet702.h"
#include "xmldoc/IncrementalOpen.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"
#include "xpvt/XpvtSessionInfoDialog.h"
#include "xpvt/XpvtView.h"

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

XpvtUiDocument::XpvtUiDocument(QString swapDirectory)
    : m_swapDirectory(std::move(swapDirectory)), m_doc(std::make_unique<ZDTAnalyzer::XpvtDoc>()) {
    listenToDocument(true);
}

XpvtUiDocument::~XpvtUiDocument() {
    listenToDocument(false);
}

// While the file is read a row costs only a flag; otherwise every change (a mark, a
// bookmark, a jump) reaches the views at once.
void XpvtUiDocument::listenToDocument(bool listen) {
    if (!listen || m_closed)
        m_doc->setUpdateListener({});
    else if (m_opening)
        m_doc->setUpdateListener([this] { m_dirty = true; });
    else
        m_doc->setUpdateListener([this] { emit contentChanged(); });
}

void XpvtUiDocument::takeRowsReadSoFar() {
    if (!m_dirty)
        return;
    m_dirty = false;
    emit contentChanged();
    refreshStatus();
}

bool XpvtUiDocument::open(const QString& path, QWidget* dialogParent) {
    m_path = path;
    emit titleChanged(m_path);
    const std::string localPath = LocalPath(path);
    const std::string swapDirectory = LocalPath(m_swapDirectory.isEmpty() ? DefaultSwapDirectory() : m_swapDirectory);
    CollectedMessages messages;
    IncrementalOpen opener(dialogParent, tr("Reading %1").arg(path));
    connect(&opener, &IncrementalOpen::started, this, &XpvtUiDocument::progressStarted);
    m_opener = &opener;
    m_opening = true;
    m_dirty = false;
    listenToDocument(true);
    const bool opened = opener.run(
        [&](zdt::ProgressSink& progress) {
            return m_doc->OnOpenDocument(localPath, swapDirectory, &messages, &progress);
        },
        [this] { takeRowsReadSoFar(); });
    const bool cancelled = opener.wasCancelled();
    m_opener = nullptr;
    m_opening = false;
    listenToDocument(true);
    messages.showAll(dialogParent);
    // The last rows, and the commands that waited for the end of the read.
    m_dirty = false;
    emit contentChanged();
    refreshStatus();
    // Cancel pressed as the last block was read still means the user gave the file up.
    return opened && !cancelled;
}

void XpvtUiDocument::cancelOpening() {
    if (m_opener)
        m_opener->cancel();
}

QWidget* XpvtUiDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    auto* view = new XpvtView(*this, parent);
    view->initialUpdate();
    connect(this, &XpvtUiDocument::contentChanged, view, &XpvtView::onDocumentChanged);
    // The frame may connect to the title only once it has the view: tell it again then.
    QTimer::singleShot(0, this, [this] { emit titleChanged(m_path); });
    emit titleChanged(m_path);
    return view;
}

void XpvtUiDocument::refreshStatus() {
    if (m_status != nullptr && !m_closed)
        m_status->SetStatusDocument(m_path, m_doc->container().rowCount());
}

void XpvtUiDocument::close() {
    if (m_closed)
        return;
    cancelOpening();
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
    m_closed = true;
    listenToDocument(false);
}

void XpvtUiDocument::onFind(QWidget* parent) {
    if (m_opening || m_searching)
        return;
    const bool search = m_doc->is702() ? runFindSheet702(parent, m_doc->findCriteria702())
                                       : runFindSheet701(parent, m_doc->findCriteria701());
    if (search)
        runFind(parent);
}

void XpvtUiDocument::runFind(QWidget* parent) {
    if (m_opening || m_searching)
        return;
    CollectedMessages messages;
    // The search writes its marks on the worker thread: nobody listens until it is done.
    listenToDocument(false);
    ProgressRunner runner(parent, tr("Searching %1").arg(m_path), true);
    connect(&runner, &ProgressRunner::started, this, &XpvtUiDocument::progressStarted);
    m_searching = true;
    runner.run([&](zdt::ProgressSink& progress) { m_doc->find(&messages, &progress); });
    m_searching = false;
    listenToDocument(true);
    messages.showAll(parent);
    // Marks made before a cancel or a failure are real marks: show them too.
    emit contentChanged();
}

void XpvtUiDocument::onSessionInformation(QWidget* parent) {
    XpvtSessionInfoDialog dialog(m_doc->description(), parent);
    dialog.exec();
}

void XpvtUiDocument::onFilter(QWidget* parent) {
    if (m_opening)
        return;
    BoxMessageSink boxes(parent);
    m_doc->filter(&boxes);
}

void XpvtUiDocument::onBookmarkList(QWidget* parent) {
    if (m_doc->canShowBookmarkList())
        RunBookmarkList(parent, *m_doc, m_path);
}

}  // namespace zdtui

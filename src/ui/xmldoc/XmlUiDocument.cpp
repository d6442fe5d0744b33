#include "xmldoc/XmlUiDocument.h"

#include "app/CAnalyzerApp.h"
#include "app/CollectedMessages.h"
#include "app/ProgressRunner.h"
#include "xmldoc/BaseDoc.h"
#include "xmldoc/IncrementalOpen.h"
#include "xmldoc/XmlListView.h"
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

}  // namespace

XmlUiDocument::XmlUiDocument(std::unique_ptr<ZDTAnalyzer::BaseDoc> doc, QString swapDirectory)
    : m_doc(std::move(doc)), m_swapDirectory(std::move(swapDirectory)) {
    listenToDocument(true);
}

XmlUiDocument::~XmlUiDocument() {
    listenToDocument(false);
}

QString XmlUiDocument::swapDirectory() const {
    if (!m_swapDirectory.isEmpty())
        return m_swapDirectory;
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app != nullptr && !app->sessionTempDir().isEmpty())
        return app->sessionTempDir();
    return QDir::tempPath();
}

void XmlUiDocument::listenToDocument(bool listen) {
    if (listen && !m_closed)
        m_doc->setUpdateListener([this] { documentUpdated(); });
    else
        m_doc->setUpdateListener({});
}

// A read appends rows by the thousand between two event passes, so a row costs only a
// flag then. Anything else (a mark, a bookmark) reaches the views at once, and so does a
// jump, which is asked for only for the length of one update.
void XmlUiDocument::documentUpdated() {
    if (m_opening != nullptr && m_doc->jumpRow() == -1) {
        m_rowsWaiting = true;
        return;
    }
    emit contentChanged();
}

void XmlUiDocument::takeRowsReadSoFar() {
    if (m_rowsWaiting) {
        m_rowsWaiting = false;
        emit contentChanged();
    }
    refreshStatus();
    emit openingRefreshed();
}

bool XmlUiDocument::open(const QString& path, QWidget* dialogParent) {
    if (m_opening != nullptr || !m_path.isEmpty())
        return false;  // a document reads its file once
    m_path = path;
    emit titleChanged(m_path);
    const std::string localPath = LocalPath(path);
    const std::string swapPath = LocalPath(swapDirectory());
    CollectedMessages messages;
    IncrementalOpen opener(dialogParent, tr("Reading %1").arg(path));
    connect(&opener, &IncrementalOpen::started, this, &XmlUiDocument::progressStarted);
    m_opening = &opener;
    m_rowsWaiting = false;
    // The commands that must wait for the whole file see the open begin.
    emit contentChanged();
    // Cancel pressed as the last block was read still means the user gave the file up:
    // the opener answers false then.
    const bool opened = opener.run(
        [&](zdt::ProgressSink& progress) { return readFile(localPath, swapPath, &messages, progress); },
        [this] { takeRowsReadSoFar(); });
    m_opening = nullptr;
    m_rowsWaiting = false;
    // The last rows, and the commands that waited for the end of the read.
    emit contentChanged();
    refreshStatus();
    messages.showAll(dialogParent);
    return opened;
}

void XmlUiDocument::cancelOpening() {
    if (m_opening != nullptr)
        m_opening->cancel();
}

QWidget* XmlUiDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    XmlListView* view = makeView(parent);
    m_view = view;
    view->initialUpdate();
    connect(this, &XmlUiDocument::contentChanged, view, &XmlListView::onDocumentChanged);
    // A frame connects to the title only once it has the view: a document read before
    // its window tells the title again then.
    QTimer::singleShot(0, this, [this] {
        if (!m_path.isEmpty())
            emit titleChanged(m_path);
    });
    return view;
}

void XmlUiDocument::refreshStatus() {
    if (m_status != nullptr && !m_closed && (m_view == nullptr || m_view->isActiveView()))
        m_status->SetStatusDocument(m_path, m_doc->container().rowCount());
}

void XmlUiDocument::close() {
    if (m_closed)
        return;
    cancelOpening();
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
    m_closed = true;
    listenToDocument(false);
}

void XmlUiDocument::runSearch(QWidget* parent, const Search& search) {
    // The open still writes the rows; one search at a time.
    if (isOpening() || m_searching)
        return;
    CollectedMessages messages;
    // The search marks rows on the worker thread: nobody listens until it is done.
    listenToDocument(false);
    ProgressRunner runner(parent, tr("Searching %1").arg(m_path), true);
    connect(&runner, &ProgressRunner::started, this, &XmlUiDocument::progressStarted);
    m_searching = true;
    runner.run([&](zdt::ProgressSink& progress) { search(&messages, progress); });
    m_searching = false;
    listenToDocument(true);
    messages.showAll(parent);
    // Marks made before a cancel or a failure are real marks: show them too.
    emit contentChanged();
}

void XmlUiDocument::onBookmarkList(QWidget* parent) {
    if (m_doc->canShowBookmarkList())
        RunBookmarkList(parent, *m_doc, m_path);
}

}  // namespace zdtui

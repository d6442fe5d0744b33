#include "xmldoc/XmlUiDocument.h"

#include "app/BackgroundOperation.h"
#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "xmldoc/BaseDoc.h"
#include "xmldoc/XmlListView.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"

#include <QDir>
#include <QFile>

namespace zdtui {
namespace {

std::string LocalPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

} // namespace

XmlUiDocument::XmlUiDocument(std::unique_ptr<ZDTAnalyzer::BaseDoc> doc, QString swapDirectory)
    : m_doc(std::move(doc)), m_swapDirectory(std::move(swapDirectory)) {
    listenDirectly();
    // The commands that wait for the document's work follow its start and end.
    connect(this, &UiDocument::busyChanged, this, &XmlUiDocument::contentChanged);
}

XmlUiDocument::~XmlUiDocument() {
    m_doc->setUpdateListener({});
}

QString XmlUiDocument::swapDirectory() const {
    if (!m_swapDirectory.isEmpty())
        return m_swapDirectory;
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app != nullptr && !app->sessionTempDir().isEmpty())
        return app->sessionTempDir();
    return QDir::tempPath();
}

void XmlUiDocument::listenDirectly() {
    m_doc->setUpdateListener([this] { Q_EMIT contentChanged(); });
}

// While work runs on another thread, a change only asks for one refresh per event pass.
void XmlUiDocument::beforeOperation(BackgroundOperation& operation) {
    BackgroundOperation* work = &operation;
    m_doc->setUpdateListener([work] { work->postUpdate(); });
}

void XmlUiDocument::workEnded() {
    if (!isClosed())
        listenDirectly();
}

zdt::OperationJob XmlUiDocument::openJob(const QString& path) {
    const std::string localPath = LocalPath(path);
    const std::string swapPath = LocalPath(swapDirectory());
    return [this, localPath, swapPath](zdt::MessageSink& messages, zdt::OperationControl& control) {
        // A cancel as the last block was read still means the user gave the file up.
        const bool read = readFile(localPath, swapPath, &messages, control);
        return read && !control.isCancelRequested() ? zdt::OperationStatus::Done : zdt::StatusOf(false, control);
    };
}

void XmlUiDocument::takeRowsReadSoFar() {
    Q_EMIT contentChanged();
    refreshStatus();
}

bool XmlUiDocument::openEnded(const zdt::OperationOutcome& outcome) {
    workEnded();
    // The last rows, and the commands that waited for the end of the read.
    Q_EMIT contentChanged();
    refreshStatus();
    return outcome.status == zdt::OperationStatus::Done;
}

QWidget* XmlUiDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    XmlListView* view = makeView(parent);
    m_view = view;
    view->initialUpdate();
    connect(this, &XmlUiDocument::contentChanged, view, &XmlListView::onDocumentChanged);
    return view;
}

void XmlUiDocument::refreshStatus() {
    if (m_status != nullptr && !isClosed() && (m_view == nullptr || m_view->isActiveView()))
        m_status->SetStatusDocument(pathName(), m_doc->container().rowCount());
}

void XmlUiDocument::closeDocument() {
    m_doc->setUpdateListener({});
    if (m_status != nullptr)
        m_status->SetStatusDocument(QString(), 0);
}

void XmlUiDocument::runSearch(QWidget* parent, const Search& search) {
    const QPointer<QWidget> boxParent = parent;
    runOperation(
        tr("Searching %1").arg(pathName()),
        [search](zdt::MessageSink& messages, zdt::OperationControl& control) {
            search(&messages, control);
            return zdt::StatusOf(!control.isCancelRequested(), control);
        },
        [this, boxParent](const zdt::OperationOutcome& outcome) {
            workEnded();
            BoxMessageSink boxes(boxParent);
            for (const zdt::UserMessage& message : outcome.messages)
                boxes.showMessage(message);
            // Marks made before a cancel or a failure are real marks: show them too.
            Q_EMIT contentChanged();
        });
}

bool XmlUiDocument::runConversion(QWidget* boxParent, const QString& label, zdt::OperationJob job,
                                  OperationFinish finish) {
    const QPointer<QWidget> parent = boxParent;
    return runOperation(label, std::move(job), [this, parent, finish](const zdt::OperationOutcome& outcome) {
        workEnded();
        BoxMessageSink boxes(parent);
        for (const zdt::UserMessage& message : outcome.messages)
            boxes.showMessage(message);
        if (finish)
            finish(outcome);
    });
}

void XmlUiDocument::onBookmarkList(QWidget* parent) {
    if (m_doc->canShowBookmarkList())
        RunBookmarkList(parent, *m_doc, pathName());
}

} // namespace zdtui

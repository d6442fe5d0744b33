#include "filter/FilterRunner.h"

#include "app/Boxes.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "export/TemporaryName.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>

namespace zdtui {

namespace {

// The window of `document`, which the application's open has just made.
CChildFrame* FrameOf(const UiDocument* document) {
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app == nullptr || app->mainFrame() == nullptr)
        return nullptr;
    for (CChildFrame* child : app->mainFrame()->childFrames()) {
        if (child->document() == document)
            return child;
    }
    return nullptr;
}

void OpenResult(const QString& resultPath, const QString& originalPath) {
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app == nullptr)
        return;
    UiDocument* result = app->openDocumentFile(resultPath);
    // The read has started and captioned the window with the path; the caption says more.
    if (CChildFrame* frame = FrameOf(result))
        frame->setWindowTitle(FilteredCopyTitle(result->pathName(), originalPath));
}

} // namespace

std::string LocalFilePath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

QString FilterRunDirectory() {
    CAnalyzerApp* app = CAnalyzerApp::instance();
    if (app != nullptr && !app->sessionTempDir().isEmpty())
        return app->sessionTempDir();
    return QDir::tempPath() + QLatin1Char('/');
}

QString FilterResultName(const char* extension) {
    return QFile::decodeName(
        QByteArray::fromStdString(ZDTAnalyzer::temporaryName(LocalFilePath(FilterRunDirectory()), extension)));
}

QString FilteredCopyTitle(const QString& resultPath, const QString& originalPath) {
    return QStringLiteral("%1 - Filter of %2").arg(resultPath, QFileInfo(originalPath).fileName());
}

UiDocument::OperationFinish FilterRunFinish(QWidget* boxParent, const QString& resultPath,
                                            const QString& originalPath) {
    const QPointer<QWidget> parent = boxParent;
    return [parent, resultPath, originalPath](const zdt::OperationOutcome& outcome) {
        if (outcome.status == zdt::OperationStatus::Done) {
            OpenResult(resultPath, originalPath);
            return;
        }
        // A cancel was the user's own choice: it raised no box and needs none.
        BoxMessageSink boxes(parent);
        for (const zdt::UserMessage& message : outcome.messages)
            boxes.showMessage(message);
    };
}

} // namespace zdtui

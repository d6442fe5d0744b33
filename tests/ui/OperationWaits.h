#pragma once

#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/UiDocument.h"

#include <QDir>
#include <QSignalSpy>
#include <QStringList>
#include <QTest>

#include <vector>

// Waiting for the background work of documents and windows, by their signals and states.
namespace operation_waits {

// Long enough for the largest file of a test under AddressSanitizer on a loaded machine.
constexpr int WorkTimeoutMs = 120'000;

// How a document's read ended.
struct OpenOutcome {
    bool ended = false;
    bool opened = false;
    std::vector<zdt::UserMessage> messages;
};

// Starts reading `path` and runs the event loop until the read ended.
inline OpenOutcome OpenAndWait(zdtui::UiDocument& document, const QString& path) {
    QSignalSpy finished(&document, &zdtui::UiDocument::openFinished);
    document.startOpen(path);
    OpenOutcome outcome;
    outcome.ended = QTest::qWaitFor([&] { return !finished.isEmpty(); }, WorkTimeoutMs);
    if (outcome.ended) {
        outcome.opened = finished.first().at(0).toBool();
        outcome.messages = document.takeOpenMessages();
    }
    return outcome;
}

inline bool WaitUntilIdle(const zdtui::UiDocument& document) {
    return QTest::qWaitFor([&] { return !document.isBusy(); }, WorkTimeoutMs);
}

// No window of `app` reads its file or runs other work any more.
inline bool AllWorkEnded(const zdtui::CAnalyzerApp& app) {
    if (app.mainFrame() == nullptr)
        return true;
    for (zdtui::CChildFrame* child : app.mainFrame()->childFrames()) {
        if (child->document()->isOpening() || child->document()->isBusy())
            return false;
    }
    return true;
}

inline bool WaitForWork(const zdtui::CAnalyzerApp& app) {
    return QTest::qWaitFor([&] { return AllWorkEnded(app); }, WorkTimeoutMs);
}

inline QStringList MessageTexts(const std::vector<zdt::UserMessage>& messages) {
    QStringList texts;
    for (const zdt::UserMessage& message : messages)
        texts << QString::fromStdString(message.text);
    return texts;
}

// The swap files in `directory` (the run's temporary directory or a test's own).
inline QStringList SwapFiles(const QString& directory) {
    return QDir(directory).entryList({QStringLiteral("*.fc")}, QDir::Files);
}

} // namespace operation_waits

// The desktop while it reads a big trace: how soon the first rows are on screen, and the
// longest time the thread of the windows went without turning its event loop while the
// list grew, scrolled and the window was resized.
//
// usage: bench_ui_open [--scroll] FILE...
// Prints one line per file; exits 1 when a target is missed.

#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/UiDocument.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

constexpr double kFirstRowsTarget = 0.3; // seconds from the open to the first rows shown
constexpr int kTickMilliseconds = 5;     // the probe's heartbeat on the windows' thread

int ShownRows(zdtui::CMainFrame& frame) {
    const QString count = frame.statusPaneText(2);
    return count.section(QLatin1Char(' '), -1).toInt();
}

struct Figures {
    double firstRows = -1;
    double total = 0;
    qint64 longestStall = 0;
    int rows = 0;
    bool opened = false;
};

// Reads `path` in a fresh application object; keeps the event loop turning and measures.
Figures Measure(const QString& path, bool scroll) {
    Figures figures;
    zdtui::CAnalyzerApp analyzer;
    analyzer.InitInstance({});
    zdtui::CMainFrame& frame = *analyzer.mainFrame();
    frame.resize(1200, 800);

    QElapsedTimer clock;
    QElapsedTimer sinceTick;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        figures.longestStall = std::max(figures.longestStall, sinceTick.elapsed() - kTickMilliseconds);
        sinceTick.restart();
        if (figures.firstRows < 0 && ShownRows(frame) > 0)
            figures.firstRows = clock.elapsed() / 1000.0;
        if (!scroll || frame.activeChildFrame() == nullptr)
            return;
        // What a reader does while the list grows: page down, and resize the window now and then.
        if (auto* list = qobject_cast<QAbstractScrollArea*>(frame.activeChildFrame()->view())) {
            QScrollBar* bar = list->verticalScrollBar();
            bar->setValue(bar->value() + bar->pageStep());
        }
        if (clock.elapsed() / 200 % 2 == 0)
            frame.resize(1200, 800);
        else
            frame.resize(1000, 700);
    });
    QObject::connect(&analyzer, &zdtui::CAnalyzerApp::documentOpened, [&](const QString&, bool opened) {
        figures.total = clock.elapsed() / 1000.0;
        figures.opened = opened;
        // exit(), not quit(): quit() would close the windows first.
        QCoreApplication::exit(0);
    });

    clock.start();
    sinceTick.start();
    heartbeat.start(kTickMilliseconds);
    analyzer.openDocumentFile(path);
    QCoreApplication::exec();
    heartbeat.stop();
    figures.rows = ShownRows(frame);
    return figures;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QStringList files = QApplication::arguments().mid(1);
    const bool scroll = files.removeAll(QStringLiteral("--scroll")) > 0;
    if (files.isEmpty()) {
        std::fputs("usage: bench_ui_open [--scroll] FILE...\n", stderr);
        return 2;
    }
    bool allPassed = true;
    for (const QString& file : files) {
        const Figures figures = Measure(file, scroll);
        const bool firstOk = figures.opened && figures.firstRows >= 0 && figures.firstRows <= kFirstRowsTarget;
        allPassed = allPassed && firstOk;
        std::printf("%s  %s: first rows after %.3f s (target <= %.1f), read in %.2f s, %d rows, longest UI-thread "
                    "stall %lld ms\n",
                    firstOk ? "PASS" : "FAIL", qPrintable(file), figures.firstRows, kFirstRowsTarget, figures.total,
                    figures.rows, static_cast<long long>(figures.longestStall));
    }
    return allPassed ? 0 : 1;
}

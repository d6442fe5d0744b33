// The shell with the real classic family: a trace opened as the program opens it gets the
// classic menus, every item of them served by its view, and its status.
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/MenuResources.h"
#include "ui/IsolatedTestMain.h"
#include "ui/MenuLookup.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace zdtui;

namespace {

const QString Sample = QStringLiteral(ZDT_SAMPLES_DIR "/can_bus_601.trc");
const QString SecondSample = QStringLiteral(ZDT_SAMPLES_DIR "/all_types_601.trc");

} // namespace

class ClassicMenuTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void classicTraceGetsEveryMenuItemFromItsView() {
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({Sample}));
        QVERIFY(operation_waits::WaitForWork(app));
        CMainFrame& frame = *app.mainFrame();
        QCOMPARE(frame.childFrames().size(), 1);
        CChildFrame* child = frame.childFrames().first();
        QVERIFY(child->isMaximized());
        QCOMPARE(frame.statusPaneText(1), Sample);
        QCOMPARE(frame.statusPaneText(2), QString("No of Items 60"));

        const int menu = frame.menuResourceShown();
        QCOMPARE(menu, 142);
        QStringList popups;
        for (QAction* popup : frame.menuBar()->actions())
            popups << popup->text();
        QCOMPARE(popups, QStringList({"&File", "&Session", "&View", "&Window", "&Help"}));

        CommandView* view = child->commandView();
        QVERIFY(view != nullptr);
        for (const PopupResource& popup : MenuResource(menu)) {
            for (const MenuItemResource& item : popup.items) {
                if (item.kind != MenuItemResource::Kind::Command)
                    continue;
                QAction* action = MenuItem(frame, popup.title, MenuItemLabel(item.text));
                QVERIFY2(action != nullptr, qPrintable(popup.title + " " + item.text));
                QCOMPARE(action->shortcut(), MenuItemShortcut(item.text));
                if (const auto* command = std::get_if<ViewCommand>(&item.command))
                    QVERIFY2(action == view->commandAction(*command), qPrintable(item.text + " is not the view's"));
            }
        }
        QVERIFY(boxes.boxes.isEmpty());
    }

    void onlyTheActiveTraceAnswersTheKeys() {
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        CMainFrame& frame = *app.mainFrame();
        QVERIFY(app.openDocumentFile(Sample) != nullptr);
        QVERIFY(app.openDocumentFile(SecondSample) != nullptr);
        QVERIFY(operation_waits::WaitForWork(app));
        QCOMPARE(frame.childFrames().size(), 2);
        CommandView* first = frame.childFrames()[0]->commandView();
        CommandView* second = frame.childFrames()[1]->commandView();

        QCOMPARE(second->commandAction(ViewCommand::Find)->shortcut(), QKeySequence("Ctrl+F"));
        QVERIFY(first->commandAction(ViewCommand::Find)->shortcut().isEmpty());
        frame.mdiArea()->setActiveSubWindow(frame.childFrames()[0]);
        QCOMPARE(first->commandAction(ViewCommand::Find)->shortcut(), QKeySequence("Ctrl+F"));
        QVERIFY(second->commandAction(ViewCommand::Find)->shortcut().isEmpty());
        QCOMPARE(frame.statusPaneText(1), Sample);

        // An XPVT file beside them brings its own menu, and the traces' keys stay quiet.
        const QTemporaryDir folder;
        QFile xpvt(QDir(folder.path()).filePath("trace.xpvt"));
        QVERIFY(xpvt.open(QIODevice::WriteOnly));
        xpvt.write("<?xml version=\"1.0\"?>\n<Trace/>\n");
        xpvt.close();
        QVERIFY(app.openDocumentFile(xpvt.fileName()) != nullptr);
        QVERIFY(operation_waits::WaitForWork(app));
        QCOMPARE(frame.menuResourceShown(), 139);
        QVERIFY(first->commandAction(ViewCommand::Find)->shortcut().isEmpty());
        QVERIFY(boxes.boxes.isEmpty());
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<ClassicMenuTest>(argc, argv);
}

#include "ClassicMenuTest.moc"

// The application shell with a stand-in for the classic family: routing of files to
// document families, the file dialog's and the drop's selections with their boxes, the
// command line, child windows, status, recent files, menus and the temporary directory.
#include "app/AboutBox.h"
#include "app/Boxes.h"
#include "app/BrandEdition.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/HelpWindow.h"
#include "app/OperationStrip.h"
#include "snp/SnpUiDocument.h"
#include "ui/IsolatedTestMain.h"
#include "ui/MenuLookup.h"
#include "ui/OperationWaits.h"
#include "xpvt/XpvtUiDocument.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QToolBar>
#include <QUrl>

#include <algorithm>
#include <map>
#include <memory>

using namespace zdtui;
using namespace operation_waits;

namespace {

// A well-formed file without rows: every XML family opens it.
const QByteArray MinimalXml = "<?xml version=\"1.0\"?>\n<Trace/>\n";

// Everything the stand-in documents and the boxes did, in order.
QStringList g_events;

const std::map<ViewCommand, const char*> CommandNames{
    {ViewCommand::Print, "Print"},
    {ViewCommand::PrintPreview, "PrintPreview"},
    {ViewCommand::SaveAsAscii, "SaveAsAscii"},
    {ViewCommand::SessionInfo, "SessionInfo"},
    {ViewCommand::Find, "Find"},
    {ViewCommand::FindNext, "FindNext"},
    {ViewCommand::FindPrevious, "FindPrevious"},
    {ViewCommand::ToggleBookmark, "ToggleBookmark"},
    {ViewCommand::NextBookmark, "NextBookmark"},
    {ViewCommand::PreviousBookmark, "PreviousBookmark"},
    {ViewCommand::ClearBookmarks, "ClearBookmarks"},
    {ViewCommand::CanFilter, "CanFilter"},
    {ViewCommand::StyleKLine, "StyleKLine"},
    {ViewCommand::StyleCan, "StyleCan"},
    {ViewCommand::SaveAs, "SaveAs"},
    {ViewCommand::ToggleNamedBookmark, "ToggleNamedBookmark"},
    {ViewCommand::BookmarkList, "BookmarkList"},
    {ViewCommand::Filter, "Filter"},
    {ViewCommand::IdentifierStatistics, "IdentifierStatistics"},
};

// A classic stand-in whose read runs on the operation's thread like a real family's: a
// file whose first line is "bad" does not open (silently; "bad box" with a box of its
// own), "slow" reads until it is cancelled; "menu 143" asks for the partner's menu,
// "menu 139" for the XML documents' menu with its column popup; the item count is the
// number of lines.
class FakeDocument final : public UiDocument {
public:
    QWidget* createView(QWidget* parent, StatusSink* status) override;
    QString name() const { return QFileInfo(pathName()).fileName(); }

    int m_menu = 142;
    int m_items = 0;
    StatusSink* m_status = nullptr;
    QPointer<QWidget> m_view;

protected:
    zdt::OperationJob openJob(const QString& path) override {
        // Written by the job, read once its thread has ended.
        std::shared_ptr<ReadResult> result = m_result;
        return [result, path](zdt::MessageSink& messages, zdt::OperationControl& control) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly))
                return zdt::OperationStatus::Failed;
            const QList<QByteArray> lines = file.readAll().split('\n');
            result->first = lines.value(0);
            result->lines = int(lines.size());
            if (result->first == "slow") {
                for (unsigned long long step = 0; control.onProgress(step % 1000, 1000); ++step)
                    QThread::msleep(1);
                return zdt::OperationStatus::Cancelled;
            }
            if (result->first == "bad box")
                messages.showMessage({"Fake", "cannot read", zdt::MessageIcon::Error});
            return result->first.startsWith("bad") ? zdt::OperationStatus::Failed : zdt::OperationStatus::Done;
        };
    }
    bool openEnded(const zdt::OperationOutcome& outcome) override {
        if (m_result->first.startsWith("bad"))
            g_events << "open failed " + name();
        if (outcome.status != zdt::OperationStatus::Done)
            return false;
        m_menu = m_result->first == "menu 143" ? 143 : m_result->first == "menu 139" ? 139 : 142;
        m_items = m_result->lines;
        Q_EMIT titleChanged("Fake " + name());
        // Only the active window's document writes the status bar.
        auto* window =
            m_view != nullptr ? qobject_cast<QMdiSubWindow*>(m_view->parentWidget()->parentWidget()) : nullptr;
        if (window != nullptr && window->mdiArea() != nullptr && window->mdiArea()->currentSubWindow() == window)
            m_status->SetStatusDocument(pathName(), m_items);
        return true;
    }
    void closeDocument() override { g_events << "close " + name(); }

private:
    struct ReadResult {
        QByteArray first;
        int lines = 0;
    };
    std::shared_ptr<ReadResult> m_result = std::make_shared<ReadResult>();
};

class FakeView final : public QWidget, public CommandView {
public:
    FakeView(FakeDocument& document, StatusSink* status, QWidget* parent)
        : QWidget(parent), m_document(document), m_status(status) {
        for (const auto& [command, name] : CommandNames) {
            auto* action = new QAction(this);
            connect(action, &QAction::triggered, this,
                    [this, name = QString(name)] { g_events << name + " " + m_document.name(); });
            m_actions[command] = action;
        }
        // A view decides what it serves: nothing to go to without bookmarks.
        m_actions[ViewCommand::NextBookmark]->setEnabled(false);
    }
    QAction* commandAction(ViewCommand command) override { return m_actions.at(command); }
    int menuResource() const override { return m_document.m_menu; }
    void activateView() override { m_status->SetStatusDocument(m_document.pathName(), m_document.m_items); }
    void fillColumnsMenu(QMenu* columns) override {
        columns->clear();
        for (const char* column : {"Time", "Value"})
            columns->addAction(QString(column) + " of " + m_document.name());
    }

    FakeDocument& m_document;
    StatusSink* m_status;
    std::map<ViewCommand, QAction*> m_actions;
};

QWidget* FakeDocument::createView(QWidget* parent, StatusSink* status) {
    m_status = status;
    m_view = new FakeView(*this, status, parent);
    return m_view;
}

class FakeTemplate final : public DocumentTemplate {
public:
    QString extension() const override { return QString(); }
    std::unique_ptr<UiDocument> createDocument() override { return std::make_unique<FakeDocument>(); }
};

std::unique_ptr<DocumentTemplate> MakeFakeTemplate() {
    return std::make_unique<FakeTemplate>();
}

// Keeps each box with its parent, which child windows were maximised when it came and
// which windows (by title) stood then.
class ObservingBoxes final : public Boxes {
public:
    struct Box {
        QWidget* parent;
        QString title;
        QString text;
        QMessageBox::Icon icon;
        QList<bool> maximised;
        QStringList windows;
    };
    ObservingBoxes() { Boxes::install(this); }
    ~ObservingBoxes() override { Boxes::install(nullptr); }
    void show(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        QList<bool> maximised;
        QStringList windows;
        if (m_app != nullptr && m_app->mainFrame() != nullptr) {
            for (CChildFrame* child : m_app->mainFrame()->childFrames()) {
                maximised << child->isMaximized();
                windows << child->windowTitle();
            }
        }
        boxes.push_back({parent, title, text, icon, maximised, windows});
        g_events << "box " + title;
    }
    bool askYesNo(QWidget*, const QString&, const QString&, QMessageBox::Icon) override { return false; }

    CAnalyzerApp* m_app = nullptr;
    QVector<Box> boxes;
};

QList<bool> MaximisedStates(const CMainFrame& frame) {
    QList<bool> states;
    for (CChildFrame* child : frame.childFrames())
        states << child->isMaximized();
    return states;
}

// The menu bar as "title: item|item|..." with shortcuts behind a tab, the way a
// resource writes them.
QStringList MenuBarLayout(QMainWindow& window) {
    QStringList layout;
    for (QAction* popupAction : window.menuBar()->actions()) {
        QStringList items;
        for (QAction* action : popupAction->menu()->actions()) {
            if (action->isSeparator())
                continue;
            QString text = action->text();
            // An item that names its keys itself shows them instead of its shortcut.
            if (!action->shortcut().isEmpty() && !text.contains('\t'))
                text += "\t" + action->shortcut().toString(QKeySequence::PortableText);
            items << text;
        }
        layout << popupAction->text() + ": " + items.join('|');
    }
    return layout;
}

} // namespace

class AnalyzerAppTest : public QObject {
    Q_OBJECT

private:
    QString write(const QString& name, const QByteArray& content = "line\nline\n") {
        const QString path = m_files->filePath(name);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write %s", qPrintable(path));
        file.write(content);
        return path;
    }
    std::unique_ptr<CAnalyzerApp> start(const QStringList& arguments = {}) {
        auto app = std::make_unique<CAnalyzerApp>(&MakeFakeTemplate);
        m_boxes->m_app = app.get();
        if (!app->InitInstance(arguments))
            qWarning("start-up failed");
        return app;
    }
    static QString familyOf(UiDocument* document) {
        if (document == nullptr)
            return "none";
        if (dynamic_cast<XpvtUiDocument*>(document) != nullptr)
            return "XPVT";
        if (dynamic_cast<SnpUiDocument*>(document) != nullptr)
            return "Snapshot";
        return "classic";
    }

    std::unique_ptr<QTemporaryDir> m_files;
    std::unique_ptr<ObservingBoxes> m_boxes;

private Q_SLOTS:
    void init() {
        m_files = std::make_unique<QTemporaryDir>();
        m_boxes = std::make_unique<ObservingBoxes>();
        g_events.clear();
        QSettings("Norvika", "ZDT7").clear();
    }
    void cleanup() { m_boxes.reset(); }

    void routesByExtensionWithoutAskingTheWhitelist() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        QCOMPARE(familyOf(app->openDocumentFile(write("upper.XPVT", MinimalXml))), QString("XPVT"));
        QCOMPARE(familyOf(app->openDocumentFile(write("mixed.Snp", "<SnapList/>"))), QString("Snapshot"));
        QCOMPARE(familyOf(app->openDocumentFile(write("one.trX"))), QString("classic"));
        QCOMPARE(familyOf(app->openDocumentFile(write("other.txt"))), QString("classic"));
        QCOMPARE(familyOf(app->openDocumentFile(write("noextension"))), QString("classic"));
        // Only the file name's extension counts, not a folder's.
        QCOMPARE(familyOf(app->openDocumentFile(write("folder.xpvt/inner"))), QString("classic"));
        QCOMPARE(familyOf(app->openDocumentFile(write("twice.snp.trc"))), QString("classic"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(app->mainFrame()->childFrames().size(), 7);
        QVERIFY(boxes.boxes.isEmpty());

        // A family whose window comes first is named after its file all the same.
        CChildFrame* xpvt = app->mainFrame()->childFrames().first();
        QCOMPARE(xpvt->windowTitle(), QFileInfo(m_files->filePath("upper.XPVT")).absoluteFilePath());
    }

    void fileDialogOpensAcceptedThenWarns() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        const QString trace = write("a.trc");
        const QString xpvt = write("b.xpvt", MinimalXml);
        const QString unknown = write("c.doc");

        app->OpenSelectedFiles({trace, unknown, xpvt});

        CMainFrame& frame = *app->mainFrame();
        QCOMPARE(frame.childFrames().size(), 2);
        QCOMPARE(frame.childFrames()[0]->document()->pathName(), trace);
        QCOMPARE(frame.childFrames()[1]->document()->pathName(), xpvt);
        QCOMPARE(boxes.boxes.size(), 1);
        const ObservingBoxes::Box& box = boxes.boxes.first();
        QCOMPARE(box.title, QString("E001_003 [Wrong file type.]"));
        QCOMPARE(box.text, "Can't open:\n" + unknown);
        QCOMPARE(box.icon, QMessageBox::Warning);
        QVERIFY(box.parent == nullptr);
        // The windows of the accepted files stand before the warning comes, not cascaded:
        // the last one maximised as the first one was, the first behind it.
        QCOMPARE(box.maximised, QList<bool>({false, true}));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(MaximisedStates(frame), QList<bool>({false, true}));
        QCOMPARE(boxes.boxes.size(), 1);
    }

    void fileDialogWithOnlyUnknownFilesWarnsAndLeavesTheWindows() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        QVERIFY(app->openDocumentFile(write("open.trc")) != nullptr);
        QVERIFY(WaitForWork(*app));
        const QString first = write("x.trc3");
        const QString second = write("y.");

        app->OpenSelectedFiles({first, second});

        QCOMPARE(app->mainFrame()->childFrames().size(), 1);
        QCOMPARE(MaximisedStates(*app->mainFrame()), QList<bool>({true}));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes.first().text, "Can't open:\n" + first + "\n" + second);
    }

    void aFailedFileOfTheDialogGoesWithoutDisturbingTheOthers() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        QVERIFY(app->openDocumentFile(write("open.trc")) != nullptr);
        QVERIFY(WaitForWork(*app));
        CChildFrame* open = app->mainFrame()->activeChildFrame();

        app->OpenSelectedFiles({write("broken.trc", "bad\n")});
        QVERIFY(WaitForWork(*app));

        QCOMPARE(app->mainFrame()->childFrames(), QList<CChildFrame*>({open}));
        QCOMPARE(app->mainFrame()->activeChildFrame(), open);
        QCOMPARE(MaximisedStates(*app->mainFrame()), QList<bool>({true}));
        QVERIFY(boxes.boxes.isEmpty());
        QCOMPARE(g_events, QStringList({"open failed broken.trc", "close broken.trc"}));
    }

    void droppedFilesWarnOnTheFrame() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        const QString trace = write("dropped.tr0");
        const QString unknown = write("dropped.bin");

        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(trace), QUrl::fromLocalFile(unknown)});
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&frame, &enter);
        QVERIFY(enter.isAccepted());
        QDropEvent drop(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&frame, &drop);

        QCOMPARE(frame.childFrames().size(), 1);
        QCOMPARE(frame.childFrames()[0]->document()->pathName(), trace);
        QCOMPARE(boxes.boxes.size(), 1);
        const ObservingBoxes::Box& box = boxes.boxes.first();
        QCOMPARE(box.title, QString("E005_001 [Wrong file type.]"));
        QCOMPARE(box.text, "Can't open:\n" + unknown);
        QCOMPARE(box.icon, QMessageBox::Warning);
        QVERIFY(box.parent == &frame);
        QCOMPARE(box.maximised, QList<bool>({true}));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(MaximisedStates(frame), QList<bool>({true}));

        // Only unknown files: the warning, and the windows stay as they are.
        boxes.boxes.clear();
        frame.childFrames()[0]->showNormal();
        const QRect geometry = frame.childFrames()[0]->geometry();
        frame.OnDropFiles({write("only.png")});
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(frame.childFrames().size(), 1);
        QCOMPARE(MaximisedStates(frame), QList<bool>({false}));
        QCOMPARE(frame.childFrames()[0]->geometry(), geometry);
    }

    void commandLineOpensItsFileOrNothing() {
        {
            auto app = start();
            QVERIFY(app->mainFrame()->isVisible());
            QVERIFY(app->mainFrame()->childFrames().isEmpty());
            QCOMPARE(app->mainFrame()->menuResourceShown(), 128);
        }
        {
            // No whitelist here: any extension reaches the classic family.
            const QString path = write("from-shell.log");
            auto app = std::make_unique<CAnalyzerApp>(&MakeFakeTemplate);
            QVERIFY(app->InitInstance({path}));
            QCOMPARE(app->mainFrame()->childFrames().size(), 1);
            QVERIFY(WaitForWork(*app));
            QCOMPARE(app->mainFrame()->childFrames().size(), 1);
            QCOMPARE(app->mainFrame()->childFrames()[0]->document()->pathName(), path);
            QVERIFY(app->mainFrame()->childFrames()[0]->isMaximized());
            QCOMPARE(app->mainFrame()->childFrames()[0]->windowTitle(), QString("Fake from-shell.log"));
            Q_EMIT app->mainFrame()->childFrames()[0]->document()->titleChanged("renamed");
            QCOMPARE(app->mainFrame()->childFrames()[0]->windowTitle(), QString("renamed"));
        }
        {
            // A command-line file that does not open leaves the empty frame, with its box.
            g_events.clear();
            auto app = std::make_unique<CAnalyzerApp>(&MakeFakeTemplate);
            m_boxes->m_app = app.get();
            QVERIFY(app->InitInstance({write("broken.trc", "bad box\n")}));
            QVERIFY(WaitForWork(*app));
            QVERIFY(app->mainFrame()->isVisible());
            QVERIFY(app->mainFrame()->childFrames().isEmpty());
            QCOMPARE(g_events, QStringList({"open failed broken.trc", "close broken.trc", "box Fake"}));
            QCOMPARE(m_boxes->boxes.last().text, QString("cannot read"));
        }
        {
            // Several files chosen in a file manager each get a window, in their order.
            const QStringList paths{write("first.log"), write("second.log")};
            auto app = std::make_unique<CAnalyzerApp>(&MakeFakeTemplate);
            QVERIFY(app->InitInstance(paths));
            QVERIFY(WaitForWork(*app));
            QStringList opened;
            for (CChildFrame* child : app->mainFrame()->childFrames())
                opened.append(child->document()->pathName());
            opened.sort();
            QCOMPARE(opened, QStringList({paths[0], paths[1]}));
        }
    }

    void failedOpenLeavesNoWindowAndDisturbsNoOther() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        QSignalSpy ended(app.get(), &CAnalyzerApp::documentOpened);
        QVERIFY(app->openDocumentFile(write("a.trc")) != nullptr);
        UiDocument* second = app->openDocumentFile(write("b.trc"));
        QVERIFY(second != nullptr);
        QVERIFY(WaitForWork(*app));
        const QString statusBefore = frame.statusPaneText(1);

        // The window of a file that does not open stands while it is read, and goes
        // before its family's box comes.
        const QString broken = write("c.trc", "bad box\n");
        QVERIFY(app->openDocumentFile(broken) != nullptr);
        QCOMPARE(frame.childFrames().size(), 3);
        QVERIFY(WaitForWork(*app));
        QVERIFY(app->openDocumentFile(m_files->filePath("missing.xpvt")) != nullptr);
        QVERIFY(WaitForWork(*app));

        QCOMPARE(frame.childFrames().size(), 2);
        QCOMPARE(frame.activeChildFrame()->document(), second);
        QCOMPARE(frame.statusPaneText(1), statusBefore);
        // The families' own boxes are the only trace of a failed open.
        QCOMPARE(g_events, QStringList({"open failed c.trc", "close c.trc", "box Fake", "box "}));
        QCOMPARE(boxes.boxes.size(), 2);
        for (const ObservingBoxes::Box& box : boxes.boxes)
            QCOMPARE(box.windows, QStringList({"Fake a.trc", "Fake b.trc"}));
        QVERIFY(!app->recentFiles().paths().contains(broken));
        QCOMPARE(ended.size(), 4);
        QCOMPARE(ended.at(2), QVariantList({broken, false}));
        QCOMPARE(ended.at(3).at(1).toBool(), false);
    }

    void openingAnOpenFileActivatesItsWindow() {
        auto app = start();
        const QString path = write("same.trc");
        UiDocument* first = app->openDocumentFile(path);
        QVERIFY(app->openDocumentFile(write("other.trc")) != nullptr);
        QCOMPARE(app->openDocumentFile(path), first);
        QVERIFY(WaitForWork(*app));
        QCOMPARE(app->openDocumentFile(m_files->path() + "/sub/../same.trc"), first);
        QCOMPARE(app->mainFrame()->childFrames().size(), 2);
        QCOMPARE(app->mainFrame()->activeChildFrame()->document(), first);
    }

    void statusFollowsTheActiveDocument() {
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        const QString a = write("a.trc", "1\n2\n");
        const QString b = write("b.trc", "1\n2\n3\n4\n");
        app->openDocumentFile(a);
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.statusPaneText(1), a);
        QCOMPARE(frame.statusPaneText(2), QString("No of Items 3"));
        QCOMPARE(frame.windowTitle(), QString("ZDT-Analyzer - [Fake a.trc]"));
        app->openDocumentFile(b);
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.statusPaneText(1), b);
        QCOMPARE(frame.statusPaneText(2), QString("No of Items 5"));

        frame.mdiArea()->setActiveSubWindow(frame.childFrames()[0]);
        QCOMPARE(frame.statusPaneText(1), a);
        QCOMPARE(frame.statusPaneText(2), QString("No of Items 3"));

        frame.SetStatusText("working");
        QCOMPARE(frame.statusPaneText(1), QString("working"));
        QCOMPARE(frame.statusPaneText(2), QString());

        // Closing the active window hands the status to the one that becomes active.
        QVERIFY(frame.childFrames()[0]->close());
        QTRY_COMPARE(frame.childFrames().size(), 1);
        QCOMPARE(frame.statusPaneText(1), b);
        QCOMPARE(frame.windowTitle(), QString("ZDT-Analyzer - [Fake b.trc]"));
        frame.cascade();
        QCOMPARE(frame.windowTitle(), QString("ZDT-Analyzer - Fake b.trc"));
        QVERIFY(frame.childFrames()[0]->close());
        QTRY_VERIFY(frame.childFrames().isEmpty());
        QCOMPARE(frame.statusPaneText(1), QString());
        QCOMPARE(frame.statusPaneText(2), QString("No of Items 0"));
        QCOMPARE(frame.windowTitle(), QString("ZDT-Analyzer"));
        QCOMPARE(frame.menuResourceShown(), 128);
        QCOMPARE(g_events, QStringList({"close a.trc", "close b.trc"}));
    }

    void recentFilesAreKeptNewestFirst() {
        QStringList opened;
        {
            auto app = start();
            for (int i = 0; i < 9; ++i) {
                opened << write(QString("r%1.trc").arg(i));
                QVERIFY(app->openDocumentFile(opened.last()) != nullptr);
                QVERIFY(WaitForWork(*app));
            }
            app->openDocumentFile(write("failing.trc", "bad\n"));
            QVERIFY(WaitForWork(*app));
        }
        QSettings settings("Norvika", "ZDT7");
        settings.beginGroup("Recent File List");
        for (int i = 0; i < 8; ++i)
            QCOMPARE(settings.value(QString("File%1").arg(i + 1)).toString(), opened[8 - i]);
        QVERIFY(!settings.contains("File9"));

        // A new run lists them in its File menu; an entry that no longer opens leaves the list.
        auto app = start();
        QCOMPARE(app->recentFiles().paths().size(), 8);
        QVERIFY(MenuItem(*app->mainFrame(), "&File", "&1 " + opened[8]) != nullptr);
        QVERIFY(MenuItem(*app->mainFrame(), "&File", "&8 " + opened[1]) != nullptr);
        write("r5.trc", "bad\n");
        QAction* entry = MenuItem(*app->mainFrame(), "&File", "&4 " + opened[5]);
        QVERIFY(entry != nullptr);
        entry->trigger();
        QVERIFY(WaitForWork(*app));
        QVERIFY(!app->recentFiles().paths().contains(opened[5]));
        QCOMPARE(app->recentFiles().paths().size(), 7);
        QVERIFY(MenuItem(*app->mainFrame(), "&File", "&4 " + opened[4]) != nullptr);

        // Opening again puts a file first.
        QVERIFY(app->openDocumentFile(opened[2]) != nullptr);
        QVERIFY(WaitForWork(*app));
        QCOMPARE(app->recentFiles().paths().first(), opened[2]);
        settings.sync();
        QCOMPARE(settings.value("File1").toString(), opened[2]);
    }

    void classicMenusCarryTheResourceTextsAndTheViewsCommands() {
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        QCOMPARE(MenuBarLayout(frame), QStringList({"&File: &Open...\tCtrl+O|P&rint Setup...|Recent File|E&xit",
                                                    "&View: &Toolbar|B&ookmark Toolbar|&Status Bar",
                                                    "&Help: &Help Topics\tF1|&About ZDT-Analyzer..."}));

        app->openDocumentFile(write("standard.trc"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.menuResourceShown(), 142);
        const QStringList standard = MenuBarLayout(frame);
        QCOMPARE(standard.size(), 5);
        QCOMPARE(standard[0], "&File: &Open...\tCtrl+O|&Close|&Print...\tCtrl+P|Print Pre&view|P&rint Setup...|"
                              "Save &As ASCII file...|&1 " +
                                  m_files->filePath("standard.trc") + "|E&xit");
        QCOMPARE(standard[1],
                 QString("&Session: Session Info...|Identifier statistics...|&Find\tCtrl+F|Find &Next\tCtrl+F3|"
                         "Find &Previous\tCtrl+Shift+F3|&Toggle Bookmark\tCtrl+F2|"
                         "&Goto Next Bookmark\tF2|Goto Previous &Bookmark\tShift+F2|"
                         "Clear All Bookmarks\tCtrl+Shift+F2|&Can Filter ..."));
        QCOMPARE(standard[2], QString("&View: Style KLine Link|Style CAN Link|&Toolbar|B&ookmark Toolbar|&Status Bar"));
        QCOMPARE(standard[3], QString("&Window: &Cascade|Tile &Horizontally|Tile &Vertically"));
        QCOMPARE(standard[4], QString("&Help: &Help Topics\tF1|&About ZDT-Analyzer..."));

        // The items run the view's commands and show the view's enabled state.
        auto* view = dynamic_cast<FakeView*>(frame.activeChildFrame()->view());
        QVERIFY(view != nullptr);
        QAction* find = MenuItem(frame, "&Session", "&Find");
        QCOMPARE(find, view->m_actions.at(ViewCommand::Find));
        find->trigger();
        QCOMPARE(g_events.last(), QString("Find standard.trc"));
        QVERIFY(!MenuItem(frame, "&Session", "&Goto Next Bookmark")->isEnabled());
        QVERIFY(frame.bookmarkToolBar()->actions().contains(view->m_actions.at(ViewCommand::ToggleBookmark)));
        QAction* bookmarkBar = MenuItem(frame, "&View", "B&ookmark Toolbar");
        QVERIFY(bookmarkBar->isChecked());
        bookmarkBar->trigger();
        QVERIFY(frame.bookmarkToolBar()->isHidden());
        QVERIFY(!bookmarkBar->isChecked());
        bookmarkBar->trigger();
        QVERIFY(!frame.bookmarkToolBar()->isHidden());

        // The partner's menu keeps its trailing blank and its own about text; only the
        // active view's actions carry the keys.
        app->openDocumentFile(write("partner.trc", "menu 143\n"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.menuResourceShown(), 143);
        const QStringList partner = MenuBarLayout(frame);
        QCOMPARE(partner[2], QString("&View: Style KLine Link |Style CAN Link|&Toolbar|B&ookmark Toolbar|&Status Bar"));
        QCOMPARE(partner[4], QString("&Help: &Help Topics\tF1|&About OVX-ANALYZER..."));
        QVERIFY(view->m_actions.at(ViewCommand::Find)->shortcut().isEmpty());
        frame.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&frame));
        QTest::keyClick(&frame, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(g_events.last(), QString("Find partner.trc"));

        // Every view closed: back to the edition's menu, with the commands still there but off.
        frame.mdiArea()->closeAllSubWindows();
        QTRY_VERIFY(frame.childFrames().isEmpty());
        QCOMPARE(frame.menuResourceShown(), 128);
        for (QAction* action : frame.bookmarkToolBar()->actions())
            QVERIFY(!action->isEnabled());
    }

    void xmlMenuFollowsTheActiveViewsColumns() {
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        app->openDocumentFile(write("first.xml", "menu 139\n"));
        app->openDocumentFile(write("second.xml", "menu 139\n"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.menuResourceShown(), 139);
        const QStringList layout = MenuBarLayout(frame);
        QCOMPARE(layout.size(), 5);
        QVERIFY2(layout[0].contains("|Save &As...\tCtrl+Shift+S|"), qPrintable(layout[0]));
        QCOMPARE(layout[1], QString("&Session: Session Info...|&Find\tCtrl+F|Find &Next\tCtrl+F3|"
                                    "Find &Previous\tCtrl+Shift+F3|&Toggle Bookmark\tCtrl+F2|"
                                    "Toggle Bookmark with Na&me...\tCtrl+Alt+F2; Alt+Shift+F2|&Goto Next Bookmark\tF2|"
                                    "Goto Previous &Bookmark\tShift+F2|Clear All Bookmarks\tCtrl+Shift+F2|"
                                    "Bookmark &List...\tCtrl+B|Filte&r..."));
        QCOMPARE(layout[2], QString("&View: &Columns|&Toolbar|B&ookmark Toolbar|&Status Bar"));

        const auto columnItems = [&frame] {
            QStringList texts;
            QAction* popup = MenuItem(frame, "&View", "&Columns");
            if (popup == nullptr || popup->menu() == nullptr)
                return QStringList({"no popup"});
            for (QAction* action : popup->menu()->actions())
                texts << action->text();
            return texts;
        };
        QCOMPARE(columnItems(), QStringList({"Time of second.xml", "Value of second.xml"}));
        frame.mdiArea()->setActiveSubWindow(frame.childFrames().first());
        QCOMPARE(columnItems(), QStringList({"Time of first.xml", "Value of first.xml"}));

        // The new commands reach the view's actions.
        MenuItem(frame, "&Session", "Bookmark &List...")->trigger();
        MenuItem(frame, "&File", "Save &As...")->trigger();
        QCOMPARE(g_events.mid(g_events.size() - 2), QStringList({"BookmarkList first.xml", "SaveAs first.xml"}));

        // A classic view has no column popup.
        app->openDocumentFile(write("classic.trc"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(columnItems(), QStringList({"no popup"}));
    }

    void windowsAreArranged() {
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        frame.resize(900, 700);
        app->openDocumentFile(write("a.trc"));
        app->openDocumentFile(write("b.trc"));
        QVERIFY(WaitForWork(*app));
        const QRect area = frame.mdiArea()->viewport()->rect();

        frame.tileVertically();
        QCOMPARE(frame.childFrames()[0]->geometry(), QRect(0, 0, area.width() / 2, area.height()));
        QCOMPARE(frame.childFrames()[1]->geometry().left(), area.width() / 2);
        frame.tileHorizontally();
        QCOMPARE(frame.childFrames()[0]->geometry(), QRect(0, 0, area.width(), area.height() / 2));
        QCOMPARE(frame.childFrames()[1]->geometry().top(), area.height() / 2);
        QCOMPARE(MaximisedStates(frame), QList<bool>({false, false}));
    }

    void newWindowsFollowTheActiveWindowsState() {
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        frame.resize(900, 700);
        // No window yet, then a maximised one: the new windows come maximised.
        app->openDocumentFile(write("a.trc"));
        app->openDocumentFile(write("b.trc"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(MaximisedStates(frame), QList<bool>({false, true}));

        // A window in its own frame: the next one comes beside it at two thirds of the
        // area, and the others keep their places.
        frame.tileVertically();
        CChildFrame* active = frame.childFrames()[1];
        frame.mdiArea()->setActiveSubWindow(active);
        const QRect area = frame.mdiArea()->viewport()->rect();
        const QRect first = frame.childFrames()[0]->geometry();
        const QRect second = active->geometry();
        UiDocument* third = app->openDocumentFile(write("c.trc"));
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.childFrames().size(), 3);
        CChildFrame* added = frame.childFrames()[2];
        QCOMPARE(added->document(), third);
        QCOMPARE(frame.activeChildFrame(), added);
        QCOMPARE(MaximisedStates(frame), QList<bool>({false, false, false}));
        QVERIFY2(area.contains(added->geometry()), qPrintable(QString("%1,%2 %3x%4")
                                                                  .arg(added->geometry().x())
                                                                  .arg(added->geometry().y())
                                                                  .arg(added->width())
                                                                  .arg(added->height())));
        QCOMPARE(added->width(), std::max(area.width() * 2 / 3, 320));
        QCOMPARE(added->height(), std::max(area.height() * 2 / 3, 200));
        QVERIFY(added->geometry() != second);
        QCOMPARE(frame.childFrames()[0]->geometry(), first);
        QCOMPARE(frame.childFrames()[1]->geometry(), second);

        // Several at once from the file dialog: none is cascaded, the earlier ones stay.
        const QRect thirdGeometry = added->geometry();
        app->OpenSelectedFiles({write("d.trc"), write("e.trc")});
        QVERIFY(WaitForWork(*app));
        QCOMPARE(frame.childFrames().size(), 5);
        QCOMPARE(frame.childFrames()[0]->geometry(), first);
        QCOMPARE(frame.childFrames()[1]->geometry(), second);
        QCOMPARE(frame.childFrames()[2]->geometry(), thirdGeometry);
        for (CChildFrame* child : frame.childFrames()) {
            QVERIFY(!child->isMaximized());
            QVERIFY(area.contains(child->geometry()));
        }

        // A maximised active window again: the next one is maximised too.
        frame.childFrames()[4]->showMaximized();
        app->openDocumentFile(write("f.trc"));
        QVERIFY(WaitForWork(*app));
        QVERIFY(frame.activeChildFrame()->isMaximized());
        QCOMPARE(frame.activeChildFrame()->document()->pathName(), m_files->filePath("f.trc"));
    }

    void openDialogOffersTheTraceFilesAndAllFiles() {
        auto app = start();
        QStringList filters;
        QTimer poll;
        poll.setInterval(10);
        connect(&poll, &QTimer::timeout, this, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr)
                return;
            poll.stop();
            filters = dialog->nameFilters();
            dialog->reject();
        });
        poll.start();
        app->OnFileOpen();
        QCOMPARE(filters.size(), 2);
        QVERIFY2(filters[0].contains("*.trc") && filters[0].contains("*.xpvt") && filters[0].contains("*.snp"),
                 qPrintable(filters[0]));
        QCOMPARE(filters[1], QString("All files (*)"));
        QVERIFY(app->mainFrame()->childFrames().isEmpty());
    }

    // A read that never ends by itself (the "slow" stand-in), ended by each way a user
    // has: the window's Cancel, closing the window, closing the frame, ending the program.
    void aReadIsCancelledByItsStripSilently() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        QSignalSpy ended(app.get(), &CAnalyzerApp::documentOpened);
        const QString path = write("slow.trc", "slow\n");
        UiDocument* document = app->openDocumentFile(path);
        QVERIFY(document != nullptr);
        QCOMPARE(frame.childFrames().size(), 1);
        CChildFrame* child = frame.childFrames().first();
        QPointer<CChildFrame> watched = child;
        QVERIFY(document->isOpening());
        OperationStrip* strip = child->operationStrip();
        QCOMPARE(strip->followed(), document->operation());
        QVERIFY(strip->isVisibleTo(child));
        QVERIFY(strip->cancelButton()->isVisibleTo(child));
        QVERIFY(strip->cancelButton()->isEnabled());
        // Opening it again while it is read finds the same window.
        QCOMPARE(app->openDocumentFile(path), document);
        QCOMPARE(frame.childFrames().size(), 1);
        QTRY_VERIFY(strip->progressBar()->value() > 0 || strip->progressBar()->maximum() == 0);

        strip->cancelButton()->click();
        QVERIFY(!strip->cancelButton()->isEnabled());
        QVERIFY(ended.wait(WorkTimeoutMs));
        QCOMPARE(ended.first(), QVariantList({path, false}));
        QVERIFY(watched == nullptr);
        QVERIFY(frame.childFrames().isEmpty());
        QVERIFY(boxes.boxes.isEmpty());
        QCOMPARE(g_events, QStringList({"close slow.trc"}));
        QVERIFY(!app->recentFiles().paths().contains(path));
    }

    void closingTheWindowDuringTheReadCancelsAndClosesIt() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        CMainFrame& frame = *app->mainFrame();
        QSignalSpy ended(app.get(), &CAnalyzerApp::documentOpened);
        QVERIFY(app->openDocumentFile(write("done.trc")) != nullptr);
        QVERIFY(WaitForWork(*app));
        UiDocument* slow = app->openDocumentFile(write("slow.trc", "slow\n"));
        QVERIFY(slow != nullptr && slow->isOpening());
        QPointer<BackgroundOperation> operation = slow->operation();
        QVERIFY(operation != nullptr);

        QVERIFY(frame.childFrames()[1]->close());
        // The work has unwound by the time the window is closed.
        QVERIFY(operation == nullptr || !operation->isRunning());
        QCOMPARE(g_events, QStringList({"close slow.trc"}));
        QTRY_COMPARE(frame.childFrames().size(), 1);
        QCOMPARE(frame.activeChildFrame()->document()->pathName(), m_files->filePath("done.trc"));
        QTest::qWait(20);
        // A read given up with its window reports no end and raises no box.
        QCOMPARE(ended.size(), 1);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void closingTheFrameOrEndingTheProgramDuringReadsLeavesNothing() {
        {
            auto app = start();
            CMainFrame& frame = *app->mainFrame();
            app->openDocumentFile(write("slow1.trc", "slow\n"));
            app->openDocumentFile(write("slow2.trc", "slow\n"));
            QCOMPARE(frame.childFrames().size(), 2);
            QVERIFY(frame.close());
            QCOMPARE(g_events, QStringList({"close slow1.trc", "close slow2.trc"}));
            QTRY_VERIFY(frame.childFrames().isEmpty());
            QVERIFY(!frame.isVisible());
        }
        g_events.clear();
        {
            auto app = start();
            const QString session = app->sessionTempDir();
            app->openDocumentFile(write("slow3.trc", "slow\n"));
            QVERIFY(app->mainFrame()->childFrames().first()->document()->isOpening());
            app.reset();
            QCOMPARE(g_events, QStringList({"close slow3.trc"}));
            QVERIFY(!QFileInfo::exists(session));
        }
        QVERIFY(m_boxes->boxes.isEmpty());
    }

    void perRunDirectoryGoesAtExit() {
        auto app = start();
        const QString session = app->sessionTempDir();
        QVERIFY(session.startsWith(QDir(qEnvironmentVariable("ZDT_ANALYZER_HOME")).filePath("Temp/temp")));
        QVERIFY(QFileInfo(session).isDir());
        QFile leftover(session + "swap.fc");
        QVERIFY(leftover.open(QIODevice::WriteOnly));
        leftover.close();
        app->openDocumentFile(write("open.trc"));
        QVERIFY(WaitForWork(*app));

        app.reset();
        QVERIFY(!QFileInfo::exists(session));
        QVERIFY(QFileInfo(QDir(qEnvironmentVariable("ZDT_ANALYZER_HOME")).filePath("Temp")).isDir());
        // Documents still open at the end are closed first.
        QCOMPARE(g_events, QStringList({"close open.trc"}));
    }

    void aboutBoxesByEdition() {
        const AboutBox standard(zdt::EditionInfoFor(zdt::BrandEditionStandard), "1.2.3");
        QCOMPARE(standard.windowTitle(), QString("About ZDT-Analyzer"));
        QCOMPARE(standard.lines(), QStringList({"ZDT-Analyzer", "Version 1.2.3"}));
        const AboutBox partner(zdt::EditionInfoFor(zdt::BrandEditionPartner), "1.2.3");
        QCOMPARE(partner.windowTitle(), QString("About OVX-ANALYZER"));
        QCOMPARE(partner.lines(), QStringList({"OVX-ANALYZER", "Vehicle Analyzer V7", "Version 1.2.3"}));
        const AboutBox customer(zdt::EditionInfoFor(zdt::BrandEditionCustomer), "1.2.3");
        QCOMPARE(customer.windowTitle(), QString("About ZDT-Analyzer NORDWAGEN AG"));
        QCOMPARE(customer.lines(), QStringList({"ZDT-Analyzer NORDWAGEN AG", "Version 1.2.3"}));
    }

    void helpShowsTheBundledPage() {
        ObservingBoxes& boxes = *m_boxes;
        auto app = start();
        // Beside a test program there is no installation, so the page is missing there.
        QVERIFY(!QFileInfo::exists(CAnalyzerApp::HelpPagePath()));
        app->mainFrame()->frameAction(FrameCommand::Help)->trigger();
        QCOMPARE(boxes.boxes.size(), 1);
        QVERIFY(boxes.boxes.first().text.contains("analyzer_5.htm"));
        QVERIFY(QApplication::overrideCursor() == nullptr);

        HelpWindow window;
        window.showPage(QStringLiteral(ZDT_SAMPLES_DIR "/../Analyzer/help/analyzer_5.htm"));
        QCOMPARE(window.windowTitle(), QString("ZDT-Analyzer Help"));
        QVERIFY(window.toPlainText().contains("trace"));
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<AnalyzerAppTest>(argc, argv);
}

#include "AnalyzerAppTest.moc"

// Large files of every family read in the background of a window that stands at once: the
// list grows while the read runs, and every way of ending the read early (Cancel, closing
// the window or the frame, ending the program) leaves no window, no swap file and no box;
// a search asked for while the read runs does nothing, and a search of an open document
// may be cut short by closing its window. A read that fails shows its box once its window
// is gone.
#include "classic/CAnalyzerDoc.h"
#include "snp/SnpDoc.h"
#include "xpvt/XpvtDoc.h"

#include "ClassicTraceGenerator.h"
#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "app/Boxes.h"
#include "app/OperationStrip.h"
#include "classic/CAnaView.h"
#include "classic/ClassicDocument.h"
#include "classic/ClassicListModel.h"
#include "snp/SnpUiDocument.h"
#include "ui/IsolatedTestMain.h"
#include "ui/OperationWaits.h"
#include "xmldoc/XmlListView.h"
#include "xpvt/XpvtUiDocument.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMdiArea>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>

#include <fstream>
#include <functional>

using namespace zdtui;
using namespace operation_waits;

namespace {

// Keeps each box with the titles of the windows that stood when it came.
class WindowBoxes final : public Boxes {
public:
    struct Box {
        QString text;
        QStringList windows;
    };
    explicit WindowBoxes(CAnalyzerApp& app) : m_app(app) { Boxes::install(this); }
    ~WindowBoxes() override { Boxes::install(nullptr); }
    void show(QWidget*, const QString&, const QString& text, QMessageBox::Icon) override {
        QStringList windows;
        if (m_app.mainFrame() != nullptr) {
            for (CChildFrame* child : m_app.mainFrame()->childFrames())
                windows << child->windowTitle();
        }
        boxes.push_back({text, windows});
    }
    bool askYesNo(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        show(parent, title, text, icon);
        return false;
    }

    QVector<Box> boxes;

private:
    CAnalyzerApp& m_app;
};

// The rows the window's list shows, whichever family.
int ListRows(CChildFrame& child) {
    if (auto* list = qobject_cast<XmlListView*>(child.view()))
        return list->itemCount();
    if (auto* classic = qobject_cast<CAnaView*>(child.view()))
        return classic->model()->rowCount();
    return -1;
}

// Calls `onNews` after the window's list took the news of its document's running work.
void FollowWork(UiDocument& document, QObject* context, const std::function<void()>& onNews) {
    QObject::connect(document.operation(), &BackgroundOperation::updated, context, onNews);
}

bool IsXml(const QString& path) {
    return !path.endsWith(QStringLiteral(".trc"));
}

} // namespace

class LongReadTest : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_snapshot;
    QString m_xpvt;
    QString m_classic;
    QString m_small;
    QMap<QString, int> m_rows;

    QString path(const QString& name) const { return QDir(m_dir.path()).filePath(name); }

    void addFamilies() {
        QTest::addColumn<QString>("file");
        QTest::newRow("snapshot") << m_snapshot;
        QTest::newRow("process value trace") << m_xpvt;
        QTest::newRow("classic trace") << m_classic;
    }

    // Opens `file` and waits for the first rows to be on screen.
    static CChildFrame* openUntilFirstRows(CAnalyzerApp& app, const QString& file) {
        UiDocument* document = app.openDocumentFile(file);
        if (document == nullptr)
            return nullptr;
        CChildFrame* child = app.mainFrame()->activeChildFrame();
        if (child == nullptr || child->document() != document)
            return nullptr;
        if (!QTest::qWaitFor([&] { return ListRows(*child) > 0 || !document->isOpening(); }, WorkTimeoutMs))
            return nullptr;
        return document->isOpening() ? child : nullptr;
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        QElapsedTimer timer;
        timer.start();
        // Large enough for reads of many event passes under AddressSanitizer, small
        // enough to write and read in a few seconds.
        {
            zdtgen::SnapshotOptions options;
            options.seed = 11;
            options.targetBytes = 12'000'000;
            m_snapshot = path("large.snp");
            std::ofstream out(QFile::encodeName(m_snapshot).toStdString(), std::ios::binary);
            zdtgen::WriteSnapshot(out, options);
        }
        {
            zdtgen::SnapshotOptions options;
            options.targetBytes = 2'000;
            m_small = path("small.snp");
            std::ofstream out(QFile::encodeName(m_small).toStdString(), std::ios::binary);
            zdtgen::WriteSnapshot(out, options);
        }
        {
            zdtgen::XpvtTraceOptions options;
            options.schema = zdtgen::XpvtSchema::V701;
            options.targetBytes = 12'000'000;
            m_xpvt = path("large.xpvt");
            std::ofstream out(QFile::encodeName(m_xpvt).toStdString(), std::ios::binary);
            zdtgen::WriteXpvtTrace(out, options);
        }
        {
            zdtgen::ClassicTraceOptions options;
            options.title = std::string("CAN Onboard");
            options.mix = zdtgen::RecordMix::Traffic;
            options.targetBytes = 30u << 20;
            m_classic = path("large.trc");
            std::ofstream out(QFile::encodeName(m_classic).toStdString(), std::ios::binary);
            zdtgen::WriteClassicTrace(out, options);
        }
        // What the core alone reads from the files the summaries do not count.
        {
            ZDTAnalyzer::XpvtDoc reference;
            zdt::MessageList messages;
            zdt::OperationControl control;
            QVERIFY(reference.OnOpenDocument(QFile::encodeName(m_xpvt).toStdString(),
                                             QFile::encodeName(m_dir.path()).toStdString(), &messages, &control));
            m_rows[m_xpvt] = reference.container().rowCount();
        }
        {
            ZDTAnalyzer::SnpDoc reference;
            zdt::MessageList messages;
            zdt::OperationControl control;
            QVERIFY(reference.OnOpenDocument(QFile::encodeName(m_snapshot).toStdString(),
                                             QFile::encodeName(m_dir.path()).toStdString(), &messages, &control));
            m_rows[m_snapshot] = reference.container().rowCount();
        }
        {
            CAnalyzerDoc reference;
            QVERIFY(reference.OnOpenDocument(QFile::encodeName(m_classic).toStdString()));
            m_rows[m_classic] = int(reference.GetVisibleCount());
        }
        for (const QString& file : {m_snapshot, m_xpvt, m_classic})
            QVERIFY2(m_rows[file] > 10'000, qPrintable(file));
        qInfo("files written and measured in %lld ms", timer.elapsed());
    }

    void init() { QSettings("Norvika", "ZDT7").clear(); }

    void listGrowsWhileTheFileIsRead_data() { addFamilies(); }
    void listGrowsWhileTheFileIsRead() {
        QFETCH(QString, file);
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        QSignalSpy ended(&app, &CAnalyzerApp::documentOpened);
        QElapsedTimer timer;
        timer.start();

        UiDocument* document = app.openDocumentFile(file);
        QVERIFY(document != nullptr);
        // The window stands before anything was read, its strip offering Cancel.
        QCOMPARE(app.mainFrame()->childFrames().size(), 1);
        CChildFrame& child = *app.mainFrame()->childFrames().first();
        QCOMPARE(child.document(), document);
        QVERIFY(document->isOpening());
        QVERIFY(document->isBusy());
        OperationStrip& strip = *child.operationStrip();
        QVERIFY(strip.isVisibleTo(&child));
        QVERIFY(strip.cancelButton()->isVisibleTo(&child));
        QVERIFY(strip.cancelButton()->isEnabled());

        QList<int> counts;
        bool stripShownThroughout = true;
        FollowWork(*document, this, [&] {
            counts << ListRows(child);
            stripShownThroughout = stripShownThroughout && strip.isVisibleTo(&child);
        });
        QVERIFY(ended.wait(WorkTimeoutMs));
        qInfo("read in %lld ms, %lld passes with news", timer.elapsed(), qlonglong(counts.size()));
        QCOMPARE(ended.first(), QVariantList({file, true}));

        // The list grew across several passes while the read ran.
        QVERIFY(stripShownThroughout);
        QList<int> growing;
        for (int count : counts) {
            if (count > 0 && count < m_rows[file] && (growing.isEmpty() || count > growing.last()))
                growing << count;
        }
        QVERIFY2(growing.size() >= 3, qPrintable(QString::number(growing.size())));
        for (int i = 1; i < counts.size(); ++i)
            QVERIFY(counts[i] >= counts[i - 1]);
        // At the end it holds every row of the file, and the strip is gone.
        QCOMPARE(ListRows(child), m_rows[file]);
        QVERIFY(!document->isOpening());
        QVERIFY(!strip.isVisibleTo(&child));
        QCOMPARE(app.mainFrame()->statusPaneText(2), QString("No of Items %1").arg(m_rows[file]));
        QVERIFY(app.recentFiles().paths().contains(file));
        QVERIFY(boxes.boxes.isEmpty());
        if (IsXml(file))
            QCOMPARE(SwapFiles(app.sessionTempDir()).size(), 1);
    }

    void cancelThroughTheStripLeavesNothing_data() { addFamilies(); }
    void cancelThroughTheStripLeavesNothing() {
        QFETCH(QString, file);
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        QVERIFY(app.openDocumentFile(m_small) != nullptr);
        QVERIFY(WaitForWork(app));
        CChildFrame* before = app.mainFrame()->activeChildFrame();
        QSignalSpy ended(&app, &CAnalyzerApp::documentOpened);

        CChildFrame* child = openUntilFirstRows(app, file);
        QVERIFY(child != nullptr);
        QPointer<CChildFrame> watched = child;
        QSignalSpy gone(child->document(), &QObject::destroyed);
        if (IsXml(file))
            QCOMPARE(SwapFiles(app.sessionTempDir()).size(), 2);
        child->operationStrip()->cancelButton()->click();

        QVERIFY(ended.wait(WorkTimeoutMs));
        QCOMPARE(ended.first(), QVariantList({file, false}));
        QVERIFY(watched == nullptr);
        QCOMPARE(gone.size(), 1);
        QCOMPARE(app.mainFrame()->childFrames(), QList<CChildFrame*>({before}));
        QCOMPARE(app.mainFrame()->activeChildFrame(), before);
        QCOMPARE(SwapFiles(app.sessionTempDir()).size(), 1);
        QVERIFY(!app.recentFiles().paths().contains(file));
        // A cancelled read is silent.
        QVERIFY(boxes.boxes.isEmpty());
    }

    void closingTheWindowDuringTheReadLeavesNothing_data() { addFamilies(); }
    void closingTheWindowDuringTheReadLeavesNothing() {
        QFETCH(QString, file);
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        QSignalSpy ended(&app, &CAnalyzerApp::documentOpened);
        CChildFrame* child = openUntilFirstRows(app, file);
        QVERIFY(child != nullptr);
        UiDocument* document = child->document();
        QPointer<BackgroundOperation> read = document->operation();
        QVERIFY(read != nullptr);

        QPointer<UiDocument> watched = document;
        QVERIFY(child->close());
        // The document closed: its read was cancelled and has unwound already.
        QVERIFY(read == nullptr);
        QTRY_VERIFY(app.mainFrame()->childFrames().isEmpty());
        QTRY_VERIFY(watched == nullptr);
        QCOMPARE(SwapFiles(app.sessionTempDir()), QStringList());
        QCOMPARE(app.mainFrame()->statusPaneText(1), QString());
        QCOMPARE(app.mainFrame()->statusPaneText(2), QString("No of Items 0"));
        QTest::qWait(20);
        QCOMPARE(ended.size(), 0);
        QVERIFY(boxes.boxes.isEmpty());
        QVERIFY(!app.recentFiles().paths().contains(file));
    }

    void closingTheFrameOrEndingTheProgramDuringReads() {
        {
            CAnalyzerApp app;
            WindowBoxes boxes(app);
            QVERIFY(app.InitInstance({}));
            CMainFrame& frame = *app.mainFrame();
            QVERIFY(app.openDocumentFile(m_snapshot) != nullptr);
            QVERIFY(app.openDocumentFile(m_xpvt) != nullptr);
            QVERIFY(openUntilFirstRows(app, m_classic) != nullptr);
            QCOMPARE(frame.childFrames().size(), 3);
            QList<QPointer<UiDocument>> documents;
            for (CChildFrame* child : frame.childFrames())
                documents << child->document();

            QVERIFY(frame.close());
            QTRY_VERIFY(frame.childFrames().isEmpty());
            for (const QPointer<UiDocument>& document : documents)
                QTRY_VERIFY(document == nullptr);
            QVERIFY(!frame.isVisible());
            QCOMPARE(SwapFiles(app.sessionTempDir()), QStringList());
            QVERIFY(boxes.boxes.isEmpty());
        }
        {
            auto app = std::make_unique<CAnalyzerApp>();
            QVERIFY(app->InitInstance({}));
            const QString session = app->sessionTempDir();
            QVERIFY(app->openDocumentFile(m_classic) != nullptr);
            QVERIFY(app->openDocumentFile(m_xpvt) != nullptr);
            QVERIFY(openUntilFirstRows(*app, m_snapshot) != nullptr);
            QCOMPARE(SwapFiles(session).size(), 2);
            app.reset();
            QVERIFY(!QFileInfo::exists(session));
        }
    }

    void openingTheSameFileDuringItsReadActivatesItsWindow() {
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        CChildFrame* reading = openUntilFirstRows(app, m_snapshot);
        QVERIFY(reading != nullptr);
        UiDocument* small = app.openDocumentFile(m_small);
        QVERIFY(small != nullptr);
        // The small file's read makes its swap file on its own thread.
        QTRY_VERIFY_WITH_TIMEOUT(!small->isOpening(), WorkTimeoutMs);
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);

        QCOMPARE(app.openDocumentFile(m_snapshot), reading->document());
        QVERIFY(reading->document()->isOpening());
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);
        QCOMPARE(app.mainFrame()->activeChildFrame(), reading);
        QCOMPARE(SwapFiles(app.sessionTempDir()).size(), 2);
        QVERIFY(WaitForWork(app));
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);
        QCOMPARE(ListRows(*reading), m_rows[m_snapshot]);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void aSearchAskedForDuringTheReadDoesNothing() {
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        // Any dialog a find command brought up would be a fault: count and close it.
        int dialogs = 0;
        QTimer closer;
        closer.setInterval(10);
        connect(&closer, &QTimer::timeout, this, [&] {
            if (QWidget* modal = QApplication::activeModalWidget()) {
                ++dialogs;
                modal->close();
            }
        });
        closer.start();

        CChildFrame* snapshot = openUntilFirstRows(app, m_snapshot);
        QVERIFY(snapshot != nullptr);
        auto& snp = *qobject_cast<SnpUiDocument*>(snapshot->document());
        BackgroundOperation* read = snp.operation();
        ZDTAnalyzer::SnpFindCriteria everything;
        everything.searchProcessValue = true;
        everything.valueNameOn = true;
        snp.runFind(snapshot, everything);
        snp.onFind(snapshot);
        QCOMPARE(snp.operation(), read);

        CChildFrame* trace = openUntilFirstRows(app, m_xpvt);
        QVERIFY(trace != nullptr);
        auto& xpvt = *qobject_cast<XpvtUiDocument*>(trace->document());
        xpvt.xpvtDoc().findCriteria701().searchPrimitives = true;
        xpvt.xpvtDoc().findCriteria701().matchAll = true;
        read = xpvt.operation();
        xpvt.runFind(trace);
        xpvt.onFind(trace);
        QCOMPARE(xpvt.operation(), read);

        CChildFrame* classic = openUntilFirstRows(app, m_classic);
        QVERIFY(classic != nullptr);
        auto* view = qobject_cast<CAnaView*>(classic->view());
        ClassicFindCriteria criteria;
        criteria.useIdentifier = true;
        criteria.identifierText = "7E8";
        QVERIFY(!view->commandAction(ViewCommand::Find)->isEnabled());
        view->commandAction(ViewCommand::Find)->trigger();
        view->runSearch(criteria, true, true);

        QVERIFY(WaitForWork(app));
        QCOMPARE(app.mainFrame()->childFrames().size(), 3);
        QVERIFY(snp.baseDoc().findResults().empty());
        QVERIFY(xpvt.baseDoc().findResults().empty());
        auto& classicDocument = *qobject_cast<ClassicDocument*>(classic->document());
        QVERIFY(classicDocument.analyzerDoc()->FindResults().empty());
        QVERIFY(classicDocument.analyzerDoc()->Bookmarks().empty());
        QCOMPARE(dialogs, 0);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void closingTheWindowDuringASearchLeavesNothing() {
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        ZDTAnalyzer::SnpFindCriteria everything;
        everything.searchProcessValue = true;
        everything.valueNameOn = true;
        for (const QString& file : {m_snapshot, m_xpvt}) {
            QVERIFY(app.openDocumentFile(file) != nullptr);
            QVERIFY(WaitForWork(app));
            CChildFrame* child = app.mainFrame()->activeChildFrame();
            QVERIFY(child != nullptr);
            auto* document = qobject_cast<XmlUiDocument*>(child->document());
            if (auto* snp = qobject_cast<SnpUiDocument*>(document)) {
                snp->runFind(child, everything);
            } else {
                auto* xpvt = qobject_cast<XpvtUiDocument*>(document);
                xpvt->xpvtDoc().findCriteria701().searchPrimitives = true;
                xpvt->xpvtDoc().findCriteria701().matchAll = true;
                xpvt->runFind(child);
            }
            QPointer<BackgroundOperation> search = document->operation();
            QVERIFY(search != nullptr);
            QVERIFY(child->operationStrip()->isVisibleTo(child));
            QSignalSpy news(search.data(), &BackgroundOperation::updated);
            QVERIFY(news.wait(WorkTimeoutMs));
            QVERIFY(document->isBusy());

            QPointer<UiDocument> watched = document;
            QVERIFY(child->close());
            QVERIFY(search == nullptr);
            QTRY_VERIFY(app.mainFrame()->childFrames().isEmpty());
            QTRY_VERIFY(watched == nullptr);
            QCOMPARE(SwapFiles(app.sessionTempDir()), QStringList());
            QVERIFY(boxes.boxes.isEmpty());
        }
    }

    void aFailedReadShowsItsBoxOnceItsWindowWent() {
        // A snapshot cut off in the middle: the read runs a while, then fails.
        const QString truncated = path("truncated.snp");
        {
            QFile whole(m_snapshot);
            QVERIFY(whole.open(QIODevice::ReadOnly));
            QFile cut(truncated);
            QVERIFY(cut.open(QIODevice::WriteOnly));
            cut.write(whole.read(4'000'000));
        }
        // A classic trace of a schema nobody knows.
        const QString badSchema = path("unknown.trc");
        {
            zdtgen::ClassicTraceOptions options;
            options.schema = "999";
            std::ofstream out(QFile::encodeName(badSchema).toStdString(), std::ios::binary);
            zdtgen::WriteClassicTrace(out, options);
        }
        CAnalyzerApp app;
        WindowBoxes boxes(app);
        QVERIFY(app.InitInstance({}));
        QVERIFY(app.openDocumentFile(m_small) != nullptr);
        QVERIFY(WaitForWork(app));
        const QStringList standing{app.mainFrame()->childFrames().first()->windowTitle()};

        for (const QString& file : {truncated, badSchema}) {
            boxes.boxes.clear();
            QSignalSpy ended(&app, &CAnalyzerApp::documentOpened);
            QVERIFY(app.openDocumentFile(file) != nullptr);
            QCOMPARE(app.mainFrame()->childFrames().size(), 2);
            QVERIFY(ended.wait(WorkTimeoutMs));
            QCOMPARE(ended.first(), QVariantList({file, false}));
            QCOMPARE(app.mainFrame()->childFrames().size(), 1);
            QVERIFY2(!boxes.boxes.isEmpty(), qPrintable(file));
            for (const WindowBoxes::Box& box : boxes.boxes) {
                QVERIFY2(!box.text.isEmpty(), qPrintable(file));
                QCOMPARE(box.windows, standing);
            }
            qInfo("%s: %s", qPrintable(QFileInfo(file).fileName()), qPrintable(boxes.boxes.first().text));
            QCOMPARE(SwapFiles(app.sessionTempDir()).size(), 1);
            QVERIFY(!app.recentFiles().paths().contains(file));
        }
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<LongReadTest>(argc, argv);
}

#include "LongReadTest.moc"

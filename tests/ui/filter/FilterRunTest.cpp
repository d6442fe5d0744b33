// Filters run from the desktop on small generated traces: the result opens as a new
// document beside the original, which stays as it was; a failing engine gives the filter's
// box and opens nothing; a cancel or a closed window kills the engine and leaves no result.
#include "SnapshotGenerator.h"
#include "XpvtTraceGenerator.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/OperationStrip.h"
#include "app/WellKnownPaths.h"
#include "filter/FilterCondition702.h"
#include "filter/FilterConditionMap.h"
#include "filter/FilterListDialog.h"
#include "filter/PvfltFile.h"
#include "filter/XQueryEngine.h"
#include "filter/snp/SnpFilterDlg.h"
#include "filter/xpvt_7_01/CXpvtFilterListDialog.h"
#include "filter/xpvt_7_02/CXpvtFilterListDialog.h"
#include "ui/IsolatedTestMain.h"
#include "ui/MenuLookup.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"
#include "xmldoc/BaseDoc.h"
#include "xmldoc/XmlUiDocument.h"

#include <QCryptographicHash>
#include <QFile>
#include <QListWidget>
#include <QMdiArea>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>
#include <signal.h>

using namespace zdtui;
using namespace operation_waits;
using dialog_driver::WhenModal;
using Button = FilterListDialog::Button;
namespace Logic701 = ZDTAnalyzer::Filter::XPVT_7_01;
namespace Logic702 = ZDTAnalyzer::Filter::XPVT_7_02;

namespace {

QByteArray Digest(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256);
}

QByteArray Contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int RowsOf(UiDocument* document) {
    auto* xml = qobject_cast<XmlUiDocument*>(document);
    return xml == nullptr ? -1 : int(xml->baseDoc().container().rowCount());
}

// Everything in the run's directory but the swap files of open documents.
QStringList LeftInRunDirectory(const CAnalyzerApp& app) {
    QStringList left;
    const QDir directory(app.sessionTempDir());
    for (const QString& name :
         directory.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
        if (!name.endsWith(".fc"))
            left << name;
    return left;
}

bool ProcessGone(pid_t pid) {
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

// Puts `path` into the list with "&Add..." and applies it with "&Ok", in the list dialog
// of type T that the filter command shows.
template <class T> void ApplyThroughList(const QString& path) {
    FilterListDialog::setFileChooser([path](QWidget*, const FilterFileChoice&) { return path; });
    WhenModal<T>([](T* dialog) {
        dialog->button(Button::Add)->click();
        dialog->button(Button::Ok)->click();
    });
}

} // namespace

class FilterRunTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        qunsetenv("ZDT_XQUERY_JAVA");
        qunsetenv("ZDT_XQUERY_JAR");
    }
    void cleanup() {
        FilterListDialog::setFileChooser({});
        qunsetenv("ZDT_XQUERY_JAVA");
        qunsetenv("ZDT_XQUERY_JAR");
        m_dir.reset();
    }

    // A 7.01 filter chosen in the list runs over the trace; its result opens in a window of
    // its own, captioned as the filtered copy of the trace, and the trace stays as it was.
    void run701OpensTheResultBesideTheTrace() {
        skipWithoutEngine();
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        zdtgen::XpvtTraceOptions options;
        options.schema = zdtgen::XpvtSchema::V701;
        options.results = 6;
        const QString trace = write("trace 701.xpvt", zdtgen::MakeXpvtTrace(options));
        const QByteArray before = Digest(trace);
        UiDocument* original = open(app, trace);
        QVERIFY(original != nullptr);
        const int originalRows = RowsOf(original);

        Logic701::FilterConditionMap conditions = Logic701::defaultFilterConditionMap();
        conditions["ExcludeItems"] = "0";
        conditions["AfterStartStopTrace"] = "1";
        const QString filter = m_dir->filePath("starts.pvflt");
        QVERIFY(Logic701::writeFilterFile(filter.toStdString(), conditions));

        QSignalSpy opened(&app, &CAnalyzerApp::documentOpened);
        ApplyThroughList<XPVT_7_01::CXpvtFilterListDialog>(filter);
        triggerFilter(app);
        QVERIFY(QTest::qWaitFor([&] { return !opened.isEmpty(); }, WorkTimeoutMs));
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.Texts(), QStringList());

        const QString result = opened.first().at(0).toString();
        QVERIFY(opened.first().at(1).toBool());
        QVERIFY2(result.startsWith(app.sessionTempDir()) && result.endsWith(".tmp.xpvt"), qPrintable(result));
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);
        CChildFrame* resultFrame = app.mainFrame()->childFrames().last();
        QCOMPARE(resultFrame->windowTitle(), result + " - Filter of trace 701.xpvt");
        // Only the start and the stop of the trace pass.
        const QByteArray text = Contents(result);
        QCOMPARE(text.count("<StartTrace>"), 1);
        QCOMPARE(text.count("<ZdtResult>"), 0);
        QCOMPARE(RowsOf(resultFrame->document()), 2);
        QCOMPARE(RowsOf(original), originalRows);
        QCOMPARE(Digest(trace), before);
        QCOMPARE(LeftInRunDirectory(app), QStringList{QFileInfo(result).fileName()});
    }

    // A 7.02 filter from the list; a second one with a quote in a text is refused by the
    // engine and shows the filter's box instead of a window.
    void run702OpensItsResultAndAnEngineErrorOpensNothing() {
        skipWithoutEngine();
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        zdtgen::XpvtTraceOptions options;
        options.results = 5;
        const QString trace = write("trace#702 %41.xpvt", zdtgen::MakeXpvtTrace(options));
        QVERIFY(open(app, trace) != nullptr);

        Logic702::FilterCondition702 links;
        links.includeOpenCloseLogicalLinks = true;
        const QString linksFilter = m_dir->filePath("links.pvflt2");
        QVERIFY(Logic702::saveFilter702(linksFilter.toStdString(), links));
        QSignalSpy opened(&app, &CAnalyzerApp::documentOpened);
        ApplyThroughList<XPVT_7_02::CXpvtFilterListDialog>(linksFilter);
        triggerFilter(app);
        QVERIFY(QTest::qWaitFor([&] { return !opened.isEmpty(); }, WorkTimeoutMs));
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.Texts(), QStringList());
        const QString result = opened.first().at(0).toString();
        QCOMPARE(app.mainFrame()->childFrames().last()->windowTitle(), result + " - Filter of trace#702 %41.xpvt");
        const QByteArray text = Contents(result);
        QVERIFY(text.count("<OpenLogicalLink") > 0);
        QCOMPARE(text.count("<Result"), 0);
        // The header stays, so the copy reads as a 7.02 trace again.
        QVERIFY(text.contains("7,02"));

        Logic702::FilterCondition702 quoted;
        quoted.includeResults = true;
        quoted.requestShortName = {false, true, "say \"hi\""};
        const QString quotedFilter = m_dir->filePath("quoted.pvflt2");
        QVERIFY(Logic702::saveFilter702(quotedFilter.toStdString(), quoted));
        app.mainFrame()->mdiArea()->setActiveSubWindow(app.mainFrame()->childFrames().first());
        ApplyThroughList<XPVT_7_02::CXpvtFilterListDialog>(quotedFilter);
        triggerFilter(app);
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("E009_003 [Filter.]"));
        QVERIFY2(boxes.boxes[0].text.startsWith("Filter error : Altova XQuery Error:\n"),
                 qPrintable(boxes.boxes[0].text));
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);
        QCOMPARE(opened.size(), 1);
        QCOMPARE(LeftInRunDirectory(app), QStringList{QFileInfo(result).fileName()});
    }

    // The snapshot filter lists the services first, then shows its dialog over them; the
    // services applied are the only ones the copy keeps.
    void snapshotFilterListsServicesThenRuns() {
        skipWithoutEngine();
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        const QString snapshot = write("snap shots.snp", zdtgen::MakeSnapshot(zdtgen::SnapshotOptions()));
        UiDocument* original = open(app, snapshot);
        QVERIFY(original != nullptr);

        triggerFilter(app);
        SNP::SnpFilterDlg* dialog = nullptr;
        QVERIFY(QTest::qWaitFor(
            [&] { return (dialog = qobject_cast<SNP::SnpFilterDlg*>(QApplication::activeModalWidget())) != nullptr; },
            WorkTimeoutMs));
        QListWidget* list = dialog->serviceList();
        QVERIFY(list->count() > 1);
        const QString kept = list->item(0)->text();
        for (int i = 1; i < list->count(); ++i)
            list->item(i)->setCheckState(Qt::Unchecked);
        QSignalSpy opened(&app, &CAnalyzerApp::documentOpened);
        dialog_driver::ChildWithText(dialog, "&Apply")->click();
        QVERIFY(QTest::qWaitFor([&] { return !opened.isEmpty(); }, WorkTimeoutMs));
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.Texts(), QStringList());
        const QString result = opened.first().at(0).toString();
        QVERIFY(result.endsWith(".tmp.snp"));
        QCOMPARE(app.mainFrame()->childFrames().last()->windowTitle(), result + " - Filter of snap shots.snp");
        const QByteArray text = Contents(result);
        QVERIFY(text.count("<Service") > 0);
        QCOMPARE(text.count("<Service"), text.count("<Service Name=\"" + kept.toUtf8() + "\""));
        QVERIFY(RowsOf(app.mainFrame()->childFrames().last()->document()) < RowsOf(original));
    }

    // Without an engine each filter shows its own box, no dialog and no window follows,
    // and nothing is left in the run's directory.
    void missingEngineShowsTheFilterBox() {
        qputenv("ZDT_XQUERY_JAVA", m_dir->filePath("no-such-java").toUtf8());
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        zdtgen::XpvtTraceOptions options;
        options.schema = zdtgen::XpvtSchema::V701;
        QVERIFY(open(app, write("t.xpvt", zdtgen::MakeXpvtTrace(options))) != nullptr);
        const QString filter = m_dir->filePath("any.pvflt");
        QVERIFY(Logic701::writeFilterFile(filter.toStdString(), Logic701::defaultFilterConditionMap()));
        ApplyThroughList<XPVT_7_01::CXpvtFilterListDialog>(filter);
        triggerFilter(app);
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("E013_004 [Filter.]"));
        QCOMPARE(boxes.boxes[0].text, QString("Error occured:\nAltova XQuery Component initialization failed! !"));

        QVERIFY(open(app, write("s.snp", zdtgen::MakeSnapshot(zdtgen::SnapshotOptions()))) != nullptr);
        triggerFilter(app);
        QVERIFY(WaitForWork(app));
        QTest::qWait(50); // the dialog would come one pass after the listing
        QVERIFY(QApplication::activeModalWidget() == nullptr);
        QCOMPARE(boxes.boxes.size(), 2);
        QCOMPARE(boxes.boxes[1].title, QString("E009_001 [Filter.]"));
        QCOMPARE(boxes.boxes[1].text, QString("Filter error : Altova XQuery Component initialization failed! !"));
        QCOMPARE(app.mainFrame()->childFrames().size(), 2);
        QCOMPARE(LeftInRunDirectory(app), QStringList());
    }

    // Cancel in the window's strip kills the engine at once, as does closing the window
    // while it runs; neither leaves a result, a box or a process behind.
    void cancelAndCloseKillTheEngine() {
        const QString pidFile = m_dir->filePath("engine.pid");
        const QString fakeJava =
            write("slow-java", "#!/bin/sh\necho $$ > '" + pidFile.toStdString() + "'\nexec sleep 120\n");
        QVERIFY(QFile::setPermissions(fakeJava, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        qputenv("ZDT_XQUERY_JAVA", fakeJava.toUtf8());
        qputenv("ZDT_XQUERY_JAR", fakeJava.toUtf8());
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        // In the filter folder itself, so that "&Add..." only lists it, time after time.
        const QString folder = QString::fromStdString(zdt::AnalyzerFilterDefaultDir());
        QVERIFY(QDir().mkpath(folder));
        const QString filter = folder + "slow.pvflt2";
        QVERIFY(Logic702::saveFilter702(filter.toStdString(), Logic702::FilterCondition702()));
        QVERIFY(open(app, write("t.xpvt", zdtgen::MakeXpvtTrace(zdtgen::XpvtTraceOptions()))) != nullptr);
        CChildFrame* frame = app.mainFrame()->childFrames().first();

        for (const bool closeWindow : {false, true}) {
            QFile::remove(pidFile);
            ApplyThroughList<XPVT_7_02::CXpvtFilterListDialog>(filter);
            triggerFilter(app);
            QVERIFY(frame->document()->isBusy());
            QVERIFY(QTest::qWaitFor([&] { return !Contents(pidFile).trimmed().isEmpty(); }, WorkTimeoutMs));
            const pid_t engine = pid_t(Contents(pidFile).trimmed().toInt());
            QVERIFY(engine > 0 && !ProcessGone(engine));
            if (closeWindow) {
                frame->close();
                QVERIFY(ProcessGone(engine)); // the window waits for the work to unwind
            } else {
                QVERIFY(frame->operationStrip()->cancelButton()->isVisible());
                frame->operationStrip()->cancelButton()->click();
                QVERIFY(WaitUntilIdle(*frame->document()));
                QVERIFY(ProcessGone(engine));
            }
            QTRY_COMPARE(app.mainFrame()->childFrames().size(), closeWindow ? 0 : 1);
            QVERIFY(boxes.boxes.isEmpty());
            QCOMPARE(LeftInRunDirectory(app), QStringList());
        }
    }

private:
    void skipWithoutEngine() {
        if (!ZDTAnalyzer::Filter::findXQueryEngine())
            QSKIP("no XQuery engine: java or Saxon-HE is not installed");
    }

    QString write(const QString& name, const std::string& text) {
        const QString path = m_dir->filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(text.data(), qint64(text.size())) != qint64(text.size()))
            qFatal("cannot write %s", qPrintable(path));
        return path;
    }

    static UiDocument* open(CAnalyzerApp& app, const QString& path) {
        QSignalSpy opened(&app, &CAnalyzerApp::documentOpened);
        UiDocument* document = app.openDocumentFile(path);
        if (document == nullptr || !QTest::qWaitFor([&] { return !opened.isEmpty(); }, WorkTimeoutMs) ||
            !opened.first().at(1).toBool())
            return nullptr;
        return document;
    }

    // "Filte&r..." of the Session menu, for the active window, as a user chooses it.
    static void triggerFilter(CAnalyzerApp& app) {
        app.mainFrame()->refreshCommands();
        QAction* item = MenuItem(*app.mainFrame(), "&Session", "Filte&r...");
        QVERIFY(item != nullptr && item->isEnabled());
        item->trigger();
    }

    std::unique_ptr<QTemporaryDir> m_dir;
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<FilterRunTest>(argc, argv);
}

#include "FilterRunTest.moc"

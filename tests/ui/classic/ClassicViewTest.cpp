#include "support/ClassicTraces.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"

#include "ClassicTraceGenerator.h"
#include "app/CChildFrame.h"
#include "app/OperationStrip.h"
#include "classic/CAnaView.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicDocument.h"
#include "classic/ClassicListModel.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicRowFormatter.h"
#include "common/RowTypes.h"
#include "trace/CTraceItemI.h"

#include <QAction>
#include <QFile>
#include <QFontMetrics>
#include <QHeaderView>
#include <QPrinter>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace zdtui;
using namespace operation_waits;

namespace {

class RecordingStatus final : public StatusSink {
public:
    void SetStatusDocument(const QString& text, int count) override {
        texts << text;
        counts << count;
    }
    void SetStatusText(const QString& text) override { texts << text; }
    QStringList texts;
    QList<int> counts;
};

// A document opened through the desktop path: its view first, then the read to its end.
struct OpenTrace {
    OpenTrace(const std::string& path) {
        view.reset(static_cast<CAnaView*>(document.createView(nullptr, &status)));
        view->resize(900, 400);
        outcome = OpenAndWait(document, QString::fromStdString(path));
        opened = outcome.opened;
    }
    CAnalyzerDoc& doc() { return *document.analyzerDoc(); }
    ClassicListModel& model() { return *view->model(); }

    RecordingStatus status;
    ClassicDocument document;
    bool opened = false;
    OpenOutcome outcome;
    std::unique_ptr<CAnaView> view;
};

std::string TrafficTrace(const TempDir& dir, std::uint64_t records, const std::string& title = "CAN Onboard") {
    zdtgen::ClassicTraceOptions options;
    options.title = title;
    options.mix = zdtgen::RecordMix::Traffic;
    options.records = records;
    options.seed = 7;
    return dir.Write("traffic.trc", zdtgen::MakeClassicTrace(options));
}

// Every cell of `model` against a formatter of a document of its own, opened by the core alone.
void ExpectRowsAsFormatted(ClassicListModel& model, const std::string& path, TimeMode mode) {
    CAnalyzerDoc reference;
    QVERIFY(reference.OnOpenDocument(path));
    reference.SetTimeMode(mode);
    ClassicRowFormatter formatter(reference);
    QCOMPARE(model.rowCount(), static_cast<int>(reference.GetVisibleCount()));
    for (int row = 0; row < model.rowCount(); ++row) {
        const ClassicRow expected = formatter.Format(static_cast<std::uint32_t>(row));
        QCOMPARE(model.cellText(row, ClassicListModel::MarkColumn), QString::fromStdString(expected.mark));
        for (std::size_t column = 0; column < ClassicColumnCount; ++column)
            QCOMPARE(model.data(model.index(row, static_cast<int>(column) + 1)).toString(),
                     QString::fromStdString(expected.columns[column]));
        QCOMPARE(model.data(model.index(row, 3), Qt::ForegroundRole).value<QColor>(),
                 ClassicListModel::ToQColor(expected.foreground));
    }
}

QStringList HeaderTexts(const ClassicListModel& model) {
    QStringList texts;
    for (int section = 1; section < model.columnCount(); ++section)
        texts << model.headerData(section, Qt::Horizontal).toString();
    return texts;
}

} // namespace

class ClassicViewTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void opensATraceAndShowsItsRowsAsTheFormatterMakesThem();
    void diagnosticTraceHasItsTitleAndNoIdentifierColumn();
    void headerMenuHidesShownColumnsAndSizesHiddenOnesToTheirText();
    void bookmarksToggleAndWrapAndEnableTheirCommands();
    void findWrapsOnlyWhenTheUserAgrees();
    void searchWithoutHitsSaysSo();
    void timeStyleChangesTheShownTimes();
    void filterCommandRebuildsTheRowsAwayFromTheWindows();
    void sbtExportWritesTheReport();
    void printingFillsThePagesOfTheLayout();
    void cancelledOpenLeavesNoDocument();
    void closeClearsTheStatusAndRecordsTheFilter();
};

void ClassicViewTest::opensATraceAndShowsItsRowsAsTheFormatterMakesThem() {
    TempDir dir;
    RecordingBoxes boxes;
    const std::string path = TrafficTrace(dir, 300);
    ClassicDocument document;
    QSignalSpy titles(&document, &UiDocument::titleChanged);
    RecordingStatus status;
    std::unique_ptr<CAnaView> view(static_cast<CAnaView*>(document.createView(nullptr, &status)));
    QVERIFY(view);
    const OpenOutcome outcome = OpenAndWait(document, QString::fromStdString(path));
    QVERIFY(outcome.opened);
    QVERIFY(outcome.messages.empty());
    QVERIFY(boxes.boxes.isEmpty());

    // Named after its file while it is read, after its kind once it is.
    const QString title = QStringLiteral("CAN Onboard Channel  ") + QString::fromStdString(path);
    QCOMPARE(titles.size(), 2);
    QCOMPARE(titles.first().at(0).toString(), QString::fromStdString(path));
    QCOMPARE(titles.last().at(0).toString(), title);
    QCOMPARE(status.texts.last(), QString::fromStdString(path));
    QCOMPARE(status.counts.last(), 300);

    ExpectRowsAsFormatted(*view->model(), path, TimeMode::Relative);
    QCOMPARE(HeaderTexts(*view->model()), (QStringList{"Time [ms]", "Channel", "Identifier", "Priority", "Source",
                                                       "Destination", "Data / Events", "PC Time"}));
    // Widened for what a CAN trace holds; the others stay hidden.
    QCOMPARE(view->columnWidth(ClassicColumn::Time), 120);
    QCOMPARE(view->columnWidth(ClassicColumn::Channel), 60);
    QCOMPARE(view->columnWidth(ClassicColumn::Identifier), 120);
    QCOMPARE(view->columnWidth(ClassicColumn::Priority), 0);
    QCOMPARE(view->columnWidth(ClassicColumn::Data), 210);
    QVERIFY(view->header()->isSectionHidden(ClassicListModel::ModelColumn(ClassicColumn::Source)));
    QCOMPARE(view->rowFont().family(), QStringLiteral("Curier New"));
    QCOMPARE(view->rowFont().pixelSize(), 12);
    QCOMPARE(view->menuResource(), 142);
    QVERIFY(view->commandAction(ViewCommand::StyleCan)->isEnabled());
    QVERIFY(!view->commandAction(ViewCommand::StyleKLine)->isEnabled());

    view->selectRow(4);
    QCOMPARE(view->model()->data(view->model()->index(4, 2), Qt::BackgroundRole).value<QColor>(),
             QColor(0xC0, 0xC0, 0xC0));
    QCOMPARE(view->model()->data(view->model()->index(5, 2), Qt::BackgroundRole).value<QColor>(), QColor(Qt::white));
}

void ClassicViewTest::diagnosticTraceHasItsTitleAndNoIdentifierColumn() {
    TempDir dir;
    RecordingBoxes boxes;
    const std::string path = dir.Write("d.trc", classic_traces::Diagnostic601());
    OpenTrace trace(path);
    QVERIFY(trace.opened);
    QCOMPARE(trace.document.title(), QStringLiteral("Diagnostic Channel ") + QString::fromStdString(path));
    QCOMPARE(trace.view->columnWidth(ClassicColumn::Identifier), 0);
    QVERIFY(trace.view->commandAction(ViewCommand::StyleKLine)->isEnabled());
    QVERIFY(!trace.view->commandAction(ViewCommand::StyleCan)->isEnabled());
    ExpectRowsAsFormatted(trace.model(), path, TimeMode::Relative);
}

void ClassicViewTest::headerMenuHidesShownColumnsAndSizesHiddenOnesToTheirText() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(TrafficTrace(dir, 200));
    QVERIFY(trace.opened);
    CAnaView& view = *trace.view;
    const QFontMetrics metrics(view.rowFont());
    const int identifierSection = ClassicListModel::ModelColumn(ClassicColumn::Identifier);
    auto widestOnScreen = [&](int section) {
        int widest = 0;
        for (int row = view.firstRowOnScreen(); row < view.firstRowOnScreen() + view.rowsOnScreen(); ++row)
            widest = std::max(widest, metrics.horizontalAdvance(trace.model().cellText(row, section)));
        return widest;
    };
    QVERIFY(view.rowsOnScreen() > 5);
    QVERIFY(view.rowsOnScreen() < 200);

    view.chooseColumnFromMenu(ClassicColumn::Identifier); // shown: hidden
    QCOMPARE(view.columnWidth(ClassicColumn::Identifier), 0);
    QVERIFY(view.header()->isSectionHidden(identifierSection));

    view.chooseColumnFromMenu(ClassicColumn::Identifier); // hidden: as wide as its text plus 12
    QVERIFY(!view.header()->isSectionHidden(identifierSection));
    const int identifierText = widestOnScreen(identifierSection);
    QVERIFY(identifierText > 40);
    QCOMPARE(view.columnWidth(ClassicColumn::Identifier), identifierText + 12);

    // An empty column still gets 40 + 12; a sliver of 10 counts as hidden.
    view.chooseColumnFromMenu(ClassicColumn::PcTime);
    QCOMPARE(view.columnWidth(ClassicColumn::PcTime), 0);
    view.chooseColumnFromMenu(ClassicColumn::PcTime);
    QCOMPARE(view.columnWidth(ClassicColumn::PcTime), 52);
    view.setColumnWidth(ClassicColumn::Priority, 10);
    QCOMPARE(view.columnWidth(ClassicColumn::Priority), 10);
    view.chooseColumnFromMenu(ClassicColumn::Priority);
    QCOMPARE(view.columnWidth(ClassicColumn::Priority), 52);

    // Scrolled further down, the text measured is that of the rows then on screen, and the
    // widths survive the list being rebuilt.
    view.setColumnWidth(ClassicColumn::Data, 0);
    trace.document.setTimeMode(TimeMode::Absolute);
    QCOMPARE(view.columnWidth(ClassicColumn::Data), 0);
    QCOMPARE(view.columnWidth(ClassicColumn::Priority), 52);
    view.selectRow(150);
    QVERIFY(view.firstRowOnScreen() > 100);
    view.chooseColumnFromMenu(ClassicColumn::Data);
    QCOMPARE(view.columnWidth(ClassicColumn::Data),
             std::max(widestOnScreen(ClassicListModel::ModelColumn(ClassicColumn::Data)), 40) + 12);
}

void ClassicViewTest::bookmarksToggleAndWrapAndEnableTheirCommands() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(TrafficTrace(dir, 50));
    QVERIFY(trace.opened);
    CAnaView& view = *trace.view;
    QAction* next = view.commandAction(ViewCommand::NextBookmark);
    QAction* previous = view.commandAction(ViewCommand::PreviousBookmark);
    QAction* clear = view.commandAction(ViewCommand::ClearBookmarks);
    QVERIFY(view.commandAction(ViewCommand::ToggleBookmark)->isEnabled());
    QVERIFY(!next->isEnabled() && !previous->isEnabled() && !clear->isEnabled());
    QCOMPARE(next->shortcut(), QKeySequence(Qt::Key_F2));

    view.selectRow(30);
    view.commandAction(ViewCommand::ToggleBookmark)->trigger();
    view.selectRow(7);
    view.onToggleBookmark();
    QCOMPARE(trace.model().cellText(7, 0).left(1), QStringLiteral("B"));
    QCOMPARE(trace.model().cellText(30, 0).left(1), QStringLiteral("B"));
    QVERIFY(!trace.model().cellText(8, 0).startsWith('B'));
    QVERIFY(next->isEnabled() && previous->isEnabled() && clear->isEnabled());

    next->trigger();
    QCOMPARE(view.selectedRow(), 30LL);
    next->trigger(); // wraps to the first
    QCOMPARE(view.selectedRow(), 7LL);
    previous->trigger(); // wraps to the last
    QCOMPARE(view.selectedRow(), 30LL);
    view.selectRow(20);
    previous->trigger();
    QCOMPARE(view.selectedRow(), 7LL);

    view.onToggleBookmark(); // row 7 again: removed
    QVERIFY(!trace.model().cellText(7, 0).startsWith('B'));
    QCOMPARE(trace.doc().Bookmarks(), (std::vector<zdt::RowIndex>{30}));

    // The keys reach the view that has the focus.
    view.show();
    view.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&view));
    view.setFocus();
    view.selectRow(0);
    QTest::keyClick(&view, Qt::Key_F2);
    QCOMPARE(view.selectedRow(), 30LL);
    QTest::keyClick(&view, Qt::Key_F2, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(trace.doc().Bookmarks().empty());
    QVERIFY(!next->isEnabled() && !previous->isEnabled() && !clear->isEnabled());
    QVERIFY(!trace.model().cellText(30, 0).startsWith('B'));
}

void ClassicViewTest::findWrapsOnlyWhenTheUserAgrees() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(TrafficTrace(dir, 120));
    QVERIFY(trace.opened);
    CAnaView& view = *trace.view;
    QVERIFY(!view.commandAction(ViewCommand::FindNext)->isEnabled());

    // The rows whose identifier cell names 7E8, read off the list itself.
    QList<long long> expected;
    for (int row = 0; row < trace.model().rowCount(); ++row) {
        QString cell = trace.model().cellText(row, ClassicListModel::ModelColumn(ClassicColumn::Identifier));
        if (cell.remove(QStringLiteral("(x)")).trimmed() == QStringLiteral("7E8"))
            expected << row;
    }
    QVERIFY(expected.size() >= 3);

    ClassicFindCriteria criteria;
    criteria.useIdentifier = true;
    criteria.identifierText = "7E8";
    view.runSearch(criteria, true, false);
    QVERIFY(WaitUntilIdle(trace.document));
    QVERIFY(boxes.boxes.isEmpty());
    QCOMPARE(view.selectedRow(), expected.first()); // the first hit is selected
    QVERIFY(view.commandAction(ViewCommand::FindNext)->isEnabled());
    QVERIFY(view.commandAction(ViewCommand::FindPrevious)->isEnabled());
    QVERIFY(trace.doc().Bookmarks().empty());

    for (int i = 1; i < expected.size(); ++i) {
        view.commandAction(ViewCommand::FindNext)->trigger();
        QCOMPARE(view.selectedRow(), expected[i]);
    }
    QVERIFY(boxes.boxes.isEmpty());

    boxes.answerYes = false;
    view.onFindNext(); // at the end: asked, refused, stays
    QCOMPARE(boxes.boxes.size(), 1);
    QVERIFY(boxes.boxes[0].question);
    QCOMPARE(boxes.boxes[0].text, QStringLiteral("Analyzer has reached the end of the document.\n Do you want to "
                                                 "continue searching at the begining?"));
    QCOMPARE(view.selectedRow(), expected.last());
    boxes.answerYes = true;
    view.onFindNext();
    QCOMPARE(view.selectedRow(), expected.first());

    view.onFindPrevious(); // at the start: asked, agreed, goes to the last hit
    QCOMPARE(boxes.boxes.size(), 3);
    QCOMPARE(boxes.boxes[2].text, QStringLiteral("ZDT has reached the top of the document.\n Do you want to continue "
                                                 "searching at the end?"));
    QCOMPARE(view.selectedRow(), expected.last());
    view.onFindPrevious();
    QCOMPARE(view.selectedRow(), expected[expected.size() - 2]);

    // Mark All bookmarks every hit.
    view.runSearch(criteria, true, true);
    QVERIFY(WaitUntilIdle(trace.document));
    std::vector<zdt::RowIndex> marked(expected.begin(), expected.end());
    QCOMPARE(trace.doc().Bookmarks(), marked);
    QCOMPARE(trace.model().cellText(static_cast<int>(expected[1]), 0).left(1), QStringLiteral("B"));
}

void ClassicViewTest::searchWithoutHitsSaysSo() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(TrafficTrace(dir, 40));
    QVERIFY(trace.opened);
    ClassicFindCriteria criteria;
    criteria.useIdentifier = true;
    criteria.identifierText = "ABCDEF12";
    trace.view->selectRow(3);
    trace.view->runSearch(criteria, true, false);
    QVERIFY(WaitUntilIdle(trace.document));
    QCOMPARE(boxes.boxes.size(), 1);
    QCOMPARE(boxes.boxes[0].title, QStringLiteral("Search"));
    QCOMPARE(boxes.boxes[0].text, QStringLiteral("Nothing Found!"));
    QCOMPARE(boxes.boxes[0].icon, QMessageBox::Warning);
    QCOMPARE(trace.view->selectedRow(), 3LL);
    QVERIFY(!trace.view->commandAction(ViewCommand::FindNext)->isEnabled());

    // Without criteria there is no scan and nothing to say.
    trace.view->runSearch(criteria, false, false);
    QCOMPARE(boxes.boxes.size(), 1);
}

void ClassicViewTest::timeStyleChangesTheShownTimes() {
    TempDir dir;
    RecordingBoxes boxes;
    const std::string path = dir.Write("c.trc", classic_traces::Can601());
    OpenTrace trace(path);
    QVERIFY(trace.opened);
    ClassicListModel& model = trace.model();
    const int time = ClassicListModel::ModelColumn(ClassicColumn::Time);
    // Absolute times 1000, 1500 and 3000 microseconds; relative shows the gaps.
    QCOMPARE(model.cellText(1, time), QStringLiteral("0,500"));
    QCOMPARE(model.cellText(2, time), QStringLiteral("1,500"));

    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    trace.document.setTimeMode(TimeMode::Absolute);
    QCOMPARE(resets.count(), 1);
    QCOMPARE(model.headerData(time, Qt::Horizontal).toString(), QStringLiteral("Time [sec]"));
    QCOMPARE(model.cellText(0, time), QStringLiteral("0,001000"));
    QCOMPARE(model.cellText(2, time), QStringLiteral("0,003000"));
    ExpectRowsAsFormatted(model, path, TimeMode::Absolute);

    trace.document.setTimeMode(TimeMode::RelativeChannel);
    QCOMPARE(model.headerData(time, Qt::Horizontal).toString(), QStringLiteral("Time [ms]"));
    ExpectRowsAsFormatted(model, path, TimeMode::RelativeChannel);
    QVERIFY(!trace.doc().NeedsHeaderUpdate());
}

void ClassicViewTest::filterCommandRebuildsTheRowsAwayFromTheWindows() {
    TempDir dir;
    RecordingBoxes boxes;
    const std::string path = TrafficTrace(dir, 400);
    const std::string flt = dir.Write("ids.flt", classic_traces::Filter("PassFilter", {"7E8", "7DF"}));
    OpenTrace trace(path);
    QVERIFY(trace.opened);
    QList<BackgroundOperation*> passes;
    connect(&trace.document, &UiDocument::operationStarted, this, [&passes](BackgroundOperation* operation) {
        passes << operation;
        // A filter pass may not stop half-way: no Cancel is offered for it.
        QVERIFY(!operation->isCancellable());
    });
    QSignalSpy suspended(trace.view->model(), &QAbstractItemModel::modelReset);
    trace.view->selectRow(10);
    trace.view->onToggleBookmark();

    trace.document.finishCanFilter({true, true, true, "ids.flt"}, flt, nullptr);
    QCOMPARE(passes.size(), 1);
    // While the pass rewrites the rows the list shows none and the commands wait.
    QVERIFY(trace.document.isBusy());
    QCOMPARE(trace.model().rowCount(), 0);
    QVERIFY(!trace.view->commandAction(ViewCommand::Find)->isEnabled());
    QVERIFY(!trace.view->commandAction(ViewCommand::CanFilter)->isEnabled());
    // A second command while it runs does nothing.
    trace.document.finishCanFilter({true, false, false, ""}, "", nullptr);
    QCOMPARE(passes.size(), 1);
    QVERIFY(WaitUntilIdle(trace.document));
    QVERIFY(trace.view->commandAction(ViewCommand::Find)->isEnabled());
    const int filtered = trace.model().rowCount();
    QVERIFY(filtered > 10 && filtered < 400);
    QCOMPARE(filtered, static_cast<int>(trace.doc().GetVisibleCount()));
    QCOMPARE(trace.status.counts.last(), filtered);
    QVERIFY(trace.doc().Bookmarks().empty()); // a filter drops the marks
    for (int row = 0; row < filtered; ++row) {
        const QString id =
            trace.model().cellText(row, ClassicListModel::ModelColumn(ClassicColumn::Identifier)).trimmed();
        QVERIFY2(id == "7E8" || id == "7DF" || id.isEmpty(), qPrintable(id));
    }

    // Unchanged: nothing happens. Off: the whole file again.
    trace.document.finishCanFilter({true, true, false, "ids.flt"}, flt, nullptr);
    QCOMPARE(passes.size(), 1);
    QVERIFY(!trace.document.isBusy());
    trace.document.finishCanFilter({true, false, false, ""}, "", nullptr);
    QCOMPARE(passes.size(), 2);
    QVERIFY(WaitUntilIdle(trace.document));
    QCOMPARE(trace.model().rowCount(), 400);
    QCOMPARE(trace.status.counts.last(), 400);
    ExpectRowsAsFormatted(trace.model(), path, TimeMode::Relative);
    QVERIFY(boxes.boxes.isEmpty());
}

void ClassicViewTest::sbtExportWritesTheReport() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(dir.Write("c.trc", classic_traces::Can601()));
    QVERIFY(trace.opened);
    const QString file = QString::fromStdString(dir.File("report.sbt"));
    QVERIFY(trace.view->saveAsAscii(file));
    QFile written(file);
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = written.readAll().split('\n');
    QCOMPARE(lines[0], QByteArray("Title: CAN Onboard"));
    QCOMPARE(lines[1], QByteArray("Product Version: 7.1.2"));
    QCOMPARE(lines[2], QByteArray("InterfaceBoard: VCI-4"));
    ClassicReportFormatter formatter(trace.doc());
    for (std::uint32_t row = 0; row < 4; ++row) {
        std::string expected = formatter.FormatLine(row);
        expected.pop_back();
        QCOMPARE(lines[static_cast<int>(6 + row)], QByteArray::fromStdString(expected));
    }
    QVERIFY(!trace.view->saveAsAscii(QString::fromStdString(dir.File("missing/dir/report.sbt"))));
    QVERIFY(boxes.boxes.isEmpty()); // the export is silent about a file it cannot write
}

void ClassicViewTest::printingFillsThePagesOfTheLayout() {
    TempDir dir;
    RecordingBoxes boxes;
    OpenTrace trace(TrafficTrace(dir, 150));
    QVERIFY(trace.opened);
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setResolution(300);
    printer.setPageSize(QPageSize(QPageSize::A4));
    const QString pdf = QString::fromStdString(dir.File("print.pdf"));
    printer.setOutputFileName(pdf);
    const int pages = trace.view->printTo(&printer);
    // 300 dpi: a 36-pixel print font; about 3,300 pixels of page hold some 70 rows.
    QVERIFY2(pages >= 2 && pages <= 4, qPrintable(QString::number(pages)));
    QFile file(pdf);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QCOMPARE(bytes.count("/Type /Page\n") + bytes.count("/Type /Page\r") + bytes.count("/Type /Page>") +
                 bytes.count("/Type /Page "),
             pages);

    printer.setPrintRange(QPrinter::PageRange);
    printer.setFromTo(2, 2);
    printer.setOutputFileName(QString::fromStdString(dir.File("second.pdf")));
    QCOMPARE(trace.view->printTo(&printer), 1);
}

void ClassicViewTest::cancelledOpenLeavesNoDocument() {
    TempDir dir;
    RecordingBoxes boxes;
    zdtgen::ClassicTraceOptions options;
    options.mix = zdtgen::RecordMix::Traffic;
    // Long enough that the read is still running when the first rows show, even when
    // the index pass has the machine to itself.
    options.targetBytes = 160u << 20;
    const std::string path = dir.Write("big.trc", zdtgen::MakeClassicTrace(options));

    // The window as the application makes it: the list, and below it the strip.
    RecordingStatus status;
    auto owned = std::make_unique<ClassicDocument>();
    ClassicDocument& document = *owned;
    CChildFrame child(std::move(owned), &status, QStringLiteral("big.trc"));
    child.show();
    auto* view = qobject_cast<CAnaView*>(child.view());
    QVERIFY(view != nullptr);
    QSignalSpy titles(&document, &UiDocument::titleChanged);
    QSignalSpy finished(&document, &UiDocument::openFinished);
    document.startOpen(QString::fromStdString(path));
    QVERIFY(document.isOpening());
    QVERIFY(child.operationStrip()->isVisible());
    // Cancel once some rows are on screen.
    QVERIFY(QTest::qWaitFor([&] { return view->model()->rowCount() > 0 || !finished.isEmpty(); }, WorkTimeoutMs));
    QVERIFY(finished.isEmpty());
    child.operationStrip()->cancelButton()->click();
    QVERIFY(finished.wait(WorkTimeoutMs));
    QCOMPARE(finished.first().at(0).toBool(), false);
    QVERIFY(!document.isOpening());
    QVERIFY(!child.operationStrip()->isVisible());
    QVERIFY(document.takeOpenMessages().empty());
    QVERIFY(boxes.boxes.isEmpty());
    // Only the name it was opened under; the kind of the trace was never learnt.
    QCOMPARE(titles.size(), 1);
    QVERIFY(document.title() == QString::fromStdString(path));

    // The same file opens when nobody cancels.
    ClassicDocument again;
    QVERIFY(OpenAndWait(again, QString::fromStdString(path)).opened);
    QVERIFY(again.analyzerDoc()->GetVisibleCount() > 100000);
}

void ClassicViewTest::closeClearsTheStatusAndRecordsTheFilter() {
    TempDir dir;
    RecordingBoxes boxes;
    const std::string path = dir.Write("c.trc", classic_traces::Can601());
    const std::string flt = dir.Write("ids.flt", classic_traces::Filter("PassFilter", {"7E8"}));
    {
        OpenTrace trace(path);
        QVERIFY(trace.opened);
        trace.document.finishCanFilter({true, true, true, "ids.flt"}, flt, nullptr);
        QVERIFY(WaitUntilIdle(trace.document));
        trace.document.close();
        QCOMPARE(trace.status.texts.last(), QString());
        QCOMPARE(trace.status.counts.last(), 0);
    }
    QVERIFY(TempDir::Read(path).find("[AnalyzerHistory]\r\nCANFilter=1:ids.flt") != std::string::npos);

    // An invalid file: the core's box, in order, and no document.
    const std::string bad = dir.Write("bad.trc", "just text\r\n");
    // The box waits for whoever shows it, once the window went.
    ClassicDocument document;
    const OpenOutcome outcome = OpenAndWait(document, QString::fromStdString(bad));
    QVERIFY(outcome.ended);
    QVERIFY(!outcome.opened);
    QVERIFY(boxes.boxes.isEmpty());
    QCOMPARE(MessageTexts(outcome.messages).last(), QStringLiteral("The TraceFile ") + QString::fromStdString(bad) +
                                                        QStringLiteral(" is an invalid trace file!"));
}

QTEST_MAIN(ClassicViewTest)
#include "ClassicViewTest.moc"

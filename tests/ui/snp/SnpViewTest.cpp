// The snapshot window: a file opened through its document, the rows it lists, the
// growing column widths, the column menu, the bookmark and find go-to commands with
// their boxes, and the export and print commands that refuse for now.
#include "snp/SnpDoc.h"

#include "SnapshotGenerator.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "snp/SnpSessionInfoDialog.h"
#include "snp/SnpUiDocument.h"
#include "snp/SnpView.h"
#include "ui/IsolatedTestMain.h"
#include "ui/MenuLookup.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xmldoc/SaveAsName.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>
#include <memory>
#include <sstream>

using namespace zdtui;
using namespace operation_waits;

namespace {

// One expected row of the generator's listing: rowFlags then the five fields.
QStringList SplitRow(const std::string& line) {
    return QString::fromStdString(line).split(QLatin1Char('\t'));
}

} // namespace

class SnpViewTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;

    QString writeSnapshot(const QString& name, const zdtgen::SnapshotOptions& options,
                          std::vector<QStringList>* rows = nullptr, QString* dateTime = nullptr) {
        const QString path = m_dir->filePath(name);
        std::ofstream out(QFile::encodeName(path).toStdString(), std::ios::binary);
        std::ostringstream listing;
        zdtgen::WriteSnapshotWithRows(out, &listing, options);
        std::istringstream lines(listing.str());
        std::string line;
        while (std::getline(lines, line)) {
            if (line.rfind("#DateTime\t", 0) == 0) {
                if (dateTime != nullptr)
                    *dateTime = QString::fromStdString(line.substr(10));
            } else if (rows != nullptr) {
                rows->push_back(SplitRow(line));
            }
        }
        return path;
    }

    // The read to its end; the boxes it raised go to `messages`.
    std::unique_ptr<SnpUiDocument> openDocument(const QString& path, QStringList* messages = nullptr) {
        auto document = std::make_unique<SnpUiDocument>(m_dir->filePath("swap"));
        const OpenOutcome outcome = OpenAndWait(*document, path);
        if (messages != nullptr)
            *messages = MessageTexts(outcome.messages);
        if (!outcome.opened)
            return nullptr;
        return document;
    }

    static SnpView* makeView(SnpUiDocument& document) {
        auto* view = qobject_cast<SnpView*>(document.createView(nullptr, nullptr));
        if (view != nullptr) {
            view->resize(900, 400);
            view->show();
        }
        return view;
    }

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
    }

    void cleanup() { m_dir.reset(); }

    void generatedFileListsEveryRowWithItsLineAndFields() {
        zdtgen::SnapshotOptions options;
        options.seed = 7;
        options.snapshots = 5;
        std::vector<QStringList> expected;
        const QString path = writeSnapshot("five.snp", options, &expected);
        QVERIFY(!expected.empty());

        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(path);
        QVERIFY(document != nullptr);
        SnpView* view = makeView(*document);
        QVERIFY(view != nullptr);
        std::unique_ptr<SnpView> owner(view);
        QVERIFY(view->initialised());

        AdornedListModel* model = view->listModel();
        QCOMPARE(model->rowCount(), int(expected.size()));
        QCOMPARE(model->columnCount(), 7);
        const QStringList titles{"", "Line", "Event", "Description", "Name", "Value", "Unit"};
        for (int column = 0; column < 7; ++column)
            QCOMPARE(model->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString(), titles[column]);
        for (int row = 0; row < int(expected.size()); ++row) {
            const QStringList& fields = expected[row];
            QCOMPARE(fields.size(), 6);
            QCOMPARE(model->data(model->index(row, 0), Qt::DisplayRole).toString(), fields[0]);
            QCOMPARE(model->data(model->index(row, 1), Qt::DisplayRole).toString(), QString::number(row + 1));
            for (int column = 2; column < 7; ++column)
                QCOMPARE(model->data(model->index(row, column), Qt::DisplayRole).toString(), fields[column - 1]);
        }
        QVERIFY(boxes.boxes.isEmpty());
    }

    void sampleAndEmptyListOpen() {
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> sample = openDocument(QStringLiteral(ZDT_SAMPLES_DIR "/snapshots_basic.snp"));
        QVERIFY(sample != nullptr);
        QVERIFY(sample->snpDoc()->container().rowCount() > 0);

        // A list without snapshots opens as an empty list.
        QFile empty(m_dir->filePath("empty.snp"));
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.write("<?xml version=\"1.0\"?>\n<SnapList/>\n");
        empty.close();
        std::unique_ptr<SnpUiDocument> document = openDocument(empty.fileName());
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(makeView(*document));
        QCOMPARE(view->itemCount(), 0);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void brokenFileGivesItsBoxAndNoDocument() {
        RecordingBoxes boxes;
        QStringList messages;
        QVERIFY(openDocument(QStringLiteral(ZDT_SAMPLES_DIR "/snapshots_truncated.snp"), &messages) == nullptr);
        QCOMPARE(messages.size(), 1);
        QVERIFY2(messages[0].startsWith("XML error: "), qPrintable(messages[0]));

        QVERIFY(openDocument(m_dir->filePath("missing.snp"), &messages) == nullptr);
        QCOMPARE(messages.size(), 1);
        // The document only keeps its boxes; whoever opened it shows them.
        QVERIFY(boxes.boxes.isEmpty());
    }

    void applicationOpensSnapshotsInTheirOwnWindowOnly() {
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        const QString good = writeSnapshot("routed.SNP", zdtgen::SnapshotOptions());
        UiDocument* document = app.openDocumentFile(good);
        QVERIFY(qobject_cast<SnpUiDocument*>(document) != nullptr);
        QVERIFY(WaitForWork(app));
        QCOMPARE(app.mainFrame()->childFrames().size(), 1);
        QVERIFY(qobject_cast<SnpView*>(app.mainFrame()->childFrames().first()->view()) != nullptr);

        // A snapshot that breaks off gives its box and leaves no window behind.
        QVERIFY(app.openDocumentFile(QStringLiteral(ZDT_SAMPLES_DIR "/snapshots_truncated.snp")) != nullptr);
        QVERIFY(WaitForWork(app));
        QCOMPARE(boxes.boxes.size(), 1);
        QVERIFY2(boxes.boxes[0].text.startsWith("XML error: "), qPrintable(boxes.boxes[0].text));
        QCOMPARE(app.mainFrame()->childFrames().size(), 1);
    }

    void snapshotMenuRoutesToTheViewsActions() {
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        QVERIFY(app.openDocumentFile(writeSnapshot("menu.snp", zdtgen::SnapshotOptions())) != nullptr);
        QVERIFY(WaitForWork(app));
        CMainFrame& frame = *app.mainFrame();
        auto* view = qobject_cast<SnpView*>(frame.childFrames().first()->view());
        QVERIFY(view != nullptr);
        QCOMPARE(frame.menuResourceShown(), 111);

        const struct {
            const char* popup;
            const char* text;
            int id;
            QKeySequence keys;
        } items[] = {
            {"&File", "Save &As...", AdornedListView::SaveAsId, QKeySequence("Ctrl+Shift+S")},
            {"&File", "&Print...", AdornedListView::PrintId, QKeySequence("Ctrl+P")},
            {"&Session", "Session Info...", SnpView::SessionInformationId, QKeySequence()},
            {"&Session", "&Find", SnpView::FindId, QKeySequence("Ctrl+F")},
            {"&Session", "Toggle Bookmark with Na&me...", AdornedListView::ToggleBookmarkDialogId,
             QKeySequence("Ctrl+Alt+F2")},
            {"&Session", "Bookmark &List...", SnpView::BookmarkListId, QKeySequence("Ctrl+B")},
            {"&Session", "Filte&r...", AdornedListView::FilterId, QKeySequence()},
        };
        for (const auto& item : items) {
            QAction* action = MenuItem(frame, item.popup, item.text);
            QVERIFY2(action != nullptr, item.text);
            QVERIFY2(action == view->commandActionById(item.id), item.text);
            QCOMPARE(action->shortcut(), item.keys);
        }
        // The snapshot filter may start once the file is read; the bookmark list waits for a bookmark.
        QVERIFY(MenuItem(frame, "&Session", "Filte&r...")->isEnabled());
        QVERIFY(!MenuItem(frame, "&Session", "Bookmark &List...")->isEnabled());
        view->selectListRow(1);
        MenuItem(frame, "&Session", "&Toggle Bookmark")->trigger();
        QVERIFY(MenuItem(frame, "&Session", "Bookmark &List...")->isEnabled());
        // Snapshots toggle their columns from the list's own menu only.
        QVERIFY(MenuItem(frame, "&View", "&Columns") == nullptr);
        QVERIFY(MenuItem(frame, "&View", "&Status Bar") != nullptr);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void drawFailureBoxWaitsForThePaintToEnd() {
        zdtgen::SnapshotOptions options;
        options.snapshots = 1;
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(writeSnapshot("short.snp", options));
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(makeView(*document));
        const int rows = view->itemCount();
        QVERIFY(rows > 0);
        // Rows the document does not have fail to read as they are drawn.
        view->listModel()->setRowCountTo(rows + 3);
        view->scrollToBottom();
        QSignalSpy shown(view.get(), &AdornedListView::failureShown);
        view->grab();
        QVERIFY(boxes.boxes.isEmpty());
        QTRY_COMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].text, QString("Fatal error while performing view draw item operation."));
        QCOMPARE(shown.size(), 1);
        // The next paint tries again and fails again.
        view->grab();
        QTRY_COMPARE(boxes.boxes.size(), 2);
    }

    void columnWidthsGrowToDrawnTextAndTheMenuTogglesColumns() {
        zdtgen::SnapshotOptions options;
        options.snapshots = 2;
        std::vector<QStringList> expected;
        const QString path = writeSnapshot("two.snp", options, &expected);
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(path);
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(makeView(*document));
        QCOMPARE(view->columnWidthEntry(3), 0);
        view->grab();

        // The entry of a column is the widest text drawn in it, plus 10.
        const QFontMetrics metrics(view->listFont());
        const int firstRow = view->rowAt(0);
        const int lastRow = view->rowAt(view->viewport()->height() - 1);
        const int drawnTo = lastRow < 0 ? view->itemCount() - 1 : lastRow;
        QVERIFY(firstRow == 0 && drawnTo > 0);
        for (int column : {2, 3, 4}) {
            int widest = 0;
            for (int row = firstRow; row <= drawnTo; ++row)
                widest = qMax(widest, metrics.horizontalAdvance(expected[row][column - 1]));
            QCOMPARE(view->columnWidthEntry(column), widest + 10);
        }
        // A header double click applies it.
        Q_EMIT view->header()->sectionHandleDoubleClicked(3);
        QCOMPARE(view->listColumnWidth(3), view->columnWidthEntry(3));
        // A column never drawn has entry 0, so the double click hides it.
        QCOMPARE(view->columnWidthEntry(0), 0);
        Q_EMIT view->header()->sectionHandleDoubleClicked(0);
        QCOMPARE(view->listColumnWidth(0), 0);

        // The last two menu labels are crossed: "UNIT" (40033) toggles the Value column.
        QMenu* menu = view->contextSubMenu();
        QVERIFY(menu != nullptr);
        QCOMPARE(menu->title(), QString("EVENTS"));
        QCOMPARE(menu->actions().at(3)->text(), QString("UNIT"));
        QCOMPARE(menu->actions().at(3)->data().toInt(), 40033);
        QCOMPARE(SnpView::ColumnOfMenuId(40033), 5);
        QCOMPARE(SnpView::ColumnOfMenuId(40034), 6);

        // Hiding keeps the entry that drawing set; showing again restores it.
        const int valueEntry = view->columnWidthEntry(5);
        QVERIFY(valueEntry > 0);
        view->commandActionById(40033)->trigger();
        QCOMPARE(view->listColumnWidth(5), 0);
        QVERIFY(!view->commandActionById(40033)->isChecked());
        view->commandActionById(40033)->trigger();
        QCOMPARE(view->listColumnWidth(5), valueEntry);
        QVERIFY(view->commandActionById(40033)->isChecked());

        // A column with entry 0 stores its width when hidden and gets it back.
        view->setColumnWidthEntry(6, 0);
        view->setListColumnWidth(6, 123);
        view->commandActionById(40034)->trigger();
        QCOMPARE(view->listColumnWidth(6), 0);
        QCOMPARE(view->columnWidthEntry(6), 123);
        view->commandActionById(40034)->trigger();
        QCOMPARE(view->listColumnWidth(6), 123);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void bookmarkAndFindCommandsGoToRowsOrSayWhyNot() {
        zdtgen::SnapshotOptions options;
        options.snapshots = 3;
        const QString path = writeSnapshot("three.snp", options);
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(path);
        QVERIFY(document != nullptr);
        std::unique_ptr<SnpView> view(makeView(*document));
        ZDTAnalyzer::SnpDoc& doc = *document->snpDoc();
        QVERIFY(view->itemCount() > 8);

        // Without a selected row every command stops with the same sentence.
        view->clearSelection();
        view->runCommand(AdornedListView::ToggleBookmarkId);
        view->runCommand(AdornedListView::NextBookmarkId);
        QCOMPARE(boxes.Texts(),
                 QStringList({"No row selected. Please select a row.", "No row selected. Please select a row."}));
        QVERIFY(doc.bookmarks().empty());

        boxes.boxes.clear();
        view->selectListRow(0);
        view->runCommand(AdornedListView::NextBookmarkId);
        view->runCommand(AdornedListView::PreviousBookmarkId);
        view->runCommand(AdornedListView::FindNextId);
        view->runCommand(AdornedListView::FindPreviousId);
        QCOMPARE(boxes.Texts(),
                 QStringList(
                     {"No bookmarks are set. Can't go next bookmark.", "No bookmarks are set. Can't go back bookmark.",
                      "No find results. Can't go next find result.", "No find results. Can't go next find result."}));
        QVERIFY(!view->commandAction(ViewCommand::NextBookmark)->isEnabled());

        boxes.boxes.clear();
        for (int row : {5, 2, 8}) {
            view->selectListRow(row);
            view->commandAction(ViewCommand::ToggleBookmark)->trigger();
        }
        QCOMPARE(int(doc.bookmarks().size()), 3);
        QCOMPARE(QString::fromStdString(doc.bookmarks().front().name), QString("Autobookmark"));
        QCOMPARE(QString::fromStdString(doc.bookmarks().front().description), QString("Autobookmark"));
        QVERIFY(view->listModel()->data(view->listModel()->index(2, 0), Qt::DisplayRole).toString().at(1) == '1');
        QVERIFY(view->commandAction(ViewCommand::NextBookmark)->isEnabled());

        view->selectListRow(0);
        QAction* next = view->commandAction(ViewCommand::NextBookmark);
        QAction* previous = view->commandAction(ViewCommand::PreviousBookmark);
        next->trigger();
        QCOMPARE(view->selectionMark(), 2);
        next->trigger();
        QCOMPARE(view->selectionMark(), 5);
        next->trigger();
        QCOMPARE(view->selectionMark(), 8);
        next->trigger();
        QCOMPARE(view->selectionMark(), 2);
        previous->trigger();
        QCOMPARE(view->selectionMark(), 8);

        // Toggling a bookmarked row removes it; the only one left is found from itself.
        view->commandAction(ViewCommand::ToggleBookmark)->trigger();
        view->selectListRow(2);
        view->commandAction(ViewCommand::ToggleBookmark)->trigger();
        QCOMPARE(int(doc.bookmarks().size()), 1);
        view->selectListRow(5);
        next->trigger();
        QCOMPARE(view->selectionMark(), 5);

        // Find results from a search drive the find commands.
        ZDTAnalyzer::SnpFindCriteria criteria;
        criteria.searchProcessValue = true;
        criteria.valueNameOn = true; // an empty text is found in every name
        document->runFind(view.get(), criteria);
        QVERIFY(WaitUntilIdle(*document));
        QVERIFY(!doc.findResults().empty());
        QVERIFY(view->commandAction(ViewCommand::FindNext)->isEnabled());
        view->selectListRow(0);
        view->commandAction(ViewCommand::FindNext)->trigger();
        QCOMPARE(view->selectionMark(), doc.nextFindResult(0));

        view->commandAction(ViewCommand::ClearBookmarks)->trigger();
        QVERIFY(doc.bookmarks().empty());
        QVERIFY(!next->isEnabled());
        QVERIFY(boxes.boxes.isEmpty());
    }

    void saveAsProposesTheTraceNameAndAsksBeforeReplacing() {
        zdtgen::SnapshotOptions options;
        options.snapshots = 1;
        const QString path = writeSnapshot("trace.snp", options);
        RecordingBoxes boxes;
        std::unique_ptr<SnpUiDocument> document = openDocument(path);
        std::unique_ptr<SnpView> view(makeView(*document));

        // The dialog is dismissed each time: the exports themselves are tested elsewhere.
        QStringList proposed;
        QList<AdornedListView::SaveAsChoice> answers;
        view->setSaveAsChooser([&](QWidget*, const QString& name) -> std::optional<AdornedListView::SaveAsChoice> {
            proposed << name;
            if (answers.isEmpty())
                return std::nullopt;
            return answers.takeFirst();
        });
        view->runCommand(AdornedListView::SaveAsId);
        QCOMPARE(proposed, QStringList({m_dir->filePath("trace")}));
        QVERIFY(boxes.boxes.isEmpty());

        // A grown name that exists is asked about; No goes back to the file dialog.
        QFile existing(m_dir->filePath("report.csv"));
        QVERIFY(existing.open(QIODevice::WriteOnly));
        existing.close();
        answers = {{m_dir->filePath("report"), 4}};
        boxes.answerYes = false;
        view->onSaveAs();
        QCOMPARE(boxes.boxes.size(), 1);
        QVERIFY(boxes.boxes[0].question);
        QCOMPARE(boxes.boxes[0].title, QString("Save As"));
        QCOMPARE(boxes.boxes[0].text, m_dir->filePath("report.csv") + " already exists.\nDo you want to replace it?");
        QCOMPARE(proposed.size(), 3);
        QVERIFY(!document->isBusy());
        QVERIFY(view->commandAction(ViewCommand::Print)->isEnabled());
    }

    void sessionInformationShowsTimeBeforeTheComma() {
        RecordingBoxes boxes;
        zdtgen::SnapshotOptions options;
        options.listCreated = std::string("14:05:09,21.11.2023");
        const QString path = writeSnapshot("session.snp", options);
        std::unique_ptr<SnpUiDocument> document = openDocument(path);
        QVERIFY(document != nullptr);
        SnpSessionInfoDialog dialog(document->snpDoc()->sessionInformation());
        QCOMPARE(dialog.timeText(), QString("14:05:09"));
        QCOMPARE(dialog.dateText(), QString("21.11.2023"));
        QCOMPARE(dialog.fileNameText(), path);
        QCOMPARE(dialog.authorText(), QString("ZDT V7"));
    }

    void saveAsNamesFollowTheChosenFilter() {
        QCOMPARE(ProposedSaveAsName("/data/run.1/trace.snp"), std::string("/data/run.1/trace"));
        QCOMPARE(ProposedSaveAsName(".snp"), std::string(".snp"));
        QCOMPARE(ProposedSaveAsName("noext"), std::string("noext"));
        QCOMPARE(SaveAsNameWithExtension("out.html", 1), std::string("out.html"));
        QCOMPARE(SaveAsNameWithExtension("out.txt", 1), std::string("out.txt.html"));
        QCOMPARE(SaveAsNameWithExtension("out.HTML", 1), std::string("out.HTML.html"));
        QCOMPARE(SaveAsNameWithExtension("out", 3), std::string("out.pdf"));
        QCOMPARE(SaveAsNameWithExtension("outrtf", 2), std::string("outrtf.rtf"));
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<SnpViewTest>(argc, argv);
}
#include "SnpViewTest.moc"

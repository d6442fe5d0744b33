// The process value trace window: files of both schemas opened window-first, their
// columns, colours and menus, the column toggles that differ by schema, the go-to
// commands' boxes, find per schema, the session dialog and a cancelled open.
#include "xpvt/XpvtDoc.h"

#include "XpvtTraceGenerator.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "ui/IsolatedTestMain.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xpvt/XpvtSessionInfoDialog.h"
#include "xpvt/XpvtUiDocument.h"
#include "xpvt/XpvtView.h"

#include <QAction>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QImage>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <fstream>
#include <memory>

using namespace zdtui;
using namespace operation_waits;

namespace {

const char* const Header = R"(<?xml version="1.0"?>
<ProcessValueTrace>
<Description DateTime="2024-01-02T10:11:12">
<Title>Bench run</Title><Schema>%SCHEMA%</Schema><ProductVersion>7.1.3</ProductVersion>
<Author>Tester</Author><Comment>Night run</Comment>
<Project ShortName="PRJ"><VehicleInformationTable ShortName="VIT">
<LogicalLink><ShortName>LL_HEAD</ShortName><DatabaseAccessKey>KEY_1</DatabaseAccessKey></LogicalLink>
</VehicleInformationTable></Project>
</Description>
)";

// One row of each colour: black start, green primitive, red state, blue parameter.
const char* const Trace701 = R"(<Trace>
<StartTrace><Date>D1</Date><Time>T1</Time></StartTrace>
<OpenComPrimitive><LogicalLink><ShortName>LL_A</ShortName></LogicalLink><Type>Job</Type></OpenComPrimitive>
<ZdtResult><LogicalLink><ShortName>LL_A</ShortName></LogicalLink>
<ZdtResponse><State>notacknowledged</State>
<ZdtResponseParameter><ShortName>Speed</ShortName><ZdtValue><Value>42</Value></ZdtValue></ZdtResponseParameter>
</ZdtResponse></ZdtResult>
</Trace></ProcessValueTrace>
)";

const char* const Trace702 = R"(<Trace>
<StartTrace DateTime="2024-01-02 10:11:12"><PhysicalInterfaceLink>PIL</PhysicalInterfaceLink></StartTrace>
<StartDiagComPrimitive><TimeStamp>100</TimeStamp><LogicalLink ShortName="LL_B"/>
<DiagComPrimitive ShortName="ReadSpeed" ID="7" ObjectType="Service"/></StartDiagComPrimitive>
<Result><LogicalLink ShortName="LL_B"/><DiagComPrimitive ShortName="ReadSpeed" ID="7" ObjectType="Service"/>
<Response ShortName="Resp"><TimeStamp>120</TimeStamp><ResponseMessage>62 F4 0D 2A</ResponseMessage>
<ResponseParameter ShortName="Speed" Type="A_UINT32"><Value Type="A_UINT32" Radix="10"><ValueAsString>42</ValueAsString></Value></ResponseParameter>
</Response>
<Error Code="E17"><CodeDescription>timeout</CodeDescription></Error>
</Result>
</Trace></ProcessValueTrace>
)";

QString TraceText(const char* schema, const char* trace) {
    return QString::fromUtf8(Header).replace(QStringLiteral("%SCHEMA%"), QString::fromUtf8(schema)) +
           QString::fromUtf8(trace);
}

QColor ColourOfDigit(QChar digit) {
    switch (digit.unicode()) {
    case '0':
        return QColor(0, 0, 0xFF);
    case '1':
        return QColor(0, 0x80, 0);
    case '2':
        return QColor(0, 0, 0);
    default:
        return QColor(0xFF, 0, 0);
    }
}

bool ImageHolds(const QImage& image, const QRect& rect, const QColor& colour) {
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        for (int x = rect.left(); x <= rect.right(); ++x) {
            if (image.pixelColor(x, y).rgb() == colour.rgb())
                return true;
        }
    }
    return false;
}

QStringList ActionTexts(const QMenu& menu) {
    QStringList texts;
    for (const QAction* action : menu.actions())
        texts << action->text();
    return texts;
}

// The items of the frame's "&View" / "&Columns" popup as it stands.
QStringList ColumnsMenuTexts(CMainFrame& frame) {
    for (QAction* popup : frame.menuBar()->actions()) {
        if (popup->text() != QStringLiteral("&View") || popup->menu() == nullptr)
            continue;
        for (QAction* item : popup->menu()->actions()) {
            if (item->text() == QStringLiteral("&Columns") && item->menu() != nullptr)
                return ActionTexts(*item->menu());
        }
    }
    return {QStringLiteral("no columns popup")};
}

} // namespace

class XpvtViewTest : public QObject {
    Q_OBJECT

    std::unique_ptr<QTemporaryDir> m_dir;
    QTemporaryDir m_settingsDir;

    QString swapDirectory() const { return m_dir->filePath("swap"); }

    QString writeFile(const QString& name, const QString& text) {
        const QString path = m_dir->filePath(name);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return QString();
        file.write(text.toUtf8());
        return path;
    }

    // Window first, as the application does it: the view exists before the file is read.
    struct Opened {
        std::unique_ptr<XpvtUiDocument> document;
        std::unique_ptr<XpvtView> view;
        bool ok = false;
        QStringList messages;
    };
    Opened openWindowFirst(const QString& path) {
        Opened opened;
        opened.document = std::make_unique<XpvtUiDocument>(swapDirectory());
        opened.view.reset(qobject_cast<XpvtView*>(opened.document->createView(nullptr, nullptr)));
        if (opened.view == nullptr)
            return opened;
        opened.view->resize(1300, 400);
        opened.view->show();
        const OpenOutcome outcome = OpenAndWait(*opened.document, path);
        opened.ok = outcome.opened;
        opened.messages = MessageTexts(outcome.messages);
        return opened;
    }

    static QString cell(XpvtView& view, int row, int column) {
        AdornedListModel* model = view.listModel();
        return model->data(model->index(row, column), Qt::DisplayRole).toString();
    }

    static QStringList titles(XpvtView& view) {
        QStringList result;
        for (int column = 0; column < view.listModel()->columnCount(); ++column)
            result << view.listModel()->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        return result;
    }

    static QList<int> widths(XpvtView& view) {
        QList<int> result;
        for (int column = 0; column < view.listModel()->columnCount(); ++column)
            result << view.listColumnWidth(column);
        return result;
    }

    // Every row's text is drawn in the colour its digit names.
    static void verifyRowColours(XpvtView& view, const QString& digitsExpected) {
        const QImage image = view.viewport()->grab().toImage();
        QString digits;
        for (int row = 0; row < view.itemCount(); ++row) {
            const QString flags = cell(view, row, 0);
            QCOMPARE(flags.size(), 3);
            digits += flags.at(2);
            const QRect rect = view.cellRect(row, 2);
            QVERIFY2(ImageHolds(image, rect, ColourOfDigit(flags.at(2))),
                     qPrintable(QStringLiteral("row %1 digit %2").arg(row).arg(flags.at(2))));
        }
        for (QChar digit : digitsExpected)
            QVERIFY2(digits.contains(digit), qPrintable(digits));
    }

private Q_SLOTS:
    void initTestCase() {
        // The settings of the person running the tests stay untouched.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settingsDir.path());
    }

    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        QVERIFY(m_dir->isValid());
        QVERIFY(QDir().mkpath(swapDirectory()));
        QSettings(QStringLiteral("Norvika"), QStringLiteral("ZDT7")).remove(QStringLiteral("XPVT"));
    }

    void cleanup() { m_dir.reset(); }

    void file701ShowsItsColumnsAndColours() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("a.xpvt", TraceText("7.01", Trace701)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        QVERIFY(view.initialised());
        QVERIFY(!view.laidOutFor702());
        QCOMPARE(titles(view), QStringList({"", "Line", "Event", "LogicalLink", "CANID[hex]", "Abs.Time[ms]",
                                            "Description", "Value", "RangeInfo"}));
        QCOMPARE(widths(view), QList<int>({35, 40, 80, 160, 50, 50, 200, 200, 120}));
        QCOMPARE(view.columnAlignment(1), Qt::AlignRight);
        for (int column : {0, 2, 5, 8})
            QCOMPARE(view.columnAlignment(column), Qt::AlignLeft);

        QCOMPARE(view.itemCount(), opened.document->xpvtDoc().container().rowCount());
        QCOMPARE(view.itemCount(), 5);
        QCOMPARE(cell(view, 0, 1), QString("1"));
        QCOMPARE(cell(view, 0, 2), QString("Start trace"));
        QCOMPARE(cell(view, 1, 2), QString("OpenComPrimitive"));
        QCOMPARE(cell(view, 1, 3), QString("LL_A"));
        QCOMPARE(cell(view, 4, 1), QString("5"));
        verifyRowColours(view, "0123");

        QMenu* popup = view.contextSubMenu();
        QVERIFY(popup != nullptr);
        QCOMPARE(popup->title(), QString("Events"));
        QCOMPARE(ActionTexts(*popup).size(), 7);
        QCOMPARE(view.menuResource(), 139);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void file702IsLaidOutAgainOnceItsSchemaIsRead() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("b.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        QVERIFY(view.laidOutFor702());
        QCOMPARE(titles(view), QStringList({"", "Line", "Event", "LogicalLink", "Location", "ID", "Time", "Description",
                                            "Value", "Unit", "RangeInfo"}));
        QCOMPARE(widths(view), QList<int>({35, 30, 150, 160, 160, 40, 110, 200, 200, 40, 120}));
        for (int column : {1, 5})
            QCOMPARE(view.columnAlignment(column), Qt::AlignRight);
        for (int column : {0, 2, 4, 6, 10})
            QCOMPARE(view.columnAlignment(column), Qt::AlignLeft);
        QCOMPARE(view.itemCount(), opened.document->xpvtDoc().container().rowCount());
        QVERIFY(view.itemCount() >= 6);
        QCOMPARE(cell(view, 0, 2), QString("Start Trace"));
        verifyRowColours(view, "0123");

        QMenu* popup = view.contextSubMenu();
        QVERIFY(popup != nullptr);
        QCOMPARE(popup->title(), QString("XPVT_NEW"));
        // Laid out twice, but the context menu holds one popup only.
        QCOMPARE(view.contextMenu()->actions().size(), 1);
        QCOMPARE(ActionTexts(*popup), QStringList({"Event", "LogicalLink", "Location", "ID", "Time", "Description",
                                                   "Value", "Unit", "RangeInfo"}));
        QVERIFY(boxes.boxes.isEmpty());
    }

    void stored702WidthsAreUsedOnlyWhenTwelve() {
        QSettings settings(QStringLiteral("Norvika"), QStringLiteral("ZDT7"));
        settings.setValue(QStringLiteral("XPVT/ColumnSettings"),
                          QStringLiteral("36/31/151/0/161/41/111/201/201/41/121/9"));
        settings.sync();
        RecordingBoxes boxes;
        {
            Opened opened = openWindowFirst(writeFile("c.xpvt", TraceText("7,02", Trace702)));
            QVERIFY(opened.ok);
            // A stored width of 0 starts the column hidden.
            QCOMPARE(widths(*opened.view), QList<int>({36, 31, 151, 0, 161, 41, 111, 201, 201, 41, 121}));
        }
        settings.setValue(QStringLiteral("XPVT/ColumnSettings"),
                          QStringLiteral("36/31/151/1/161/41/111/201/201/41/121"));
        settings.sync();
        Opened opened = openWindowFirst(writeFile("d.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(opened.ok);
        QCOMPARE(widths(*opened.view), QList<int>({35, 30, 150, 160, 160, 40, 110, 200, 200, 40, 120}));
        QVERIFY(boxes.boxes.isEmpty());
    }

    void aHidden702ColumnKeepsItsFirstWidth() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("e.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        // Column 6 "Time" through its item 40050; no text drawn has set its entry.
        view.setColumnWidthEntry(6, 0);
        view.setListColumnWidth(6, 90);
        view.executeContextMenuCommand(XpvtView::TimeItemId);
        QCOMPARE(view.listColumnWidth(6), 0);
        QCOMPARE(view.columnWidthEntry(6), 90);
        view.executeContextMenuCommand(XpvtView::TimeItemId);
        QCOMPARE(view.listColumnWidth(6), 90);
        // Widened and hidden again: the first width stays kept.
        view.setListColumnWidth(6, 140);
        view.executeContextMenuCommand(XpvtView::TimeItemId);
        QCOMPARE(view.columnWidthEntry(6), 90);
        view.executeContextMenuCommand(XpvtView::TimeItemId);
        QCOMPARE(view.listColumnWidth(6), 90);
        // An id of the other schema's items toggles nothing here.
        view.executeContextMenuCommand(XpvtView::CanIdItemId);
        QCOMPARE(widths(view).count(0), 0);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void a701ColumnKeepsNoWidthOfItsOwn() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("f.xpvt", TraceText("7.01", Trace701)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        // Column 4 "CANID[hex]" through item 40008: nothing stored, so it stays hidden.
        view.setColumnWidthEntry(4, 0);
        view.executeContextMenuCommand(XpvtView::CanIdItemId);
        QCOMPARE(view.listColumnWidth(4), 0);
        QCOMPARE(view.columnWidthEntry(4), 0);
        view.executeContextMenuCommand(XpvtView::CanIdItemId);
        QCOMPARE(view.listColumnWidth(4), 0);
        // Once text was drawn, the column comes back at the widest text drawn.
        view.setListColumnWidth(2, 80);
        view.viewport()->grab();
        const int drawn = view.columnWidthEntry(2);
        QVERIFY(drawn > 10);
        view.executeContextMenuCommand(XpvtView::EventItemId);
        QCOMPARE(view.listColumnWidth(2), 0);
        view.executeContextMenuCommand(XpvtView::EventItemId);
        QCOMPARE(view.listColumnWidth(2), drawn);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void columnsMenuFollowsTheSchemaAndTheWidths() {
        RecordingBoxes boxes;
        Opened old = openWindowFirst(writeFile("g.xpvt", TraceText("7.01", Trace701)));
        Opened next = openWindowFirst(writeFile("h.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(old.ok && next.ok);
        QMenu columns;
        columns.addAction(QStringLiteral("stale"));
        old.view->fillColumnsMenu(&columns);
        QCOMPARE(ActionTexts(columns),
                 QStringList({"EVENT", "LOGICALLINK", "CANID", "ABSTIME", "DESCRIPTION", "VALUE", "RANGEINFO"}));
        next.view->fillColumnsMenu(&columns);
        QCOMPARE(ActionTexts(columns), QStringList({"EVENT", "LOGICAL LINK", "LOCATION", "ID", "TIME", "DESCRIPTION",
                                                    "VALUE", "UNIT", "RANGEINFO"}));
        for (QAction* action : columns.actions())
            QVERIFY(action->isEnabled() && action->isChecked());
        // The item runs the same toggle, and its check mark follows the width.
        QAction* unit = columns.actions().at(7);
        QCOMPARE(unit->data().toInt(), XpvtView::UnitItemId);
        unit->trigger();
        QCOMPARE(next.view->listColumnWidth(9), 0);
        QVERIFY(!unit->isChecked());
        unit->trigger();
        QCOMPARE(next.view->listColumnWidth(9), 40);
        QVERIFY(unit->isChecked());
        QVERIFY(boxes.boxes.isEmpty());
    }

    void goToCommandsSayWhyTheyCannotMove() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("i.xpvt", TraceText("7.01", Trace701)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        view.clearSelection();
        for (int id : {AdornedListView::PreviousBookmarkId, AdornedListView::NextBookmarkId,
                       AdornedListView::FindNextId, AdornedListView::FindPreviousId})
            view.goTo(id);
        view.runCommand(AdornedListView::ToggleBookmarkId);
        view.runCommand(AdornedListView::ToggleBookmarkDialogId);
        QCOMPARE(boxes.Texts(), QStringList(6, "No row selected. Please select a row."));
        QVERIFY(opened.document->xpvtDoc().bookmarks().empty());

        boxes.boxes.clear();
        view.selectListRow(2);
        for (int id : {AdornedListView::PreviousBookmarkId, AdornedListView::NextBookmarkId,
                       AdornedListView::FindNextId, AdornedListView::FindPreviousId})
            view.goTo(id);
        QCOMPARE(boxes.Texts(),
                 QStringList(
                     {"No bookmarks are set. Can't go back bookmark.", "No bookmarks are set. Can't go next bookmark.",
                      "No find results. Can't go next find result.", "No find results. Can't go next find result."}));
        QVERIFY(!view.commandAction(ViewCommand::NextBookmark)->isEnabled());

        // An automatic bookmark marks the row and moves the selection on to it.
        boxes.boxes.clear();
        view.runCommand(AdornedListView::ToggleBookmarkId);
        QCOMPARE(cell(view, 2, 0).at(1), QChar('1'));
        QCOMPARE(opened.document->xpvtDoc().bookmarks().front().name, std::string("Autobookmark"));
        QVERIFY(view.commandAction(ViewCommand::NextBookmark)->isEnabled());
        view.selectListRow(4);
        view.commandAction(ViewCommand::NextBookmark)->trigger();
        QCOMPARE(view.selectionMark(), 2);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void aSearchMarksRowsAndTheFindCommandsWalkThem() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("s.xpvt", TraceText("7.01", Trace701)));
        QVERIFY(opened.ok);
        XpvtView& view = *opened.view;
        QVERIFY(!view.commandAction(ViewCommand::FindNext)->isEnabled());
        ZDTAnalyzer::XpvtFindCriteria701& criteria = opened.document->xpvtDoc().findCriteria701();
        criteria.searchPrimitives = true;
        criteria.matchAll = true;
        opened.document->runFind(&view);
        QVERIFY(WaitUntilIdle(*opened.document));
        QVERIFY(boxes.boxes.isEmpty());
        QCOMPARE(opened.document->xpvtDoc().findResults(), std::vector<int>{1});
        // The list shows the mark at once and the walk commands come alive.
        QCOMPARE(cell(view, 1, 0).at(0), QChar('1'));
        QVERIFY(view.commandAction(ViewCommand::FindNext)->isEnabled());
        view.selectListRow(3);
        view.commandAction(ViewCommand::FindNext)->trigger();
        QCOMPARE(view.selectionMark(), 1);
    }

    void findIsDisabledInA702ListOnly() {
        RecordingBoxes boxes;
        Opened old = openWindowFirst(writeFile("j.xpvt", TraceText("7.01", Trace701)));
        Opened next = openWindowFirst(writeFile("k.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(old.ok && next.ok);
        QVERIFY(old.view->commandAction(ViewCommand::Find)->isEnabled());
        QVERIFY(!next.view->commandAction(ViewCommand::Find)->isEnabled());
        // A 7.02 schema text with a trailing blank is a 7.01 file.
        Opened blank = openWindowFirst(writeFile("l.xpvt", TraceText("7,02 ", Trace701)));
        QVERIFY(blank.ok);
        QVERIFY(!blank.view->laidOutFor702());
        QVERIFY(blank.view->commandAction(ViewCommand::Find)->isEnabled());
        for (ViewCommand command : {ViewCommand::SessionInfo, ViewCommand::Filter, ViewCommand::SaveAs,
                                    ViewCommand::ToggleNamedBookmark, ViewCommand::BookmarkList})
            QVERIFY(next.view->commandAction(command) != nullptr);
        QVERIFY(next.view->commandAction(ViewCommand::Filter)->isEnabled());
        QVERIFY(!next.view->commandAction(ViewCommand::BookmarkList)->isEnabled());
        QVERIFY(boxes.boxes.isEmpty());
    }

    void sessionDialogShowsTheHeader() {
        RecordingBoxes boxes;
        Opened opened = openWindowFirst(writeFile("m.xpvt", TraceText("7,02", Trace702)));
        QVERIFY(opened.ok);
        XpvtSessionInfoDialog dialog(opened.document->xpvtDoc().description());
        using Field = XpvtSessionInfoDialog::Field;
        QCOMPARE(dialog.windowTitle(), QString("Session Information"));
        const struct {
            Field field;
            const char* heading;
            const char* label;
            const char* text;
        } expected[] = {
            {Field::Title, "", "Title:", "Bench run"},
            {Field::Schema, "", "Schema:", "7,02"},
            {Field::ProductVersion, "", "Product version:", "7.1.3"},
            {Field::Date, "", "Date:", "2024-01-02"},
            {Field::Time, "", "Time:", "10:11:12"},
            {Field::Author, "", "Author:", "Tester"},
            {Field::Comment, "", "Comment:", "Night run"},
            {Field::Project, "Project:", "Shortname:", "PRJ"},
            {Field::VehicleInformationTable, "Vehicle information table:", "Shortname:", "VIT"},
            // The box labelled LogicalLink shows the database access key.
            {Field::LogicalLink, "", "LogicalLink:", "KEY_1"},
        };
        for (const auto& row : expected) {
            QCOMPARE(dialog.fieldHeading(row.field), QString(row.heading));
            QCOMPARE(dialog.fieldLabel(row.field), QString(row.label));
            QCOMPARE(dialog.fieldText(row.field), QString(row.text));
        }
        QCOMPARE(QString::fromStdString(opened.document->xpvtDoc().description().LogicalLink), QString("LL_HEAD"));
        QVERIFY(boxes.boxes.isEmpty());
    }

    void eachFocusedWindowShowsItsOwnColumnsMenu() {
        RecordingBoxes boxes;
        CAnalyzerApp app;
        QVERIFY(app.InitInstance({}));
        CMainFrame& frame = *app.mainFrame();
        QVERIFY(qobject_cast<XpvtUiDocument*>(app.openDocumentFile(writeFile("o.XPVT", TraceText("7.01", Trace701)))));
        QVERIFY(qobject_cast<XpvtUiDocument*>(app.openDocumentFile(writeFile("n.xpvt", TraceText("7,02", Trace702)))));
        QVERIFY(WaitForWork(app));
        QCOMPARE(frame.childFrames().size(), 2);
        const QStringList old{"EVENT", "LOGICALLINK", "CANID", "ABSTIME", "DESCRIPTION", "VALUE", "RANGEINFO"};
        const QStringList next{"EVENT",       "LOGICAL LINK", "LOCATION", "ID",       "TIME",
                               "DESCRIPTION", "VALUE",        "UNIT",     "RANGEINFO"};
        for (CChildFrame* child : frame.childFrames()) {
            frame.mdiArea()->setActiveSubWindow(child);
            auto* view = qobject_cast<XpvtView*>(child->view());
            QVERIFY(view != nullptr);
            QTRY_COMPARE(ColumnsMenuTexts(frame), view->is702() ? next : old);
        }
        QVERIFY(boxes.boxes.isEmpty());
    }

    void aCancelledOpenLeavesNothing() {
        zdtgen::XpvtTraceOptions options;
        options.targetBytes = 600 * 1024;
        const QString path = m_dir->filePath("big.xpvt");
        {
            std::ofstream out(QFile::encodeName(path).toStdString(), std::ios::binary);
            zdtgen::WriteXpvtTrace(out, options);
        }
        RecordingBoxes boxes;
        auto document = std::make_unique<XpvtUiDocument>(swapDirectory());
        std::unique_ptr<QWidget> view(document->createView(nullptr, nullptr));
        bool wasOpening = false;
        connect(document.get(), &UiDocument::operationStarted, this, [&](BackgroundOperation* operation) {
            wasOpening = document->isOpening() && operation == document->operation();
            document->cancelOperation();
        });
        const OpenOutcome outcome = OpenAndWait(*document, path);
        QVERIFY(outcome.ended);
        QVERIFY(!outcome.opened);
        QVERIFY(wasOpening);
        QVERIFY(!document->isOpening());
        QVERIFY(!document->isBusy());
        QVERIFY(outcome.messages.empty());
        QVERIFY(boxes.boxes.isEmpty());
        document->close();
        view.reset();
        document.reset();
        QCOMPARE(QDir(swapDirectory()).entryList(QDir::Files), QStringList());
    }

    void aFileWithAnXmlErrorDoesNotOpen() {
        RecordingBoxes boxes;
        QString text = TraceText("7.01", Trace701);
        text.chop(30);
        Opened opened = openWindowFirst(writeFile("broken.xpvt", text));
        QVERIFY(!opened.ok);
        QCOMPARE(opened.messages.size(), 1);
        QVERIFY2(opened.messages[0].startsWith("XML error: "), qPrintable(opened.messages[0]));
        QVERIFY(boxes.boxes.isEmpty());
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<XpvtViewTest>(argc, argv);
}

#include "XpvtViewTest.moc"

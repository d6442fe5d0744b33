#include "support/ClassicTraces.h"
#include "ui/IsolatedTestMain.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"

#include "app/MenuResources.h"
#include "classic/CAnaView.h"
#include "classic/ClassicDocument.h"
#include "classic/CycleTimeChart.h"
#include "classic/IdentifierStatisticsDialog.h"
#include "classic/IdentifierStatisticsModel.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QLineSeries>
#include <QMenu>
#include <QPushButton>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QSpinBox>
#include <QTableView>
#include <QTest>
#include <QValueAxis>

#include <cstdio>
#include <memory>

using namespace zdtui;
using namespace operation_waits;
using namespace classic_traces;

namespace {

class NoStatus final : public StatusSink {
public:
    void SetStatusDocument(const QString&, int) override {}
    void SetStatusText(const QString&) override {}
};

std::string Frame(const char* type, unsigned channel, unsigned identifier, unsigned time, unsigned length) {
    char line[96];
    std::snprintf(line, sizeof line, "%s %02x %08X %010u %04x 01 02 03 04 05 06 07 08", type, channel, identifier, time,
                  length);
    return line;
}

// 7E8 on channel 1 at 1, 11, 21.5 and 31 ms; 100 at 5 and 15 ms; 7E8 once on channel 2.
std::string BusTrace() {
    return Head("CAN Onboard", "601") +
           CrLf({"[TraceData]", Frame("5000", 1, 0x7E8, 1000, 8), Frame("5000", 1, 0x100, 5000, 2),
                 Frame("5000", 2, 0x7E8, 6000, 1), Frame("5000", 1, 0x7E8, 11000, 8), "4403 01 X 0000012000",
                 Frame("5000", 1, 0x100, 15000, 2), Frame("5000", 1, 0x7E8, 21500, 3),
                 Frame("5000", 1, 0x7E8, 31000, 8)});
}

// A document with its list, opened through the desktop path.
struct OpenTrace {
    explicit OpenTrace(const std::string& path) {
        view.reset(static_cast<CAnaView*>(document.createView(nullptr, &status)));
        view->resize(900, 400);
        opened = OpenAndWait(document, QString::fromStdString(path)).opened;
    }
    // Raises the dialog from the command, as the menu does, and waits for its figures.
    IdentifierStatisticsDialog* Raise() {
        QAction* action = view->commandAction(ViewCommand::IdentifierStatistics);
        if (action == nullptr)
            return nullptr;
        action->trigger();
        IdentifierStatisticsDialog* dialog = view->statisticsDialog();
        if (dialog != nullptr && !QTest::qWaitFor([&] { return dialog->hasFigures() && !document.isBusy(); }))
            return nullptr;
        return dialog;
    }

    NoStatus status;
    ClassicDocument document;
    std::unique_ptr<CAnaView> view;
    bool opened = false;
};

QString Field(QWidget& dialog, const char* name) {
    auto* field = dialog.findChild<QLineEdit*>(QString::fromLatin1(name));
    if (field == nullptr)
        qFatal("field %s missing", name);
    return field->text();
}

QStringList Figures(QWidget& dialog) {
    return {Field(dialog, "totalCount"), Field(dialog, "cyclemin"),  Field(dialog, "cyclemid"),
            Field(dialog, "cyclemax"),   Field(dialog, "lengthmin"), Field(dialog, "lengthmid"),
            Field(dialog, "lengthmax")};
}

QStringList Labels(QWidget& dialog) {
    QStringList texts;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        texts << label->text();
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        texts << button->text();
    return texts;
}

} // namespace

class IdentifierStatisticsDialogTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void sessionMenuAndListMenuCarryTheCommand() {
        bool inSession = false;
        for (const PopupResource& popup : MenuResource(142))
            for (const MenuItemResource& item : popup.items)
                if (popup.title == "&Session" && item.text == "Identifier statistics...")
                    inSession = std::get<ViewCommand>(item.command) == ViewCommand::IdentifierStatistics;
        QVERIFY(inSession);

        TempDir dir;
        OpenTrace trace(dir.Write("bus.trc", BusTrace()));
        QVERIFY(trace.opened);
        QAction* action = trace.view->commandAction(ViewCommand::IdentifierStatistics);
        QVERIFY(action != nullptr);
        QCOMPARE(action->text(), QString("Identifier statistics..."));
        QMenu menu;
        trace.view->fillListMenu(menu);
        QVERIFY(menu.actions().contains(action));
    }

    void showsTheFiguresOfTheSelectedRowsIdentifier() {
        RecordingBoxes boxes;
        TempDir dir;
        OpenTrace trace(dir.Write("bus.trc", BusTrace()));
        QVERIFY(trace.opened);
        trace.view->selectRow(6); // 7E8 at 21.5 ms
        IdentifierStatisticsDialog* dialog = trace.Raise();
        QVERIFY(dialog != nullptr);
        QVERIFY(dialog->isVisible());
        QCOMPARE(dialog->windowTitle(), QString("Identifier statistics"));
        const QStringList labels = Labels(*dialog);
        for (const char* label : {"Identifier:", "Extended", "Channel:", "Total count:", "Cycle time (ms):",
                                  "Data length:", "min", "mid", "max", "Reload", "Close"})
            QVERIFY2(labels.contains(label), label);

        QCOMPARE(Field(*dialog, "identifier"), QString("7E8"));
        QVERIFY(!dialog->findChild<QCheckBox*>("extended")->isChecked());
        QCOMPARE(dialog->findChild<QSpinBox*>("channel")->value(), 1);
        QCOMPARE(Figures(*dialog), QStringList({"4", "9.500", "10.000", "10.500", "3", "6.750", "8"}));

        // The chart comes from a second pass: the three cycle times, at 11, 21.5 and 31 ms.
        QSignalSpy chart(dialog, &IdentifierStatisticsDialog::chartShown);
        QVERIFY(QTest::qWaitFor([&] { return !dialog->chart()->series().points.empty(); }));
        const std::vector<CyclePoint> expected = {{11000, 10000}, {21500, 10500}, {31000, 9500}};
        QVERIFY(dialog->chart()->series().points == expected);
        QCOMPARE(dialog->chart()->drawnPoints(), 3);

        // Another channel is another key: 7E8 was seen once there, so it has no cycle time.
        dialog->findChild<QSpinBox*>("channel")->setValue(2);
        QCOMPARE(Figures(*dialog), QStringList({"1", "-", "-", "-", "1", "1.000", "1"}));
        QVERIFY(QTest::qWaitFor([&] { return dialog->chart()->series().key.channel == 2; }));
        QVERIFY(dialog->chart()->series().points.empty());
        QVERIFY(boxes.boxes.isEmpty());
    }

    void tableSortsByValueAndCopiesWhatItShows() {
        TempDir dir;
        OpenTrace trace(dir.Write("bus.trc", BusTrace()));
        QVERIFY(trace.opened);
        IdentifierStatisticsDialog* dialog = trace.Raise();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->model()->rowCount(), 3);
        const QString header =
            "IDENTIFIER,CHANNEL,COUNT,CYCLE_MIN_MS,CYCLE_MID_MS,CYCLE_MAX_MS,LENGTH_MIN,LENGTH_MID,LENGTH_MAX,"
            "SKIPPED_TIMES\n";
        QCOMPARE(dialog->csvText(), header + "100,1,2,10.000,10.000,10.000,2,2.000,2,0\n"
                                             "7E8,1,4,9.500,10.000,10.500,3,6.750,8,0\n"
                                             "7E8,2,1,-,-,-,1,1.000,1,0\n");
        // No first identifier was chosen from the list: the dialog takes the table's first.
        QCOMPARE(Field(*dialog, "identifier"), QString("100"));

        // Cycle max as numbers, "-" first: 7E8/2, 100 (10.000), 7E8/1 (10.500).
        dialog->table()->sortByColumn(5, Qt::AscendingOrder);
        dialog->findChild<QPushButton*>("copyCsv")->click();
        const QString sorted = header + "7E8,2,1,-,-,-,1,1.000,1,0\n"
                                        "100,1,2,10.000,10.000,10.000,2,2.000,2,0\n"
                                        "7E8,1,4,9.500,10.000,10.500,3,6.750,8,0\n";
        QCOMPARE(QApplication::clipboard()->text(), sorted);
        dialog->table()->sortByColumn(2, Qt::DescendingOrder);
        QVERIFY(dialog->csvText().startsWith(header + "7E8,1,4,"));

        // Choosing a line of the table makes it the dialog's identifier.
        dialog->table()->selectRow(2);
        QCOMPARE(Field(*dialog, "identifier"), QString("7E8"));
        QCOMPARE(dialog->findChild<QSpinBox*>("channel")->value(), 2);
    }

    void reloadCountsAgainAfterTheFilterChanged() {
        TempDir dir;
        OpenTrace trace(dir.Write("bus.trc", BusTrace()));
        QVERIFY(trace.opened);
        trace.view->selectRow(0);
        IdentifierStatisticsDialog* dialog = trace.Raise();
        QVERIFY(dialog != nullptr);
        QVERIFY(WaitUntilIdle(trace.document));
        QCOMPARE(dialog->model()->rowCount(), 3);

        const std::string flt = dir.Write("only100.flt", Filter("PassFilter", {"100"}));
        trace.document.finishCanFilter({true, true, true, "only100.flt"}, flt, nullptr);
        QVERIFY(WaitUntilIdle(trace.document));
        // The old figures stay until Reload, marked as such.
        QCOMPARE(dialog->model()->rowCount(), 3);
        QVERIFY(dialog->findChild<QLabel*>("note")->text().contains("Reload"));

        QSignalSpy shown(dialog, &IdentifierStatisticsDialog::figuresShown);
        dialog->findChild<QPushButton*>("reload")->click();
        QVERIFY(QTest::qWaitFor([&] { return !shown.isEmpty(); }));
        QCOMPARE(dialog->model()->rowCount(), 1);
        QVERIFY(!dialog->findChild<QLabel*>("note")->text().contains("Reload"));
        // 7E8 is no longer among the rows the list shows.
        QCOMPARE(Field(*dialog, "identifier"), QString("7E8"));
        QCOMPARE(Figures(*dialog), QStringList({"", "", "", "", "", "", ""}));
    }

    void traceWithoutIdentifiersSaysWhy() {
        TempDir dir;
        OpenTrace trace(dir.Write("kline.trc", Diagnostic601()));
        QVERIFY(trace.opened);
        IdentifierStatisticsDialog* dialog = trace.Raise();
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->model()->rowCount(), 0);
        QCOMPARE(dialog->findChild<QLabel*>("tableNote")->text(),
                 QString("No record of this trace carries an identifier: it holds no CAN or Flex frames."));
        QVERIFY(!dialog->findChild<QPushButton*>("copyCsv")->isEnabled());
        QCOMPARE(Field(*dialog, "totalCount"), QString());
    }

    // A million cycle times: the line gets at most two points a pixel column, also after a zoom.
    void chartDrawsFewPointsOfAMillion() {
        CycleTimeChart chart;
        chart.resize(800, 400);
        chart.show();
        QVERIFY(QTest::qWaitForWindowExposed(&chart));
        CycleSeries series;
        series.key = {0x7E8, false, 1};
        for (std::uint32_t i = 0; i < 1000000; ++i)
            series.points.push_back({1000 + i * 10, 9000 + (i * 7919) % 2001});
        series.points[500000].cycleMicros = 250000; // a gap must show
        chart.showSeries(std::move(series));
        // Never more than two points a pixel of the chart's width.
        const int columns = chart.width();
        QVERIFY(chart.drawnPoints() > 0);
        QVERIFY(chart.drawnPoints() <= 2 * std::max(columns, 100));
        bool gapShown = false;
        for (const QPointF& point : chart.line()->points())
            gapShown = gapShown || point.y() == 250.0;
        QVERIFY(gapShown);
        QCOMPARE(chart.cycleAxis()->max() >= 250.0, true);

        // A zoom into the first tenth draws that tenth at the same density.
        chart.timeAxis()->setRange(0.001, 1.001);
        QVERIFY(chart.drawnPoints() <= 2 * std::max(columns, 100));
        for (const QPointF& point : chart.line()->points())
            QVERIFY(point.x() >= 0.001 && point.x() <= 1.001);
        chart.resetZoom();
        QCOMPARE(chart.timeAxis()->max(), 10.00099);
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<IdentifierStatisticsDialogTest>(argc, argv);
}

#include "IdentifierStatisticsDialogTest.moc"

#include "support/ClassicTraces.h"
#include "ui/OperationWaits.h"
#include "ui/RecordingBoxes.h"

#include "ClassicTraceGenerator.h"
#include "classic/CAnaView.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/CFindDlg.h"
#include "classic/ClassicDocument.h"
#include "classic/ClassicListModel.h"
#include "common/RowTypes.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <memory>

using namespace zdtui;

namespace {

template <typename Control> Control* Find(QWidget& dialog, int id) {
    auto* control = dialog.findChild<Control*>(QString::number(id));
    if (control == nullptr)
        qFatal("control %d missing", id);
    return control;
}

QLineEdit* Edit(QWidget& dialog, int id) {
    return Find<QLineEdit>(dialog, id);
}
QCheckBox* Check(QWidget& dialog, int id) {
    return Find<QCheckBox>(dialog, id);
}

// Everything enabled that a CAN trace of schema 601 with classes 0, 4 and 8 enables.
FindDialogEnabling AllEvents() {
    return FindEnabling(601, true, true, true);
}

} // namespace

class FindDialogTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void controlsCarryTheirIdsLabelsAndLimits();
    void enablingFollowsTheTraceAndTheChecks();
    void hexEditsRefuseTheLastCharacterTyped();
    void okKeepsTheDialogOpenForBoundsTheWrongWayRound();
    void badDataTextClosesWithNothingFound();
    void valuesOfTheLastOkComeBackAndCancelledEditsDoNot();
    void markAllThroughTheDialogBookmarksEveryHit();
};

void FindDialogTest::controlsCarryTheirIdsLabelsAndLimits() {
    CFindDlg dialog;
    QCOMPARE(Check(dialog, CFindDlg::IdTimeCheck)->text(), QStringLiteral("&Time"));
    QCOMPARE(Check(dialog, CFindDlg::IdDataCheck)->text(), QStringLiteral("&Data"));
    QCOMPARE(Check(dialog, CFindDlg::IdIdentifierCheck)->text(), QStringLiteral("&Identifier"));
    QCOMPARE(Edit(dialog, CFindDlg::IdMinTime)->maxLength(), 10);
    QCOMPARE(Edit(dialog, CFindDlg::IdMaxTime)->maxLength(), 10);
    QCOMPARE(Edit(dialog, CFindDlg::IdData)->maxLength(), 23);
    QCOMPARE(Edit(dialog, CFindDlg::IdIdentifier)->maxLength(), 8);
    const QList<QPair<int, QString>> events{
        {CFindDlg::IdErrorPassive, "Error Passive "},
        {CFindDlg::IdWarning96, "Warning 96"},
        {CFindDlg::IdErrorActive, "Error Active "},
        {CFindDlg::IdReceivedCorruptedBytes, "Received corrupted Bytes"},
        {CFindDlg::IdBusOff, "Bus Off "},
        {CFindDlg::IdBufferOverflow, "Buffer Overflow"},
        {CFindDlg::IdErrorFrame, "Error Frame "},
        {CFindDlg::IdTimerOverflow, "Timer Overflow "},
    };
    for (const auto& [id, label] : events)
        QCOMPARE(Check(dialog, id)->text(), label);

    dialog.prepare(AllEvents(), QStringLiteral("s  < x <"), QStringLiteral("s"));
    QCOMPARE(Find<QLabel>(dialog, CFindDlg::IdBoundsLabel)->text(), QStringLiteral("s  < x <"));
    QCOMPARE(Find<QLabel>(dialog, CFindDlg::IdUnitLabel)->text(), QStringLiteral("s"));
}

void FindDialogTest::enablingFollowsTheTraceAndTheChecks() {
    CFindDlg dialog;
    // Class 0 only: the bus events and the K-line ones, not the timer ones.
    dialog.prepare(FindEnabling(601, true, false, false), "ms < x <", "ms");
    QVERIFY(Check(dialog, CFindDlg::IdWarning96)->isEnabled());
    QVERIFY(Check(dialog, CFindDlg::IdBusOff)->isEnabled());
    QVERIFY(!Check(dialog, CFindDlg::IdTimerOverflow)->isEnabled());
    QVERIFY(Edit(dialog, CFindDlg::IdMinTime)->isEnabled());
    QVERIFY(!Edit(dialog, CFindDlg::IdData)->isEnabled());
    Check(dialog, CFindDlg::IdDataCheck)->setChecked(true);
    QVERIFY(Edit(dialog, CFindDlg::IdData)->isEnabled());
    QVERIFY(!Edit(dialog, CFindDlg::IdIdentifier)->isEnabled());
    Check(dialog, CFindDlg::IdIdentifierCheck)->click();
    QVERIFY(Edit(dialog, CFindDlg::IdIdentifier)->isEnabled());

    // A 701 trace has no time bounds and no bus states; a check left on there is cleared.
    Check(dialog, CFindDlg::IdTimeCheck)->setChecked(true);
    Check(dialog, CFindDlg::IdBusOff)->setChecked(true);
    dialog.accept();
    dialog.prepare(FindEnabling(701, true, true, true), "ms < x <", "ms");
    QVERIFY(!Check(dialog, CFindDlg::IdTimeCheck)->isEnabled());
    QVERIFY(!Check(dialog, CFindDlg::IdTimeCheck)->isChecked());
    QVERIFY(!Edit(dialog, CFindDlg::IdMaxTime)->isEnabled());
    QVERIFY(!Check(dialog, CFindDlg::IdBusOff)->isChecked());
    QVERIFY(Check(dialog, CFindDlg::IdTimerOverflow)->isEnabled());
}

void FindDialogTest::hexEditsRefuseTheLastCharacterTyped() {
    RecordingBoxes boxes;
    CFindDlg dialog;
    dialog.prepare(AllEvents(), "ms < x <", "ms");
    Check(dialog, CFindDlg::IdDataCheck)->setChecked(true);
    Check(dialog, CFindDlg::IdIdentifierCheck)->setChecked(true);
    QLineEdit* data = Edit(dialog, CFindDlg::IdData);
    QLineEdit* identifier = Edit(dialog, CFindDlg::IdIdentifier);

    QTest::keyClicks(data, QStringLiteral("0a,1g"));
    QCOMPARE(data->text(), QStringLiteral("0a,1"));
    QCOMPARE(data->cursorPosition(), 4);
    QCOMPARE(boxes.boxes.size(), 1);
    QCOMPARE(boxes.boxes[0].text, QStringLiteral("\"g\"  is not a valid hexadecimal character!"));
    QCOMPARE(boxes.boxes[0].title, QString()); // the application's title
    QVERIFY(!boxes.boxes[0].question);

    QTest::keyClicks(identifier, QStringLiteral("7e,8"));
    QCOMPARE(identifier->text(), QStringLiteral("7e8"));
    QCOMPARE(boxes.boxes.size(), 2);
    QCOMPARE(boxes.boxes[1].text, QStringLiteral("\",\"  is not a valid hexadecimal character!"));
}

void FindDialogTest::okKeepsTheDialogOpenForBoundsTheWrongWayRound() {
    RecordingBoxes boxes;
    CFindDlg dialog;
    dialog.prepare(AllEvents(), "ms < x <", "ms");
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    Check(dialog, CFindDlg::IdTimeCheck)->setChecked(true);
    Edit(dialog, CFindDlg::IdMinTime)->setText("5");
    Edit(dialog, CFindDlg::IdMaxTime)->setText("2.5");
    dialog.findChild<QPushButton*>("1")->click();
    QCOMPARE(boxes.boxes.size(), 1);
    QCOMPARE(boxes.boxes[0].text, QStringLiteral("Maximum time must be greater than minimum time!"));
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(Edit(dialog, CFindDlg::IdMaxTime)->selectedText(), QStringLiteral("2.5"));

    // The compare does not look at the time check; equal bounds pass.
    Check(dialog, CFindDlg::IdTimeCheck)->setChecked(false);
    dialog.accept();
    QCOMPARE(boxes.boxes.size(), 2);
    QVERIFY(dialog.isVisible());
    Edit(dialog, CFindDlg::IdMaxTime)->setText("5");
    Check(dialog, CFindDlg::IdTimeCheck)->setChecked(true);
    dialog.accept();
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(dialog.hasCriteria());
    QCOMPARE(dialog.criteria().maxTime, std::string("5"));
}

void FindDialogTest::badDataTextClosesWithNothingFound() {
    RecordingBoxes boxes;
    CFindDlg dialog;
    dialog.prepare(AllEvents(), "ms < x <", "ms");
    Check(dialog, CFindDlg::IdDataCheck)->setChecked(true);
    Edit(dialog, CFindDlg::IdData)->setText("1,2");
    Check(dialog, CFindDlg::IdBusOff)->setChecked(true); // would be a criterion on its own
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(boxes.boxes.size(), 1);
    QCOMPARE(boxes.boxes[0].text, QStringLiteral("Nothing Found!"));
    QVERIFY(!dialog.hasCriteria());

    // A time check with an empty bound is passed over; an event check decides.
    Edit(dialog, CFindDlg::IdData)->setText("01,02");
    Check(dialog, CFindDlg::IdTimeCheck)->setChecked(true);
    Edit(dialog, CFindDlg::IdMinTime)->clear();
    Edit(dialog, CFindDlg::IdMaxTime)->setText("2");
    Check(dialog, CFindDlg::IdDataCheck)->setChecked(false);
    Check(dialog, CFindDlg::IdBusOff)->setChecked(false);
    dialog.accept();
    QCOMPARE(dialog.criteria().maxTime, std::string("2"));
    QVERIFY(!dialog.hasCriteria());
    Check(dialog, CFindDlg::IdErrorFrame)->setChecked(true);
    dialog.accept();
    QVERIFY(dialog.hasCriteria());
    QCOMPARE(boxes.boxes.size(), 1);
}

void FindDialogTest::valuesOfTheLastOkComeBackAndCancelledEditsDoNot() {
    CFindDlg dialog;
    dialog.prepare(AllEvents(), "ms < x <", "ms");
    Check(dialog, CFindDlg::IdIdentifierCheck)->setChecked(true);
    Edit(dialog, CFindDlg::IdIdentifier)->setText("7E8");
    Check(dialog, CFindDlg::IdBufferOverflow)->setChecked(true);
    dialog.accept();

    dialog.prepare(AllEvents(), "ms < x <", "ms");
    Edit(dialog, CFindDlg::IdIdentifier)->setText("7DF");
    Check(dialog, CFindDlg::IdBufferOverflow)->setChecked(false);
    dialog.reject();

    dialog.prepare(AllEvents(), "ms < x <", "ms");
    QVERIFY(Check(dialog, CFindDlg::IdIdentifierCheck)->isChecked());
    QCOMPARE(Edit(dialog, CFindDlg::IdIdentifier)->text(), QStringLiteral("7E8"));
    QVERIFY(Check(dialog, CFindDlg::IdBufferOverflow)->isChecked());
    QCOMPARE(dialog.criteria().identifierText, std::string("7E8"));
}

void FindDialogTest::markAllThroughTheDialogBookmarksEveryHit() {
    TempDir dir;
    RecordingBoxes boxes;
    zdtgen::ClassicTraceOptions options;
    options.title = std::string("CAN Onboard");
    options.mix = zdtgen::RecordMix::Traffic;
    options.records = 80;
    const std::string path = dir.Write("t.trc", zdtgen::MakeClassicTrace(options));
    ClassicDocument document;
    std::unique_ptr<CAnaView> view(static_cast<CAnaView*>(document.createView(nullptr, nullptr)));
    QVERIFY(operation_waits::OpenAndWait(document, QString::fromStdString(path)).opened);

    bool answered = false;
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<CFindDlg*>(QApplication::activeModalWidget());
        QVERIFY(dialog != nullptr);
        Check(*dialog, CFindDlg::IdIdentifierCheck)->setChecked(true);
        Edit(*dialog, CFindDlg::IdIdentifier)->setText("7E8");
        dialog->findChild<QPushButton*>("markAll")->click();
        answered = true;
    });
    view->commandAction(ViewCommand::Find)->trigger();
    QVERIFY(answered);
    QVERIFY(operation_waits::WaitUntilIdle(document));
    QVERIFY(boxes.boxes.isEmpty());

    const std::vector<zdt::RowIndex> hits = document.analyzerDoc()->FindResults();
    QVERIFY(hits.size() >= 2);
    QCOMPARE(document.analyzerDoc()->Bookmarks(), hits);
    QCOMPARE(view->selectedRow(), static_cast<long long>(hits.front()));
    for (zdt::RowIndex row : hits)
        QVERIFY(view->model()->cellText(static_cast<int>(row), ClassicListModel::MarkColumn).startsWith('B'));

    // The next search through OK alone leaves the bookmarks alone.
    QTimer::singleShot(0, this, [&] {
        auto* dialog = qobject_cast<CFindDlg*>(QApplication::activeModalWidget());
        QVERIFY(dialog != nullptr);
        QCOMPARE(Edit(*dialog, CFindDlg::IdIdentifier)->text(), QStringLiteral("7E8"));
        Edit(*dialog, CFindDlg::IdIdentifier)->setText("7DF");
        dialog->findChild<QPushButton*>("1")->click();
    });
    const std::vector<zdt::RowIndex> marked = document.analyzerDoc()->Bookmarks();
    view->onFind();
    QVERIFY(operation_waits::WaitUntilIdle(document));
    QCOMPARE(document.analyzerDoc()->Bookmarks(), marked);
    QVERIFY(!document.analyzerDoc()->FindResults().empty());
    QVERIFY(document.analyzerDoc()->FindResults() != hits);
}

QTEST_MAIN(FindDialogTest)
#include "FindDialogTest.moc"

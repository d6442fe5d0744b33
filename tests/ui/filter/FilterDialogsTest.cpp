// The filter dialogs as a user meets them: their labels and columns, which controls may be
// used when, the boxes of wrong input, and the quirks that decide what a filter file holds.
#include "filter/FilterCondition702.h"
#include "filter/PvfltFile.h"
#include "filter/snp/SnpFilterDlg.h"
#include "filter/xpvt_7_01/CXpvtFilterDialog.h"
#include "filter/xpvt_7_01/CXpvtFilterListDialog.h"
#include "filter/xpvt_7_02/CXpvtFilterDialog.h"
#include "filter/xpvt_7_02/CXpvtFilterListDialog.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"

#include <QCheckBox>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QtTest>

using dialog_driver::ChildWithText;
using dialog_driver::WhenModal;
namespace Logic701 = ZDTAnalyzer::Filter::XPVT_7_01;
namespace Logic702 = ZDTAnalyzer::Filter::XPVT_7_02;
using Button = zdtui::FilterListDialog::Button;

namespace {

template <class W> W* Child(const QWidget* dialog, const char* name) {
    W* widget = dialog->findChild<W*>(QString::fromUtf8(name));
    if (widget == nullptr)
        qFatal("no control %s", name);
    return widget;
}

QRadioButton* Radio(const QWidget* dialog, const char* name) {
    return Child<QRadioButton>(dialog, name);
}

QCheckBox* Check(const QWidget* dialog, const char* name) {
    return Child<QCheckBox>(dialog, name);
}

QLineEdit* Edit(const QWidget* dialog, const char* name) {
    return Child<QLineEdit>(dialog, name);
}

void Click(const QWidget* dialog, const char* name) {
    Child<QAbstractButton>(dialog, name)->click();
}

QStringList RowCells(const QTreeWidget* list, int row) {
    QStringList cells;
    for (int column = 0; column < list->columnCount(); ++column)
        cells << list->topLevelItem(row)->text(column);
    return cells;
}

QStringList ListNames(const QListWidget* list) {
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names << list->item(i)->text();
    return names;
}

QStringList LabelTexts(const QWidget* dialog) {
    QStringList texts;
    for (const QAbstractButton* button : dialog->findChildren<QAbstractButton*>())
        texts << button->text();
    for (const QLabel* label : dialog->findChildren<QLabel*>())
        texts << label->text();
    return texts;
}

} // namespace

class FilterDialogsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_dir = std::make_unique<QTemporaryDir>();
        m_filters = m_dir->filePath("filters") + "/";
        zdtui::FilterListDialog::setFileChooser({});
    }
    void cleanup() {
        zdtui::FilterListDialog::setFileChooser({});
        m_dir.reset();
    }

    // A new 7.01 filter: the event radios switch their controls, "&Add" lists the
    // condition as the columns name it, and wrong combinations only raise their box.
    void filter701AddsConditionsFromTheControls() {
        RecordingBoxes boxes;
        zdtui::XPVT_7_01::CXpvtFilterDialog dialog(zdtui::XPVT_7_01::CXpvtFilterDialog::Mode::New, {}, QString(),
                                                   m_filters);
        QCOMPARE(dialog.windowTitle(), QString("Xpvt New Filter"));
        for (const char* text : {"Trace or Primitive events",
                                 "&Result events",
                                 "Start / Stop &Trace",
                                 "Open/Close &LogicalLink by Name:",
                                 "Open/Close &ComPrimitive",
                                 "by Na&me",
                                 "by &ID",
                                 "Req&uest",
                                 "Resp&onse",
                                 "Include / E&xclude complete result structure",
                                 "PDU &by byte pattern (HEX):",
                                 "&Parameter",
                                 "&Error",
                                 "by &Name:",
                                 "by &Type:",
                                 "by &Value:",
                                 "by &Code:",
                                 "by &Severity:",
                                 "&Include XML -PVTrace Items",
                                 "&Exclude XML -PVTrace Items",
                                 "&Add",
                                 "&Delete",
                                 "De&lete All",
                                 "&OK"})
            QVERIFY2(LabelTexts(&dialog).contains(QString::fromUtf8(text)), text);
        QTreeWidget* list = dialog.conditionList();
        QCOMPARE(list->headerItem()->text(1), QString("Complete"));
        QCOMPARE(list->header()->sectionSize(1), 100);
        QCOMPARE(list->header()->sectionSize(6), 80);
        QVERIFY(Radio(&dialog, "include")->isChecked());

        // Nothing chosen: nothing under the events can be used, and "&Add" refuses.
        QVERIFY(!Radio(&dialog, "startStopTrace")->isEnabled());
        QVERIFY(!Check(&dialog, "request")->isEnabled());
        Click(&dialog, "add");
        QCOMPARE(boxes.Texts(), QStringList{"Invalid filter condition."});
        QCOMPARE(boxes.boxes[0].title, QString("E012_001 [Filter condition.]"));

        Click(&dialog, "traceEvents");
        QVERIFY(Radio(&dialog, "comPrimitive")->isEnabled());
        QVERIFY(!Edit(&dialog, "pduPattern")->isEnabled());
        Click(&dialog, "comPrimitive");
        Click(&dialog, "comPrimitiveById");
        Edit(&dialog, "comPrimitiveId")->setText("0x22");
        Click(&dialog, "add");
        QCOMPARE(RowCells(list, 0), QStringList({"Trace or Primitive", "", "", "", "ComPrimitive", "ID", "0x22"}));

        // Switching the event clears the radios under both and enables only its own.
        Click(&dialog, "resultEvents");
        QVERIFY(!Radio(&dialog, "comPrimitive")->isChecked());
        QVERIFY(!Radio(&dialog, "comPrimitive")->isEnabled());
        Click(&dialog, "parameter");
        Click(&dialog, "parameterByValue");
        Edit(&dialog, "parameterValue")->setText("42");
        Click(&dialog, "add"); // no side ticked
        QCOMPARE(boxes.boxes.size(), 2);
        QCOMPARE(list->topLevelItemCount(), 1);
        Click(&dialog, "request");
        Click(&dialog, "response");
        Click(&dialog, "complete");
        Click(&dialog, "add");
        QCOMPARE(RowCells(list, 1), QStringList({"Result", "yes", "yes", "yes", "Parameter", "Value", "42"}));
        QCOMPARE(dialog.conditions().at("BothParameterValue"), std::string("1"));
        QCOMPARE(dialog.conditions().at("ParameterValueBoth"), std::string("42"));
        QCOMPARE(dialog.conditions().at("IncludeCompleteResultParameterValueBoth"), std::string("1"));
        QCOMPARE(boxes.boxes.size(), 2);
    }

    // Rows leave the list only: a deleted condition is still saved. The name rules and
    // their boxes come before anything is written.
    void filter701DeletedRowsAreStillSaved() {
        RecordingBoxes boxes;
        zdtui::XPVT_7_01::CXpvtFilterDialog dialog(zdtui::XPVT_7_01::CXpvtFilterDialog::Mode::New, {}, QString(),
                                                   m_filters);
        Click(&dialog, "deleteAll");
        Click(&dialog, "delete");
        QCOMPARE(boxes.Texts(), QStringList({"Empty filter condition list.", "No filter condition selected."}));
        QCOMPARE(boxes.boxes[0].title, QString("E012_003 [Filter condition.]"));
        QCOMPARE(boxes.boxes[1].title, QString("E012_002 [Filter condition.]"));

        Click(&dialog, "traceEvents");
        Click(&dialog, "startStopTrace");
        Click(&dialog, "add");
        dialog.conditionList()->topLevelItem(0)->setSelected(true);
        Click(&dialog, "delete");
        QCOMPARE(dialog.conditionList()->topLevelItemCount(), 0);

        Click(&dialog, "ok");
        QCOMPARE(boxes.boxes.last().title, QString("E012_004 [Filter file name.]"));
        QCOMPARE(boxes.boxes.last().text, QString("Invalid filter file name."));
        Click(&dialog, "exclude");
        Edit(&dialog, "fileName")->setText("trace only");
        Click(&dialog, "ok");
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.savedPath(), m_filters + "trace only.pvflt");

        Logic701::FilterConditionMap saved;
        QVERIFY(Logic701::readFilterFileForRun(dialog.savedPath().toStdString(), saved));
        QCOMPARE(saved.at("AfterStartStopTrace"), std::string("1"));
        QCOMPARE(saved.at("ExcludeItems"), std::string("1"));
        QCOMPARE(saved.size(), std::size_t(62));

        // A second new filter of that name is refused; the file stays as it was.
        zdtui::XPVT_7_01::CXpvtFilterDialog again(zdtui::XPVT_7_01::CXpvtFilterDialog::Mode::New, {}, QString(),
                                                  m_filters);
        Edit(&again, "fileName")->setText("trace only.pvflt");
        Click(&again, "ok");
        QCOMPARE(boxes.boxes.last().title, QString("E012_005 [Filter.]"));
        QCOMPARE(boxes.boxes.last().text, "Filter " + m_filters + "trace only.pvflt exist !");
        QVERIFY(again.result() != QDialog::Accepted);
    }

    // The list starts empty; "&New..." and "&Add..." fill it, "&Ok" applies the first file
    // still counted whatever line is selected, and "&Edit..." saves the end-of-file pair.
    void list701ManagesFilterFiles() {
        RecordingBoxes boxes;
        boxes.answerYes = true;
        const QString outside = m_dir->filePath("outside.pvflt");
        QVERIFY(Logic701::writeFilterFile(outside.toStdString(), Logic701::defaultFilterConditionMap()));
        zdtui::FilterListDialog::setFileChooser([outside](QWidget*, const zdtui::FilterFileChoice& choice) {
            return choice.title == "Add Xpvt Filter File" && choice.nameFilter == "Xpvt Filter Files (*.pvflt)"
                       ? outside
                       : QString();
        });
        Logic701::FilterFileList files;
        zdtui::XPVT_7_01::CXpvtFilterListDialog dialog(files, m_filters);
        QCOMPARE(dialog.windowTitle(), QString("XPVT Filter"));
        QVERIFY(LabelTexts(&dialog).contains("Available filter files:"));
        QVERIFY(LabelTexts(&dialog).contains("XPVT filter directory for selected trace file:"));
        QCOMPARE(dialog.directoryEdit()->text(), m_filters);
        QCOMPARE(dialog.fileList()->count(), 0);
        QVERIFY(!dialog.button(Button::Remove)->isEnabled());
        QVERIFY(!dialog.button(Button::Edit)->isEnabled());

        WhenModal<zdtui::XPVT_7_01::CXpvtFilterDialog>([](zdtui::XPVT_7_01::CXpvtFilterDialog* filter) {
            Edit(filter, "fileName")->setText("first");
            Click(filter, "ok");
        });
        dialog.button(Button::New)->click();
        dialog.button(Button::Add)->click();
        QCOMPARE(ListNames(dialog.fileList()), QStringList({"first.pvflt", "outside.pvflt"}));
        QVERIFY(QFile::exists(m_filters + "outside.pvflt"));
        QCOMPARE(dialog.fileList()->currentRow(), 1);
        QVERIFY(dialog.button(Button::Edit)->isEnabled());

        // A second copy over the file asks first; once overwritten the name is not listed again.
        dialog.button(Button::Add)->click();
        QCOMPARE(boxes.boxes.last().title, QString("E013_001 [Filter.]"));
        QCOMPARE(boxes.boxes.last().text, QString("\"File already exists ! Overwrite ?\""));
        QCOMPARE(dialog.fileList()->count(), 2);

        dialog.button(Button::Ok)->click();
        QCOMPARE(dialog.chosenFilter(), std::optional<std::string>("first.pvflt"));

        // Removing the first makes the next one the filter to apply.
        dialog.fileList()->setCurrentRow(0);
        dialog.button(Button::Remove)->click();
        QCOMPARE(boxes.boxes.last().text, QString("\"Do you really want to remove : first.pvflt ?\""));
        QVERIFY(!QFile::exists(m_filters + "first.pvflt"));
        QCOMPARE(ListNames(dialog.fileList()), QStringList{"outside.pvflt"});
        QCOMPARE(dialog.fileList()->currentRow(), 0);
        dialog.button(Button::Ok)->click();
        QCOMPARE(dialog.chosenFilter(), std::optional<std::string>("outside.pvflt"));

        QString editTitle;
        WhenModal<zdtui::XPVT_7_01::CXpvtFilterDialog>([&](zdtui::XPVT_7_01::CXpvtFilterDialog* filter) {
            editTitle = filter->windowTitle();
            Click(filter, "ok");
        });
        dialog.button(Button::Edit)->click();
        QCOMPARE(editTitle, QString("Xpvt Edit Filter"));
        Logic701::FilterConditionMap saved;
        QVERIFY(Logic701::readFilterFileForRun((m_filters + "outside.pvflt").toStdString(), saved));
        QCOMPARE(saved.count("\xFF"), std::size_t(1));
    }

    // A saved filter opens for editing with its conditions listed in the dialog's order
    // and the mode it was saved with.
    void edit701ShowsTheSavedConditions() {
        Logic701::FilterConditionMap conditions = Logic701::defaultFilterConditionMap();
        conditions["ExcludeItems"] = "1";
        conditions["ResponseErrorSeverity"] = "1";
        conditions["ErrorSeverityResponse"] = "eERROR";
        conditions["AfterComPrimitiveLogicalLinkName"] = "1";
        conditions["LogicalLinkName"] = "LL_A";
        zdtui::XPVT_7_01::CXpvtFilterDialog dialog(zdtui::XPVT_7_01::CXpvtFilterDialog::Mode::Edit, conditions,
                                                   "kept.pvflt", m_filters);
        QCOMPARE(Edit(&dialog, "fileName")->text(), QString("kept.pvflt"));
        QVERIFY(Radio(&dialog, "exclude")->isChecked());
        QCOMPARE(dialog.conditionList()->topLevelItemCount(), 2);
        QCOMPARE(RowCells(dialog.conditionList(), 0),
                 QStringList({"Trace or Primitive", "", "", "", "LogicalLink", "Name", "LL_A"}));
        QCOMPARE(RowCells(dialog.conditionList(), 1),
                 QStringList({"Result", "no", "no", "yes", "Error", "Severity", "eERROR"}));
    }

    // 7.02: the group checks open their rows, a row's check its "Not" and text, and a
    // parameter row needs its parameter check as well.
    void filter702EnablesRowsByTheirGroups() {
        Logic702::FilterCondition702 record;
        record.responseParameterValue = {true, true, "7"};
        zdtui::XPVT_7_02::CXpvtFilterDialog dialog(zdtui::XPVT_7_02::CXpvtFilterDialog::Mode::New, record, QString(),
                                                   m_filters);
        QCOMPARE(dialog.windowTitle(), QString("XPVT New Filter"));
        for (const char* text : {"Open|Close Logical Links", "Start|Finish Diagcom Primitives", "Responses",
                                 "Parent Diagcom Primitive", "Request Parameter Value", "Filter file:", "Not"})
            QVERIFY2(LabelTexts(&dialog).contains(QString::fromUtf8(text)), text);
        for (const char* group : {"includeOpenCloseLogicalLinks", "includeStartFinishPrimitives", "includeResults"})
            QVERIFY(Check(&dialog, group)->isEnabled());
        QVERIFY(!Check(&dialog, "logicalLink")->isEnabled());
        QVERIFY(!Check(&dialog, "requestParameterFilter")->isEnabled());
        QVERIFY(!Edit(&dialog, "responseParameterValueEdit")->isEnabled());
        QCOMPARE(Edit(&dialog, "responseParameterValueEdit")->text(), QString("7"));

        Check(&dialog, "includeResults")->click();
        QVERIFY(Check(&dialog, "primitiveShortName")->isEnabled());
        QVERIFY(!Edit(&dialog, "primitiveShortNameEdit")->isEnabled());
        QVERIFY(Check(&dialog, "responseParameterFilter")->isEnabled());
        QVERIFY(!Check(&dialog, "responseParameterValue")->isEnabled());
        Check(&dialog, "responseParameterFilter")->click();
        QVERIFY(Check(&dialog, "responseParameterValueNot")->isEnabled());
        QVERIFY(Edit(&dialog, "responseParameterValueEdit")->isEnabled());
        QVERIFY(!Check(&dialog, "requestParameterShortName")->isEnabled());
        Check(&dialog, "primitiveShortName")->click();
        QVERIFY(Edit(&dialog, "primitiveShortNameEdit")->isEnabled());
        QVERIFY(!Edit(&dialog, "logicalLinkEdit")->isEnabled());

        Logic702::FilterCondition702 expected = record;
        expected.includeResults = true;
        expected.responseParameterFilter = true;
        expected.primitiveShortName.enabled = true;
        QVERIFY(dialog.record() == expected);
        QVERIFY(Edit(&dialog, "fileName")->isEnabled());
        zdtui::XPVT_7_02::CXpvtFilterDialog edit(zdtui::XPVT_7_02::CXpvtFilterDialog::Mode::Edit, record, "e.pvflt2",
                                                 m_filters);
        QCOMPARE(edit.windowTitle(), QString("XPVT New Filter"));
        QVERIFY(!Edit(&edit, "fileName")->isEnabled());
    }

    // The 7.02 list: "&Remove" and "&Edit..." follow the selection, a typed extension is
    // doubled, and "&Ok" reads the selected file, or refuses a file that is no filter.
    void list702AppliesTheSelectedFile() {
        RecordingBoxes boxes;
        Logic702::FilterCondition702 record;
        zdtui::XPVT_7_02::CXpvtFilterListDialog dialog(record, m_filters);
        QVERIFY(!dialog.button(Button::Edit)->isEnabled());
        WhenModal<zdtui::XPVT_7_02::CXpvtFilterDialog>([](zdtui::XPVT_7_02::CXpvtFilterDialog* filter) {
            Check(filter, "includeResults")->click();
            Check(filter, "requestShortName")->click();
            Edit(filter, "requestShortNameEdit")->setText("Read");
            Edit(filter, "fileName")->setText("mine.pvflt2");
            ChildWithText(filter, "OK")->click();
        });
        dialog.button(Button::New)->click();
        QCOMPARE(ListNames(dialog.fileList()), QStringList{"mine.pvflt2.pvflt2"});
        QVERIFY(QFile::exists(m_filters + "mine.pvflt2.pvflt2"));
        QVERIFY(dialog.button(Button::Remove)->isEnabled());

        // A new filter of an existing name is refused and the dialog stays.
        bool refused = false;
        WhenModal<zdtui::XPVT_7_02::CXpvtFilterDialog>([&](zdtui::XPVT_7_02::CXpvtFilterDialog* filter) {
            Edit(filter, "fileName")->setText("mine.pvflt2.pvflt2");
            ChildWithText(filter, "OK")->click();
            refused = filter->isVisible() && boxes.boxes.size() == 1 && boxes.boxes[0].title == "E012_005 [Filter.]";
            filter->reject();
        });
        dialog.button(Button::New)->click();
        QVERIFY(refused);

        dialog.button(Button::Ok)->click();
        QVERIFY(dialog.filterChosen());
        QVERIFY(record.includeResults && record.requestShortName.enabled);
        QCOMPARE(record.requestShortName.text, std::string("Read"));

        QFile broken(m_filters + "broken.pvflt2");
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("true\nfalse\n12 short");
        broken.close();
        Logic702::FilterCondition702 other;
        zdtui::XPVT_7_02::CXpvtFilterListDialog second(other, m_filters);
        zdtui::FilterListDialog::setFileChooser(
            [this](QWidget*, const zdtui::FilterFileChoice&) { return m_filters + "broken.pvflt2"; });
        second.button(Button::Add)->click();
        second.fileList()->clearSelection();
        QVERIFY(!second.button(Button::Edit)->isEnabled());
        second.fileList()->setCurrentRow(0);
        second.button(Button::Ok)->click();
        QVERIFY(!second.filterChosen());
        QCOMPARE(boxes.boxes.last().title, QString("E009_003 [Filter.]"));
        QVERIFY(boxes.boxes.last().text.startsWith("Filter error : Could not load filter conditions from file: "));
    }

    // "Snp Filter": every service ticked at first, "&Toggle" inverts, "&Apply" takes the
    // ticked names in list order.
    void snapshotDialogTicksAndToggles() {
        zdtui::SNP::SnpFilterDlg dialog({"Read", "Clear", "Write"});
        QCOMPARE(dialog.windowTitle(), QString("Snp Filter"));
        for (const char* text : {"Services:", "&Apply", "&Close", "&Toggle"})
            QVERIFY2(LabelTexts(&dialog).contains(QString::fromUtf8(text)), text);
        QListWidget* list = dialog.serviceList();
        QCOMPARE(ListNames(list), QStringList({"Clear", "Read", "Write"}));
        for (int i = 0; i < list->count(); ++i)
            QCOMPARE(list->item(i)->checkState(), Qt::Checked);
        ChildWithText(&dialog, "&Toggle")->click();
        for (int i = 0; i < list->count(); ++i)
            QCOMPARE(list->item(i)->checkState(), Qt::Unchecked);
        list->item(2)->setCheckState(Qt::Checked);
        list->item(0)->setCheckState(Qt::Checked);
        ChildWithText(&dialog, "&Apply")->click();
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.chosenNames(), std::vector<std::string>({"Clear", "Write"}));

        zdtui::SNP::SnpFilterDlg closed({"Read"});
        ChildWithText(&closed, "&Close")->click();
        QCOMPARE(closed.result(), int(QDialog::Rejected));
        QVERIFY(closed.chosenNames().empty());
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString m_filters;
};

QTEST_MAIN(FilterDialogsTest)
#include "FilterDialogsTest.moc"

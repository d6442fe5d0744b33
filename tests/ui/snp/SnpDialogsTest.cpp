#include "snp/dialogs/SnpFindDialog.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"
#include "xmldoc/dialogs/BookmarkDialogs.h"
#include "xmldoc/dialogs/BookmarkInfoDlg.h"
#include "xmldoc/dialogs/BookmarkListDlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QtTest>

using dialog_driver::ChildWithText;
using dialog_driver::WhenModal;
using ZDTAnalyzer::BaseDoc;
using ZDTAnalyzer::SnpFindCriteria;
using ZDTAnalyzer::Find::SNP::FindField;
using zdtui::BookmarkInfoDlg;
using zdtui::BookmarkListDlg;
using zdtui::SnpFindDialog;

namespace {

QCheckBox* Box(QWidget* dialog, FindField field) {
    return dialog->findChild<QCheckBox*>(SnpFindDialog::checkBoxName(field));
}

QLineEdit* Edit(QWidget* dialog, FindField field) {
    return dialog->findChild<QLineEdit*>(SnpFindDialog::editName(field));
}

QStringList ListNames(QListWidget* list) {
    QStringList names;
    for (int i = 0; i < list->count(); ++i)
        names << list->item(i)->text();
    return names;
}

} // namespace

class SnpDialogsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The link row searches the text of the "Created" edit, which is disabled but keeps
    // its text once the link is chosen; the link's own edit has no effect.
    void findTakesTheLinkNameFromTheCreatedEdit() {
        SnpFindCriteria criteria;
        QString title;
        bool startedOnSnapshot = false;
        bool createdEditFollowsItsBox = false;
        bool snapshotGroupDisabledAfterSwitch = false;
        bool tickKept = false;
        WhenModal<SnpFindDialog>([&](SnpFindDialog* dialog) {
            title = dialog->windowTitle();
            startedOnSnapshot =
                ChildWithText(dialog, "Snapshot")->isChecked() && Box(dialog, FindField::Created)->isEnabled() &&
                !Box(dialog, FindField::LinkName)->isEnabled() && !Edit(dialog, FindField::Created)->isEnabled();
            Box(dialog, FindField::Created)->click();
            createdEditFollowsItsBox = Edit(dialog, FindField::Created)->isEnabled();
            Edit(dialog, FindField::Created)->setText("Engine");
            ChildWithText(dialog, "LogicalLink")->click();
            snapshotGroupDisabledAfterSwitch =
                !Box(dialog, FindField::Created)->isEnabled() && !Edit(dialog, FindField::Created)->isEnabled();
            tickKept = Box(dialog, FindField::Created)->isChecked();
            Box(dialog, FindField::LinkName)->click();
            Edit(dialog, FindField::LinkName)->setText("typed for the link");
            ChildWithText(dialog, "Find")->click();
        });
        QVERIFY(zdtui::RunSnpFindDialog(nullptr, criteria));
        QCOMPARE(title, QString("Snp Find"));
        QVERIFY(startedOnSnapshot);
        QVERIFY(createdEditFollowsItsBox);
        QVERIFY(snapshotGroupDisabledAfterSwitch);
        QVERIFY(tickKept);
        QVERIFY(criteria.searchLogicalLink);
        QVERIFY(criteria.linkNameOn);
        QCOMPARE(criteria.linkName, std::string("Engine"));
        QVERIFY(!criteria.searchSnapShot);
        QVERIFY(!criteria.createdOn);
    }

    // "Close" leaves the criteria alone, and each run starts blank on the first radio.
    void closeSearchesNothingAndTheNextRunStartsBlank() {
        SnpFindCriteria criteria;
        WhenModal<SnpFindDialog>([&](SnpFindDialog* dialog) {
            ChildWithText(dialog, "ProcessValue")->click();
            Box(dialog, FindField::ValueUnit)->click();
            Edit(dialog, FindField::ValueUnit)->setText("km/h");
            ChildWithText(dialog, "Close")->click();
        });
        QVERIFY(!zdtui::RunSnpFindDialog(nullptr, criteria));
        QVERIFY(!criteria.searchProcessValue && !criteria.valueUnitOn && criteria.valueUnit.empty());

        bool blank = false;
        WhenModal<SnpFindDialog>([&](SnpFindDialog* dialog) {
            blank = ChildWithText(dialog, "Snapshot")->isChecked();
            for (QCheckBox* box : dialog->findChildren<QCheckBox*>())
                blank = blank && !box->isChecked();
            for (QLineEdit* edit : dialog->findChildren<QLineEdit*>())
                blank = blank && edit->text().isEmpty();
            ChildWithText(dialog, "ProcessValue")->click();
            Box(dialog, FindField::ValueText)->click();
            Edit(dialog, FindField::ValueText)->setText("42");
            ChildWithText(dialog, "Find")->click();
        });
        QVERIFY(zdtui::RunSnpFindDialog(nullptr, criteria));
        QVERIFY(blank);
        QVERIFY(criteria.searchProcessValue);
        QVERIFY(criteria.valueTextOn && !criteria.valueNameOn && !criteria.valueUnitOn);
        QCOMPARE(criteria.valueText, std::string("42"));
    }

    // Edit, switch with the save question, delete, then "&Go to": the deletion reaches
    // the document and the jump goes to the copy's entry at the list position.
    void bookmarkListDeletesAndJumps() {
        QTemporaryDir directory;
        QVERIFY(directory.isValid());
        BaseDoc doc;
        doc.container().createSwapFile(directory.path().toStdString() + "/");
        for (int i = 0; i < 120; ++i)
            doc.container().appendRow("002\x01row\x01");
        doc.addBookmark(41, "alpha", "first");
        doc.addBookmark(6, "beta", "second");
        doc.addBookmark(99, "gamma", "third");
        std::vector<int> jumps;
        doc.setUpdateListener([&] {
            if (doc.jumpRow() != -1)
                jumps.push_back(doc.jumpRow());
        });

        RecordingBoxes boxes;
        boxes.answerYes = true;
        QString title, fileName, firstLine, firstDescription, lineAfterSwitch;
        QStringList namesAtStart, namesAfterDelete;
        bool saveEnabledByEdit = false;
        bool saveDisabledAfterSwitch = false;
        WhenModal<BookmarkListDlg>([&](BookmarkListDlg* dialog) {
            auto* list = dialog->findChild<QListWidget*>("names");
            auto* description = dialog->findChild<QPlainTextEdit*>("description");
            title = dialog->windowTitle();
            fileName = dialog->findChild<QLineEdit*>("fileName")->text();
            firstLine = dialog->findChild<QLineEdit*>("line")->text();
            firstDescription = description->toPlainText();
            namesAtStart = ListNames(list);
            QAbstractButton* save = ChildWithText(dialog, "Save");
            description->setPlainText("edited");
            saveEnabledByEdit = save->isEnabled();
            list->setCurrentRow(1);
            saveDisabledAfterSwitch = !save->isEnabled();
            lineAfterSwitch = dialog->findChild<QLineEdit*>("line")->text();
            list->setCurrentRow(0);
            ChildWithText(dialog, "&Delete")->click();
            namesAfterDelete = ListNames(list);
            ChildWithText(dialog, "&Go to")->click();
        });
        zdtui::RunBookmarkList(nullptr, doc, "/traces/run.snp");

        QCOMPARE(title, QString("Bookmark"));
        QCOMPARE(fileName, QString("/traces/run.snp"));
        QCOMPARE(firstLine, QString("42"));
        QCOMPARE(firstDescription, QString("first"));
        QCOMPARE(namesAtStart, QStringList({"alpha", "beta", "gamma"}));
        QVERIFY(saveEnabledByEdit);
        QVERIFY(saveDisabledAfterSwitch);
        QCOMPARE(lineAfterSwitch, QString("7"));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("Description changed."));
        QCOMPARE(boxes.boxes[0].text, QString("Do you want to save the description?"));
        QVERIFY(boxes.boxes[0].question);
        QCOMPARE(namesAfterDelete, QStringList({"beta", "gamma"}));

        // alpha is gone; the list position 0 names alpha's entry of the copy, row 41.
        QCOMPARE(doc.bookmarks().size(), std::size_t(2));
        QCOMPARE(doc.bookmarks().front().name, std::string("beta"));
        QCOMPARE(doc.bookmarks().front().description, std::string("second"));
        QVERIFY(!doc.isBookmarked(41));
        QCOMPARE(jumps, std::vector<int>({41}));
        QCOMPARE(doc.jumpRow(), -1);

        // "Close" after deleting everything: the deletions count, nothing jumps.
        bool emptied = false;
        WhenModal<BookmarkListDlg>([&](BookmarkListDlg* dialog) {
            ChildWithText(dialog, "&Delete")->click();
            ChildWithText(dialog, "&Delete")->click();
            emptied = !ChildWithText(dialog, "&Delete")->isEnabled() && !ChildWithText(dialog, "&Go to")->isEnabled() &&
                      !dialog->findChild<QPlainTextEdit*>("description")->isEnabled() &&
                      dialog->findChild<QLineEdit*>("line")->text().isEmpty();
            ChildWithText(dialog, "Close")->click();
        });
        zdtui::RunBookmarkList(nullptr, doc, "/traces/run.snp");
        QVERIFY(emptied);
        QVERIFY(doc.bookmarks().empty());
        QCOMPARE(jumps.size(), std::size_t(1));
    }

    // OK refuses a blank name and stays open; the accepted name is trimmed; both
    // fields keep to their limits.
    void bookmarkInfoWantsANameWithinItsLimits() {
        RecordingBoxes boxes;
        std::string name;
        std::string description;
        QString title;
        bool stayedOpen = false;
        int nameLimit = 0;
        int descriptionLength = 0;
        WhenModal<BookmarkInfoDlg>([&](BookmarkInfoDlg* dialog) {
            title = dialog->windowTitle();
            auto* nameEdit = dialog->findChild<QLineEdit*>("name");
            nameLimit = nameEdit->maxLength();
            nameEdit->setText("   ");
            dialog->accept();
            stayedOpen = dialog->isVisible() && dialog->result() != QDialog::Accepted;
            auto* descriptionEdit = dialog->findChild<QPlainTextEdit*>("description");
            descriptionEdit->setPlainText(QString(600, 'd'));
            descriptionLength = descriptionEdit->toPlainText().size();
            descriptionEdit->setPlainText("why it matters");
            nameEdit->setText("  start of run \t");
            dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        });
        QVERIFY(zdtui::RunBookmarkInfo(nullptr, name, description));
        QCOMPARE(title, QString("Bookmark Informations"));
        QVERIFY(stayedOpen);
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("E002_001 [Bookmark state.]"));
        QCOMPARE(boxes.boxes[0].text, QString("Bookmark should have a name."));
        QCOMPARE(boxes.boxes[0].icon, QMessageBox::Warning);
        QCOMPARE(nameLimit, 50);
        QCOMPARE(descriptionLength, 500);
        QCOMPARE(name, std::string("start of run"));
        QCOMPARE(description, std::string("why it matters"));

        // Cancel leaves both as they were.
        WhenModal<BookmarkInfoDlg>([&](BookmarkInfoDlg* dialog) {
            dialog->findChild<QLineEdit*>("name")->setText("other");
            dialog->reject();
        });
        QVERIFY(!zdtui::RunBookmarkInfo(nullptr, name, description));
        QCOMPARE(name, std::string("start of run"));
    }
};

QTEST_MAIN(SnpDialogsTest)
#include "SnpDialogsTest.moc"

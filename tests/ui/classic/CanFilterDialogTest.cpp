#include "classic/CAnalyzerDoc.h"
#include "classic/CCanFilter.h"
#include "classic/CanFilterDialogPrompt.h"
#include "classic/FltEditorDialog.h"
#include "classic/FltFile.h"
#include "support/ClassicTraces.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"

#include <QCheckBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QtTest>

#include <filesystem>
#include <fstream>
#include <memory>

using dialog_driver::WhenModal;
using zdtui::CCanFilter;
namespace fs = std::filesystem;

namespace {

QStringList Items(const QListWidget* list) {
    QStringList items;
    for (int row = 0; row < list->count(); ++row)
        items << list->item(row)->text();
    return items;
}

struct Controls {
    QListWidget* list;
    QCheckBox* activate;
    QLabel* directory;
    QPushButton* edit;
    QPushButton* remove;
};

Controls ControlsOf(const CCanFilter& dialog) {
    return {dialog.findChild<QListWidget*>("filterList"), dialog.findChild<QCheckBox*>("activateFilter"),
            dialog.findChild<QLabel*>("filterDirectory"), dialog.findChild<QPushButton*>("editButton"),
            dialog.findChild<QPushButton*>("removeButton")};
}

CanFilterDialogState Begun(bool activate, const std::string& name) {
    CanFilterDialogState state;
    BeginCanFilterRun(state, activate, name, false);
    return state;
}

} // namespace

// An installation with its settings two levels above the program; the trace lies in
// <root>/data/Golf, the common filters in <root>/traces/CommonCANFilters.
class CanFilterDialogTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TempDir> m_root;
    QString m_programDir;
    QString m_tracePath;
    std::string m_filterDir;

    std::string Root(const std::string& relative) const { return m_root->File(relative); }
    std::string WriteFilter(const std::string& name, const std::string& text) const {
        std::ofstream(m_filterDir + name, std::ios::binary) << text;
        return m_filterDir + name;
    }

private Q_SLOTS:
    void init() {
        m_root = std::make_unique<TempDir>();
        fs::create_directories(Root("inst/bin"));
        fs::create_directories(Root("Config"));
        fs::create_directories(Root("data/Golf"));
        std::ofstream(Root("Config/zdt7.ini")) << "[ProjectPath]\nProjectPath=\"" << Root("projects") << "\"\n"
                                               << "[ECUTrace]\nTracePath=\"" << Root("traces") << "\"\n";
        m_programDir = QString::fromStdString(Root("inst/bin"));
        m_tracePath = QString::fromStdString(m_root->Write("data/Golf/run.trc", classic_traces::Can601()));
        m_filterDir = Root("traces/CommonCANFilters/");
    }
    void cleanup() { m_root.reset(); }

    void listsTheFiltersOfTheTraceFolder() {
        // The common folder is made on the first look.
        CanFilterDialogState empty = Begun(true, "b.flt");
        CCanFilter none(nullptr, empty, m_tracePath, m_programDir);
        QVERIFY(fs::is_directory(m_filterDir));
        QCOMPARE(ControlsOf(none).list->count(), 0);
        QVERIFY(!ControlsOf(none).edit->isEnabled());
        QVERIFY(!ControlsOf(none).remove->isEnabled());

        WriteFilter("b.flt", "");
        WriteFilter("a.flt", "");
        WriteFilter("notes.txt", "");
        CanFilterDialogState state = Begun(true, "b.flt");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        const Controls controls = ControlsOf(dialog);
        QCOMPARE(Items(controls.list), QStringList({"a.flt", "b.flt"}));
        QCOMPARE(controls.list->currentRow(), 1);
        QVERIFY(controls.activate->isChecked());
        QCOMPARE(controls.directory->text(), QString::fromStdString(m_filterDir));
        QVERIFY(controls.edit->isEnabled());
        QVERIFY(controls.remove->isEnabled());
    }

    void aProjectWithItsFileUsesItsOwnFilters() {
        fs::create_directories(Root("projects/Golf"));
        std::ofstream(Root("projects/Golf/Golf.prj")) << "";
        CanFilterDialogState state = Begun(false, "");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        QCOMPARE(dialog.filterDirectory(), QString::fromStdString(Root("projects/Golf/flt/")));
        QCOMPARE(ControlsOf(dialog).list->count(), 0);

        // The project's filter folder comes with its first filter.
        RecordingBoxes boxes;
        dialog.addFile(QString::fromStdString(m_root->Write("engine.flt", "[CAN]\r\n")));
        QVERIFY(boxes.boxes.isEmpty());
        QVERIFY(fs::exists(Root("projects/Golf/flt/engine.flt")));
        QCOMPARE(Items(ControlsOf(dialog).list), QStringList({"engine.flt"}));
        QVERIFY(!ControlsOf(dialog).activate->isChecked());
        QVERIFY(!fs::exists(m_filterDir));
        zdtui::CanFilterDialogPrompt prompt(nullptr, m_tracePath, m_programDir);
        QCOMPARE(prompt.FilterPath("engine.flt"), Root("projects/Golf/flt/engine.flt"));
    }

    void addCopiesAndAsksBeforeReplacing() {
        RecordingBoxes boxes;
        fs::create_directories(Root("import"));
        const std::string source = m_root->Write("import/new.flt", "[CAN]\r\nType=StopFilter\r\n");
        CanFilterDialogState state = Begun(false, "");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        WriteFilter("z.flt", "");

        dialog.addFile(QString::fromStdString(source));
        QVERIFY(boxes.boxes.isEmpty());
        QCOMPARE(TempDir::Read(m_filterDir + "new.flt"), TempDir::Read(source));
        QCOMPARE(Items(ControlsOf(dialog).list), QStringList({"new.flt"}));
        QCOMPARE(ControlsOf(dialog).list->currentRow(), 0);
        QVERIFY(ControlsOf(dialog).edit->isEnabled());

        // Replacing: asked first; No keeps the old file.
        m_root->Write("import/new.flt", "[CAN]\r\nType=PassFilter\r\n");
        dialog.addFile(QString::fromStdString(source));
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("Add CanFilter "));
        QCOMPARE(boxes.boxes[0].text, QString("File already exists ! Overwrite ?"));
        QVERIFY(boxes.boxes[0].question);
        QVERIFY(TempDir::Read(m_filterDir + "new.flt").find("StopFilter") != std::string::npos);
        boxes.answerYes = true;
        dialog.addFile(QString::fromStdString(source));
        QVERIFY(TempDir::Read(m_filterDir + "new.flt").find("PassFilter") != std::string::npos);
        QCOMPARE(ControlsOf(dialog).list->count(), 1);

        boxes.boxes.clear();
        dialog.addFile(QString::fromStdString(m_filterDir + "new.flt"));
        dialog.addFile(QString::fromStdString(Root("import/absent.flt")));
        QCOMPARE(boxes.Texts(), QStringList({"Source and destination have to be different ! ", "FileCopy failed ! "}));
        QCOMPARE(Items(ControlsOf(dialog).list), QStringList({"new.flt"}));
    }

    void removeAsksWithTheFullPathAndSelectsThePrevious() {
        RecordingBoxes boxes;
        fs::create_directories(m_filterDir);
        for (const char* name : {"a.flt", "b.flt", "c.flt"})
            WriteFilter(name, "");
        CanFilterDialogState state = Begun(true, "c.flt");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        const Controls controls = ControlsOf(dialog);

        dialog.removeSelected();
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(boxes.boxes[0].title, QString("Delete Can Filter"));
        QCOMPARE(boxes.boxes[0].text,
                 QString::fromStdString("Do you really want to delete\n" + m_filterDir + "c.flt ?"));
        QVERIFY(fs::exists(m_filterDir + "c.flt"));

        boxes.answerYes = true;
        dialog.removeSelected();
        QVERIFY(!fs::exists(m_filterDir + "c.flt"));
        QCOMPARE(Items(controls.list), QStringList({"a.flt", "b.flt"}));
        QCOMPARE(controls.list->currentItem()->text(), QString("b.flt"));
        QVERIFY(!controls.activate->isChecked());

        dialog.removeSelected();
        dialog.removeSelected();
        QCOMPARE(controls.list->count(), 0);
        QVERIFY(!controls.edit->isEnabled());
        QVERIFY(!controls.remove->isEnabled());
        QVERIFY(fs::is_empty(m_filterDir));
    }

    void activateClickTurnsTheChoiceOnAndOff() {
        fs::create_directories(m_filterDir);
        WriteFilter("a.flt", "");
        CanFilterDialogState state = Begun(false, "a.flt");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        QCheckBox* activate = ControlsOf(dialog).activate;
        activate->click();
        QVERIFY(activate->isChecked() && state.activate && state.changed);
        activate->click();
        QVERIFY(!activate->isChecked() && !state.activate && !state.changed);
    }

    void promptReportsTheOkResultsAcrossRuns() {
        fs::create_directories(m_filterDir);
        WriteFilter("a.flt", "");
        WriteFilter("b.flt", "");
        zdtui::CanFilterDialogPrompt prompt(nullptr, m_tracePath, m_programDir);
        const auto pressOk = [](CCanFilter* dialog) { dialog->findChild<QPushButton*>("okButton")->click(); };

        // Offered at opening from the trace's history: OK applies it.
        WhenModal<CCanFilter>(pressOk);
        CanFilterPrompt::Answer answer = prompt.Run({true, "b.flt", true});
        QVERIFY(answer.ok && answer.activate && answer.changed);
        QCOMPARE(answer.name, std::string("b.flt"));
        QCOMPARE(prompt.FilterPath(answer.name), m_filterDir + "b.flt");

        // Unchanged: OK leaves the document as it is.
        WhenModal<CCanFilter>(pressOk);
        answer = prompt.Run({true, "b.flt", false});
        QVERIFY(answer.ok && answer.activate && !answer.changed);

        // Closed without OK.
        WhenModal<CCanFilter>([](CCanFilter* dialog) { dialog->reject(); });
        QVERIFY(!prompt.Run({true, "a.flt", false}).ok);
    }

    void editAndNewWriteFilterFiles() {
        RecordingBoxes boxes;
        fs::create_directories(m_filterDir);
        WriteFilter("a.flt", "[Info]\r\nAuthor=me\r\n[CAN]\r\nType=PassFilter\r\nNoOfEntries=1\r\n1=0x100\r\n");
        CanFilterDialogState state = Begun(true, "a.flt");
        CCanFilter dialog(nullptr, state, m_tracePath, m_programDir);
        QListWidget* list = ControlsOf(dialog).list;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));

        // A double click edits the entry under the mouse.
        QStringList shownIdentifiers;
        WhenModal<zdtui::FltEditorDialog>([&](zdtui::FltEditorDialog* editor) {
            for (QListWidgetItem* item :
                 editor->findChild<QListWidget*>("identifiers")->findItems("*", Qt::MatchWildcard))
                shownIdentifiers << item->text();
            editor->setStopFilter(true);
            editor->addIdentifier("7df", false);
            editor->addIdentifier("18DAF110", true);
            editor->accept();
        });
        const QRect itemRect = list->visualItemRect(list->item(0));
        // A person's double click starts with a click; the list needs that press on the item.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, itemRect.center());
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, itemRect.center());
        QCOMPARE(shownIdentifiers, QStringList({"0x100"}));
        const FltFilter edited = ReadFltFile(m_filterDir + "a.flt");
        QVERIFY(edited.stopFilter);
        QCOMPARE(edited.identifiers, (std::vector<std::uint32_t>{0x100, 0x7DF, 0x98DAF110}));
        QVERIFY(TempDir::Read(m_filterDir + "a.flt").find("Author=me") != std::string::npos);
        QVERIFY(state.changed);
        QCOMPARE(list->currentItem()->text(), QString("a.flt"));

        // New: the name is asked for, ".flt" added; an existing name is not replaced on No.
        WhenModal<zdtui::FltEditorDialog>([&](zdtui::FltEditorDialog* editor) {
            editor->setFileName("a");
            editor->accept(); // refused: a.flt exists and the answer is No
            editor->setFileName("fresh");
            editor->addIdentifier("800", false); // refused: no standard identifier
            editor->addIdentifier("100", false);
            editor->accept();
        });
        dialog.createNew();
        QCOMPARE(boxes.boxes.size(), 2);
        QCOMPARE(boxes.boxes[0].text, QString("File already exists ! Overwrite ?"));
        QVERIFY(boxes.boxes[0].question);
        QVERIFY(!boxes.boxes[1].question);
        QVERIFY(ReadFltFile(m_filterDir + "a.flt").stopFilter);
        QCOMPARE(Items(list), QStringList({"a.flt", "fresh.flt"}));
        const FltFilter created = ReadFltFile(m_filterDir + "fresh.flt");
        QVERIFY(!created.stopFilter);
        QCOMPARE(created.identifiers, std::vector<std::uint32_t>{0x100});
    }

    // The whole road: the document asks the prompt, the dialog picks a real filter file
    // and the document shows only what that filter lets through.
    void documentAppliesTheChosenFilter() {
        fs::create_directories(m_filterDir);
        WriteFilter("engine.flt", classic_traces::Filter("StopFilter", {"0x7E8"}));
        CAnalyzerDoc doc;
        QVERIFY(doc.OnOpenDocument(m_tracePath.toStdString()));
        QCOMPARE(doc.GetVisibleCount(), 4u);

        zdtui::CanFilterDialogPrompt prompt(nullptr, m_tracePath, m_programDir);
        WhenModal<CCanFilter>([](CCanFilter* dialog) {
            dialog->findChild<QCheckBox*>("activateFilter")->click();
            dialog->accept();
        });
        doc.OnCanFilter(prompt);
        QVERIFY(doc.IsFilterActive());
        QVERIFY(doc.IsStopFilter());
        QCOMPARE(doc.CurrentFilterName(), std::string("engine.flt"));
        // The stop filter drops 7E8 and, by its nature, the bus event without identifier.
        QCOMPARE(doc.GetVisibleCount(), 2u);
    }
};

QTEST_MAIN(CanFilterDialogTest)
#include "CanFilterDialogTest.moc"

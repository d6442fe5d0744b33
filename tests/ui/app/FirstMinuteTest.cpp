#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CMainFrame.h"
#include "app/MenuResources.h"
#include "classic/CCanFilter.h"
#include "classic/FltEditorDialog.h"
#include "snp/SnpView.h"
#include "ui/IsolatedTestMain.h"
#include "ui/MenuLookup.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"
#include "xmldoc/SaveAsName.h"
#include "xmldoc/XmlListView.h"
#include "xpvt/XpvtView.h"

#include <QComboBox>
#include <QFileDialog>
#include <QListWidget>
#include <QMdiArea>
#include <QSignalSpy>
#include <QStyleOptionMenuItem>
#include <QTemporaryDir>
#include <QToolBar>
#include <QtTest>

using dialog_driver::WhenModal;
using namespace zdtui;

namespace {

const QString NamedBookmarkLabel = QStringLiteral("Toggle Bookmark with Na&me...");

QString Sample(const char* name) {
    return QStringLiteral(ZDT_SAMPLES_DIR "/") + QString::fromLatin1(name);
}

// The main tool bar's button that stands in the filter command's place.
QAction* FilterButton(CMainFrame& frame) {
    const std::vector<std::optional<MenuCommand>> resource = ToolBarResource(MainToolBarResource);
    const QList<QAction*> actions = frame.mainToolBar()->actions();
    for (std::size_t i = 0; i < resource.size() && qsizetype(i) < actions.size(); ++i) {
        if (resource[i] && *resource[i] == MenuCommand(ViewCommand::CanFilter))
            return actions[qsizetype(i)];
    }
    return nullptr;
}

// The item of the "&Session" popup whose label (the text before any tab) is `label`.
QAction* SessionItem(CMainFrame& frame, const QString& label) {
    for (QAction* popup : frame.menuBar()->actions()) {
        if (popup->text() != QStringLiteral("&Session") || popup->menu() == nullptr)
            continue;
        for (QAction* action : popup->menu()->actions()) {
            if (MenuItemLabel(action->text()) == label)
                return action;
        }
    }
    return nullptr;
}

// The text a menu paints for an action, shortcut column included.
class PaintedMenu : public QMenu {
public:
    QString paintedText(QAction* action) const {
        QStyleOptionMenuItem option;
        initStyleOption(&option, action);
        return option.text;
    }
};

} // namespace

// What a new user meets in the first minutes: the filter folders of a fresh installation,
// the named bookmark's key, the filter button of the XML lists and the Save As choices.
class FirstMinuteTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<CAnalyzerApp> m_app;

    struct Opened {
        CMainFrame* frame = nullptr;
        UiDocument* document = nullptr;
        XmlListView* view = nullptr;
    };

    Opened open(const QString& path) {
        Opened opened;
        m_app = std::make_unique<CAnalyzerApp>();
        if (!m_app->InitInstance({}))
            return opened;
        opened.frame = m_app->mainFrame();
        opened.document = m_app->openDocumentFile(path);
        if (opened.document == nullptr || opened.frame->childFrames().isEmpty())
            return opened;
        opened.view = dynamic_cast<XmlListView*>(opened.frame->childFrames().last()->commandView());
        return opened;
    }

    static bool readToTheEnd(const Opened& opened) {
        return QTest::qWaitFor([&] { return !opened.document->isOpening() && !opened.document->isBusy(); }, 10000);
    }

private Q_SLOTS:
    void cleanup() {
        if (m_app != nullptr && m_app->mainFrame() != nullptr)
            m_app->mainFrame()->mdiArea()->closeAllSubWindows();
        m_app.reset();
    }

    // A fresh installation has no settings file: the common folder must still take filters.
    void canFilterAddAndNewWorkWithoutSettings() {
        RecordingBoxes boxes;
        QTemporaryDir installation;
        const QString programDir = QDir(installation.path()).filePath("inst/bin");
        QVERIFY(QDir().mkpath(programDir));
        const QString trace = QDir(installation.path()).filePath("run.trc");
        CanFilterDialogState state;
        BeginCanFilterRun(state, false, "", false);
        CCanFilter dialog(nullptr, state, trace, programDir);

        const QString expected = QDir(qEnvironmentVariable("ZDT_ANALYZER_HOME")).filePath("CommonCANFilters") + "/";
        QCOMPARE(dialog.filterDirectory(), expected);
        QVERIFY(QFileInfo(expected).isDir());

        dialog.addFile(Sample("pass_extended.flt"));
        QCOMPARE(boxes.Texts(), QStringList());
        QVERIFY(QFileInfo::exists(expected + "pass_extended.flt"));

        WhenModal<FltEditorDialog>([](FltEditorDialog* editor) {
            editor->setFileName("fresh");
            editor->addIdentifier("7df", false);
            editor->accept();
        });
        dialog.createNew();
        QCOMPARE(boxes.Texts(), QStringList());
        QVERIFY(QFileInfo::exists(expected + "fresh.flt"));
        auto* list = dialog.findChild<QListWidget*>("filterList");
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            names << list->item(row)->text();
        QCOMPARE(names, QStringList({"fresh.flt", "pass_extended.flt"}));
    }

    void filterButtonFollowsTheMenuItem_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("filterWhenRead");
        QTest::newRow("snapshot") << Sample("snapshots_basic.snp") << true;
        QTest::newRow("xpvt 7.01") << Sample("xpvt_701_basic.xpvt") << true;
        QTest::newRow("xpvt 7.02") << Sample("xpvt_702_basic.xpvt") << true;
    }

    void filterButtonFollowsTheMenuItem() {
        QFETCH(QString, file);
        QFETCH(bool, filterWhenRead);
        RecordingBoxes boxes;
        const Opened opened = open(file);
        QVERIFY(opened.view != nullptr);
        CMainFrame& frame = *opened.frame;
        QAction* button = FilterButton(frame);
        QAction* item = MenuItem(frame, "&Session", "Filte&r...");
        QVERIFY(button != nullptr && item != nullptr);
        QWidget* buttonWidget = frame.mainToolBar()->widgetForAction(button);
        QVERIFY(buttonWidget != nullptr);

        // While the file is read nothing that reads it whole may start.
        QVERIFY(opened.document->isOpening());
        QVERIFY(!item->isEnabled());
        QCOMPARE(button->isEnabled(), item->isEnabled());
        QCOMPARE(buttonWidget->isEnabled(), item->isEnabled());

        QVERIFY(readToTheEnd(opened));
        // The end of the read rebuilds the menus and tool bars: look the commands up anew.
        item = MenuItem(frame, "&Session", "Filte&r...");
        button = FilterButton(frame);
        QVERIFY(button != nullptr && item != nullptr);
        buttonWidget = frame.mainToolBar()->widgetForAction(button);
        QVERIFY(buttonWidget != nullptr);
        QTRY_COMPARE(item->isEnabled(), filterWhenRead);
        QCOMPARE(button->isEnabled(), item->isEnabled());
        QCOMPARE(buttonWidget->isEnabled(), item->isEnabled());
        QCOMPARE(button->toolTip(), QStringLiteral("Filter"));
        QCOMPARE(boxes.Texts(), QStringList());
    }

    void namedBookmarkHasASecondKey_data() {
        QTest::addColumn<QString>("file");
        QTest::newRow("snapshot") << Sample("snapshots_basic.snp");
        QTest::newRow("xpvt") << Sample("xpvt_702_basic.xpvt");
    }

    void namedBookmarkHasASecondKey() {
        QFETCH(QString, file);
        RecordingBoxes boxes;
        const Opened opened = open(file);
        QVERIFY(opened.view != nullptr);
        QVERIFY(readToTheEnd(opened));
        CMainFrame& frame = *opened.frame;
        QAction* action = opened.view->commandAction(ViewCommand::ToggleNamedBookmark);
        QVERIFY(action != nullptr);
        QCOMPARE(SessionItem(frame, NamedBookmarkLabel), action);

        const QKeySequence consoleSafe(Qt::ALT | Qt::SHIFT | Qt::Key_F2);
        QCOMPARE(action->shortcuts(),
                 QList<QKeySequence>({QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_F2), consoleSafe}));
        // The menu shows both keys in its shortcut column.
        PaintedMenu menu;
        const QString painted = menu.paintedText(action);
        QCOMPARE(painted.section(u'\t', 0, 0), NamedBookmarkLabel);
        QCOMPARE(painted.section(u'\t', 1),
                 QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_F2).toString(QKeySequence::NativeText) + "; " +
                     consoleSafe.toString(QKeySequence::NativeText));
        // Nothing else in the window claims the new key.
        for (QAction* other : frame.findChildren<QAction*>()) {
            if (other != action)
                QVERIFY2(!other->shortcuts().contains(consoleSafe), qPrintable(other->text()));
        }

        // Both keys run the command; without a selected row it says so.
        frame.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&frame));
        QSignalSpy triggered(action, &QAction::triggered);
        QTest::keyClick(&frame, Qt::Key_F2, Qt::ControlModifier | Qt::AltModifier);
        QTest::keyClick(&frame, Qt::Key_F2, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(triggered.size(), 2);
        QCOMPARE(boxes.boxes.size(), 2);
    }

    void menuTextsCarryEveryKey() {
        const QString two = "Label\tCtrl+Alt+F2; Alt+Shift+F2";
        QCOMPARE(MenuItemLabel(two), QString("Label"));
        QCOMPARE(MenuItemShortcut(two), QKeySequence("Ctrl+Alt+F2"));
        QCOMPARE(MenuItemShortcuts(two),
                 QList<QKeySequence>({QKeySequence("Ctrl+Alt+F2"), QKeySequence("Alt+Shift+F2")}));
        QCOMPARE(MenuItemText(two),
                 QString("Label\t") + QKeySequence::listToString(MenuItemShortcuts(two), QKeySequence::NativeText));
        // One key or none: the label alone, the menu adds the key itself.
        QCOMPARE(MenuItemText("&Find\tCtrl+F"), QString("&Find"));
        QCOMPARE(MenuItemShortcuts("&Find\tCtrl+F"), QList<QKeySequence>({QKeySequence("Ctrl+F")}));
        QCOMPARE(MenuItemText("Filte&r..."), QString("Filte&r..."));
        QVERIFY(MenuItemShortcuts("Filte&r...").isEmpty());

        // Every key of every menu belongs to one item only.
        for (int id : {128, 130, 131, 139, 111, 142, 143}) {
            QMap<QString, QString> owners;
            for (const PopupResource& popup : MenuResource(id)) {
                for (const MenuItemResource& item : popup.items) {
                    for (const QKeySequence& key : MenuItemShortcuts(item.text)) {
                        const QString name = key.toString();
                        QVERIFY2(!owners.contains(name), qPrintable(QString("%1 in %2").arg(name).arg(id)));
                        owners.insert(name, item.text);
                    }
                }
            }
        }
    }

    void saveAsShowsEachTypeOnce() {
        QFileDialog dialog;
        dialog.setOption(QFileDialog::DontUseNativeDialog, true);
        PrepareSaveAsDialog(dialog, "/data/trace");
        QCOMPARE(dialog.windowTitle(), QString("Save As"));
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptSave);
        QCOMPARE(dialog.nameFilters(), QStringList({"HTML (.html) (*.html)", "Rich Text Format(.rtf) (*.rtf)",
                                                    "Adobe Acrobat (.pdf) (*.pdf)", "MS Excel (.csv) (*.csv)"}));
        QVERIFY(dialog.testOption(QFileDialog::HideNameFilterDetails));
        QVERIFY(!dialog.testOption(QFileDialog::DontConfirmOverwrite));
        auto* types = dialog.findChild<QComboBox*>("fileTypeCombo");
        QVERIFY(types != nullptr);
        QStringList shown;
        for (int i = 0; i < types->count(); ++i)
            shown << types->itemText(i);
        QCOMPARE(shown,
                 QStringList({"HTML (.html)", "Rich Text Format(.rtf)", "Adobe Acrobat (.pdf)", "MS Excel (.csv)"}));

        // Whether the dialog reports the whole filter or what it shows, the index is the same.
        for (int i = 0; i < SaveAsFilterCount; ++i) {
            QCOMPARE(SaveAsFilterIndex(dialog.nameFilters()[i]), i + 1);
            QCOMPARE(SaveAsFilterIndex(shown[i]), i + 1);
            dialog.selectNameFilter(dialog.nameFilters()[i]);
            QCOMPARE(SaveAsFilterIndex(dialog.selectedNameFilter()), i + 1);
        }
        QCOMPARE(SaveAsFilterIndex("All files (*)"), 0);
    }

    void saveAsOfAListRunsThatDialog() {
        RecordingBoxes boxes;
        const Opened opened = open(Sample("snapshots_basic.snp"));
        QVERIFY(opened.view != nullptr);
        QVERIFY(readToTheEnd(opened));
        QStringList filters;
        QString proposed;
        WhenModal<QFileDialog>([&](QFileDialog* dialog) {
            filters = dialog->nameFilters();
            proposed = dialog->selectedFiles().value(0);
            dialog->reject();
        });
        opened.view->commandAction(ViewCommand::SaveAs)->trigger();
        QCOMPARE(filters, SaveAsNameFilters());
        QCOMPARE(QFileInfo(proposed).fileName(), QString("snapshots_basic"));
        QCOMPARE(boxes.Texts(), QStringList());

        QTemporaryDir target;
        const QString chosen = QDir(target.path()).filePath("out");
        WhenModal<QFileDialog>([&](QFileDialog* dialog) {
            dialog->selectNameFilter(dialog->nameFilters()[2]);
            dialog->selectFile(chosen);
            static_cast<QDialog*>(dialog)->accept();
        });
        const std::optional<AdornedListView::SaveAsChoice> choice = RunSaveAsDialog(nullptr, "proposed");
        QVERIFY(choice.has_value());
        QCOMPARE(choice->fileName, chosen);
        QCOMPARE(choice->filterIndex, 3);
    }
};

int main(int argc, char* argv[]) {
    return RunIsolatedTest<FirstMinuteTest>(argc, argv);
}

#include "FirstMinuteTest.moc"

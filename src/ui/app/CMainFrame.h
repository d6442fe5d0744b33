#pragma once

#include "app/FrameCommand.h"
#include "app/UiDocument.h"

#include <QList>
#include <QMainWindow>
#include <QMap>
#include <QPointer>

class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QToolBar;

namespace zdt {
struct EditionInfo;
}

namespace zdtui {

class CAnalyzerApp;
class CChildFrame;

// The main window: the document windows in an MDI area, the menus and tool bars of the
// active view, the status bar that views report to, and the drop target for files.
class CMainFrame final : public QMainWindow, public StatusSink {
    Q_OBJECT
public:
    CMainFrame(CAnalyzerApp& app, const zdt::EditionInfo& edition);
    ~CMainFrame() override;

    // Pane 1 gets `text`, pane 2 "No of Items %d" (also for 0, so a closed document leaves
    // a count behind).
    void SetStatusDocument(const QString& text, int count) override;
    void SetStatusText(const QString& text) override;
    // The text of status pane 0 (messages), 1 (path, 250 wide) or 2 (count, 150 wide).
    QString statusPaneText(int pane) const;

    QMdiArea* mdiArea() const { return m_mdiArea; }
    // Takes a document's child window and shows it active: maximised when the active
    // window is (or there is none), else at a useful size beside the others, whose
    // arrangement stays as it is.
    void addChildFrame(CChildFrame* child);
    CChildFrame* activeChildFrame() const;
    QList<CChildFrame*> childFrames() const;

    void cascade();
    // Stacks the windows one above the other, each as wide as the area.
    void tileHorizontally();
    // Sets the windows side by side, each as high as the area.
    void tileVertically();

    // Opens the routable files of a drop; one box names the others.
    void OnDropFiles(const QStringList& paths);

    // The menu resource shown: the edition's main menu, or the active view's menu.
    int menuResourceShown() const { return m_menuResourceShown; }
    QAction* frameAction(FrameCommand command) const { return m_frameActions.value(command); }
    QToolBar* mainToolBar() const { return m_mainToolBar; }
    QToolBar* bookmarkToolBar() const { return m_bookmarkToolBar; }
    // Rebuilds menus and tool bars, e.g. after the recent-file list changed.
    void refreshCommands();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void createFrameActions();
    void createIdleViewActions();
    void createToolBars();
    void createStatusBar();
    void onSubWindowActivated(QMdiSubWindow* window);
    void rebuildMenus(CommandView* view);
    void rebuildToolBar(QToolBar* bar, int resourceId, CommandView* view);
    QAction* viewAction(ViewCommand command, CommandView* view) const;
    void dressViewAction(QAction* action, const QString& resourceText, ViewCommand command);
    void undressViewActions();
    void addRecentFiles(QMenu* menu);
    void addColumnsPopup(QMenu* menu, const QString& title, CommandView* view);
    void fillWindowList(QMenu* menu, int fixedActions);
    void updateTitle();
    void tile(Qt::Orientation orientation);

    CAnalyzerApp& m_app;
    const zdt::EditionInfo& m_edition;
    QMdiArea* m_mdiArea = nullptr;
    QToolBar* m_mainToolBar = nullptr;
    QToolBar* m_bookmarkToolBar = nullptr;
    QLabel* m_messagePane = nullptr;
    QLabel* m_pathPane = nullptr;
    QLabel* m_countPane = nullptr;
    QMap<FrameCommand, QAction*> m_frameActions;
    // Disabled stand-ins for the commands of views that do not serve them.
    QMap<ViewCommand, QAction*> m_idleViewActions;
    // The active view's actions, which carry this frame's shortcuts while they are active.
    QList<QPointer<QAction>> m_dressedViewActions;
    QList<QMenu*> m_menus;
    // Kept as a plain QObject: the window may be half destroyed (down to its
    // QMdiSubWindow part) when the area reports the next activation.
    QPointer<QObject> m_activeChild;
    CChildFrame* activeChild() const;
    int m_menuResourceShown = 0;
};

} // namespace zdtui

#include "app/CMainFrame.h"

#include "app/BrandEdition.h"
#include "app/CAnalyzerApp.h"
#include "app/CChildFrame.h"
#include "app/CommandIcons.h"
#include "app/DocumentRoute.h"
#include "app/MenuResources.h"

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMdiArea>
#include <QMenuBar>
#include <QMimeData>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUrl>
#include <algorithm>

namespace zdtui {
namespace {

constexpr int PathPaneWidth = 250;
constexpr int CountPaneWidth = 150;

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

QStringList LocalFiles(const QMimeData* data) {
    QStringList paths;
    if (data == nullptr)
        return paths;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile())
            paths << url.toLocalFile();
    }
    return paths;
}

// The label every view command carries when no view serves it: the classic menu's, and
// for the commands only the XML families have, theirs.
QMap<ViewCommand, QString> ViewCommandTexts() {
    QMap<ViewCommand, QString> texts;
    for (int menu : {142, 139}) {
        for (const PopupResource& popup : MenuResource(menu)) {
            for (const MenuItemResource& item : popup.items) {
                if (item.kind == MenuItemResource::Kind::Command && std::holds_alternative<ViewCommand>(item.command) &&
                    !texts.contains(std::get<ViewCommand>(item.command)))
                    texts.insert(std::get<ViewCommand>(item.command), item.text);
            }
        }
    }
    return texts;
}

} // namespace

CMainFrame::CMainFrame(CAnalyzerApp& app, const zdt::EditionInfo& edition) : m_app(app), m_edition(edition) {
    setWindowTitle(Text(edition.applicationTitle));
    setWindowIcon(ProgramIcon(edition.mainFrameId));
    setAcceptDrops(true);
    resize(1024, 720);

    m_mdiArea = new QMdiArea(this);
    m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(m_mdiArea);
    connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &CMainFrame::onSubWindowActivated);

    createToolBars();
    createFrameActions();
    createIdleViewActions();
    createStatusBar();
    refreshCommands();
}

CMainFrame::~CMainFrame() {
    // Children go while the frame is whole: their documents may still report status.
    disconnect(m_mdiArea, nullptr, this, nullptr);
    for (QMdiSubWindow* window : m_mdiArea->subWindowList())
        delete window;
}

void CMainFrame::createFrameActions() {
    auto add = [this](FrameCommand command, auto slot) {
        auto* action = new QAction(this);
        connect(action, &QAction::triggered, this, slot);
        m_frameActions.insert(command, action);
        addAction(action); // shortcuts work even while the menu bar is being rebuilt
        return action;
    };
    add(FrameCommand::FileOpen, [this] { m_app.OnFileOpen(); });
    add(FrameCommand::FileClose, [this] {
        if (QMdiSubWindow* window = m_mdiArea->currentSubWindow())
            window->close();
    });
    add(FrameCommand::FilePrintSetup, [this] { m_app.OnFilePrintSetup(); });
    add(FrameCommand::AppExit, [this] { close(); });
    add(FrameCommand::WindowCascade, [this] { cascade(); });
    add(FrameCommand::WindowTileHorizontal, [this] { tileHorizontally(); });
    add(FrameCommand::WindowTileVertical, [this] { tileVertically(); });
    add(FrameCommand::Help, [this] { m_app.OnHelp(); });
    add(FrameCommand::AppAbout, [this] { m_app.OnAppAbout(); });

    // The bars' own toggles keep their check marks right whichever way a bar is hidden.
    m_frameActions.insert(FrameCommand::ViewToolbar, m_mainToolBar->toggleViewAction());
    m_frameActions.insert(FrameCommand::ViewBookmarkToolbar, m_bookmarkToolBar->toggleViewAction());
    auto* statusBarAction = new QAction(this);
    statusBarAction->setCheckable(true);
    statusBarAction->setChecked(true);
    connect(statusBarAction, &QAction::toggled, this, [this](bool on) { statusBar()->setVisible(on); });
    m_frameActions.insert(FrameCommand::ViewStatusBar, statusBarAction);

    for (auto it = m_frameActions.begin(); it != m_frameActions.end(); ++it)
        it.value()->setIcon(CommandIcon(it.key()));
}

void CMainFrame::createIdleViewActions() {
    const QMap<ViewCommand, QString> texts = ViewCommandTexts();
    for (auto it = texts.begin(); it != texts.end(); ++it) {
        auto* action = new QAction(CommandIcon(it.key()), MenuItemLabel(it.value()), this);
        action->setShortcut(MenuItemShortcut(it.value()));
        action->setEnabled(false);
        m_idleViewActions.insert(it.key(), action);
    }
}

void CMainFrame::createToolBars() {
    m_mainToolBar = new QToolBar(QStringLiteral("Toolbar"), this);
    m_mainToolBar->setObjectName(QStringLiteral("mainToolBar"));
    m_bookmarkToolBar = new QToolBar(QStringLiteral("Bookmark Toolbar"), this);
    m_bookmarkToolBar->setObjectName(QStringLiteral("bookmarkToolBar"));
    for (QToolBar* bar : {m_mainToolBar, m_bookmarkToolBar}) {
        bar->setIconSize(QSize(16, 16));
        // Added one after the other, the bookmark bar docks to the right of the main bar.
        addToolBar(Qt::TopToolBarArea, bar);
    }
}

void CMainFrame::createStatusBar() {
    m_messagePane = new QLabel(QStringLiteral("Ready"));
    m_pathPane = new QLabel;
    m_pathPane->setFixedWidth(PathPaneWidth);
    m_countPane = new QLabel;
    m_countPane->setFixedWidth(CountPaneWidth);
    statusBar()->addWidget(m_messagePane, 1);
    statusBar()->addPermanentWidget(m_pathPane);
    statusBar()->addPermanentWidget(m_countPane);
}

void CMainFrame::SetStatusDocument(const QString& text, int count) {
    m_pathPane->setText(text);
    m_pathPane->setToolTip(text);
    m_countPane->setText(QStringLiteral("No of Items %1").arg(count));
    // Long operations follow a status change at once, without a pass of the event loop.
    m_pathPane->repaint();
    m_countPane->repaint();
}

void CMainFrame::SetStatusText(const QString& text) {
    m_pathPane->setText(text);
    m_pathPane->setToolTip(text);
    m_countPane->clear();
    m_pathPane->repaint();
    m_countPane->repaint();
}

QString CMainFrame::statusPaneText(int pane) const {
    switch (pane) {
    case 0:
        return statusBar()->currentMessage().isEmpty() ? m_messagePane->text() : statusBar()->currentMessage();
    case 1:
        return m_pathPane->text();
    case 2:
        return m_countPane->text();
    default:
        return QString();
    }
}

void CMainFrame::addChildFrame(CChildFrame* child) {
    QMdiSubWindow* active = m_mdiArea->currentSubWindow();
    const bool maximised = active == nullptr || active->isHidden() || active->isMaximized();
    m_mdiArea->addSubWindow(child);
    connect(child, &QWidget::windowTitleChanged, this, [this] { updateTitle(); });
    connect(child, &QMdiSubWindow::windowStateChanged, this, [this] { updateTitle(); });
    if (maximised) {
        child->showMaximized();
    } else {
        // Two thirds of the area, a title bar's height below and right of the active one.
        const QRect area = m_mdiArea->viewport()->rect();
        const QSize size(std::max(area.width() * 2 / 3, 320), std::max(area.height() * 2 / 3, 200));
        const int step = child->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, child);
        QPoint topLeft = active->geometry().topLeft() + QPoint(step, step);
        if (topLeft.x() + size.width() > area.width() || topLeft.y() + size.height() > area.height())
            topLeft = QPoint(0, 0);
        child->setGeometry(QRect(topLeft, size));
        child->show();
    }
    m_mdiArea->setActiveSubWindow(child);
}

CChildFrame* CMainFrame::activeChildFrame() const {
    return qobject_cast<CChildFrame*>(m_mdiArea->currentSubWindow());
}

QList<CChildFrame*> CMainFrame::childFrames() const {
    QList<CChildFrame*> frames;
    for (QMdiSubWindow* window : m_mdiArea->subWindowList()) {
        if (auto* frame = qobject_cast<CChildFrame*>(window))
            frames << frame;
    }
    return frames;
}

void CMainFrame::cascade() {
    m_mdiArea->cascadeSubWindows();
}

void CMainFrame::tileHorizontally() {
    tile(Qt::Horizontal);
}

void CMainFrame::tileVertically() {
    tile(Qt::Vertical);
}

void CMainFrame::tile(Qt::Orientation orientation) {
    QList<QMdiSubWindow*> windows;
    for (QMdiSubWindow* window : m_mdiArea->subWindowList()) {
        if (!window->isHidden() && !window->isMinimized())
            windows << window;
    }
    if (windows.isEmpty())
        return;
    const QRect area = m_mdiArea->viewport()->rect();
    const int count = int(windows.size());
    for (int i = 0; i < count; ++i) {
        QRect rect;
        if (orientation == Qt::Horizontal) {
            const int height = area.height() / count;
            const int top = i * height;
            rect = QRect(0, top, area.width(), i == count - 1 ? area.height() - top : height);
        } else {
            const int width = area.width() / count;
            const int left = i * width;
            rect = QRect(left, 0, i == count - 1 ? area.width() - left : width, area.height());
        }
        windows[i]->showNormal();
        windows[i]->setGeometry(rect);
    }
}

void CMainFrame::OnDropFiles(const QStringList& paths) {
    std::vector<std::string> names;
    names.reserve(paths.size());
    for (const QString& path : paths)
        names.push_back(path.toStdString());
    m_app.OpenSelection(zdt::SelectDroppedFiles(names));
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    if (!LocalFiles(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void CMainFrame::dropEvent(QDropEvent* event) {
    const QStringList paths = LocalFiles(event->mimeData());
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    OnDropFiles(paths);
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    // Each window cancels its document's work and waits for it to unwind as it closes.
    for (QMdiSubWindow* window : m_mdiArea->subWindowList()) {
        if (!window->close()) {
            event->ignore();
            return;
        }
    }
    event->accept();
}

CChildFrame* CMainFrame::activeChild() const {
    return qobject_cast<CChildFrame*>(m_activeChild.data());
}

void CMainFrame::onSubWindowActivated(QMdiSubWindow* window) {
    // A null window also comes while the frame itself loses the focus; the current
    // window is what counts.
    auto* child = qobject_cast<CChildFrame*>(window != nullptr ? window : m_mdiArea->currentSubWindow());
    if (child != nullptr && child->isHidden())
        child = nullptr;
    if (child == m_activeChild.data())
        return;
    m_activeChild = child;
    CommandView* view = child != nullptr ? child->commandView() : nullptr;
    if (view != nullptr)
        view->activateView();
    refreshCommands();
}

void CMainFrame::refreshCommands() {
    CChildFrame* active = activeChild();
    CommandView* view = active != nullptr ? active->commandView() : nullptr;
    undressViewActions();
    rebuildMenus(view);
    rebuildToolBar(m_mainToolBar, MainToolBarResource, view);
    rebuildToolBar(m_bookmarkToolBar, BookmarkToolBarResource, view);
    m_frameActions.value(FrameCommand::FileClose)->setEnabled(active != nullptr);
    updateTitle();
}

QAction* CMainFrame::viewAction(ViewCommand command, CommandView* view) const {
    QAction* action = view != nullptr ? view->commandAction(command) : nullptr;
    return action != nullptr ? action : m_idleViewActions.value(command);
}

// The menu resource decides what a command is called and which key runs it; the view
// decides whether it runs and what it does.
void CMainFrame::dressViewAction(QAction* action, const QString& resourceText, ViewCommand command) {
    action->setText(MenuItemText(resourceText));
    action->setShortcuts(MenuItemShortcuts(resourceText));
    if (action->icon().isNull())
        action->setIcon(CommandIcon(command));
    if (!m_idleViewActions.values().contains(action) && !m_dressedViewActions.contains(action))
        m_dressedViewActions << action;
}

// An inactive view's actions lose their keys, so that two open views never claim the same one.
void CMainFrame::undressViewActions() {
    for (const QPointer<QAction>& action : std::as_const(m_dressedViewActions)) {
        if (action != nullptr)
            action->setShortcut(QKeySequence());
    }
    m_dressedViewActions.clear();
}

void CMainFrame::rebuildMenus(CommandView* view) {
    for (QMenu* menu : std::as_const(m_menus)) {
        menuBar()->removeAction(menu->menuAction());
        // Later: a menu may be rebuilt from inside one of its own commands.
        menu->deleteLater();
    }
    m_menus.clear();

    const int viewMenu = view != nullptr ? view->menuResource() : 0;
    m_menuResourceShown = viewMenu != 0 ? viewMenu : m_edition.mainFrameId;
    for (const PopupResource& popup : MenuResource(m_menuResourceShown)) {
        auto* menu = new QMenu(popup.title, menuBar());
        for (const MenuItemResource& item : popup.items) {
            switch (item.kind) {
            case MenuItemResource::Kind::Separator:
                menu->addSeparator();
                break;
            case MenuItemResource::Kind::RecentFiles:
                addRecentFiles(menu);
                break;
            case MenuItemResource::Kind::ColumnsPopup:
                addColumnsPopup(menu, item.text, view);
                break;
            case MenuItemResource::Kind::WindowList: {
                const int fixedActions = int(menu->actions().size());
                connect(menu, &QMenu::aboutToShow, this,
                        [this, menu, fixedActions] { fillWindowList(menu, fixedActions); });
                break;
            }
            case MenuItemResource::Kind::Command:
                if (const auto* frameCommand = std::get_if<FrameCommand>(&item.command)) {
                    QAction* action = m_frameActions.value(*frameCommand);
                    action->setText(MenuItemLabel(item.text));
                    action->setShortcut(MenuItemShortcut(item.text));
                    menu->addAction(action);
                } else {
                    const ViewCommand command = std::get<ViewCommand>(item.command);
                    QAction* action = viewAction(command, view);
                    dressViewAction(action, item.text, command);
                    menu->addAction(action);
                }
                break;
            }
        }
        menuBar()->addMenu(menu);
        m_menus << menu;
    }
}

void CMainFrame::rebuildToolBar(QToolBar* bar, int resourceId, CommandView* view) {
    bar->clear();
    for (const std::optional<MenuCommand>& button : ToolBarResource(resourceId)) {
        if (!button) {
            bar->addSeparator();
        } else if (const auto* frameCommand = std::get_if<FrameCommand>(&*button)) {
            bar->addAction(m_frameActions.value(*frameCommand));
        } else {
            QAction* action = viewAction(std::get<ViewCommand>(*button), view);
            if (action->icon().isNull())
                action->setIcon(CommandIcon(*button));
            bar->addAction(action);
        }
    }
}

void CMainFrame::addRecentFiles(QMenu* menu) {
    const QStringList& paths = m_app.recentFiles().paths();
    if (paths.isEmpty()) {
        menu->addAction(QStringLiteral("Recent File"))->setEnabled(false);
        return;
    }
    for (int i = 0; i < paths.size(); ++i) {
        QAction* action = menu->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(paths[i]));
        connect(action, &QAction::triggered, this, [this, i] { m_app.OpenRecentFile(i); });
    }
}

// The popup is the active view's: the menus are rebuilt whenever another child becomes
// active, and the view fills it with its own columns.
void CMainFrame::addColumnsPopup(QMenu* menu, const QString& title, CommandView* view) {
    QMenu* columns = menu->addMenu(title);
    if (view != nullptr)
        view->fillColumnsMenu(columns);
    columns->setEnabled(!columns->actions().isEmpty());
}

// The open windows follow the fixed items, the active one checked.
void CMainFrame::fillWindowList(QMenu* menu, int fixedActions) {
    const QList<QAction*> actions = menu->actions();
    for (qsizetype i = fixedActions; i < actions.size(); ++i) {
        menu->removeAction(actions[i]);
        if (actions[i]->parent() == menu)
            delete actions[i];
    }
    const QList<CChildFrame*> frames = childFrames();
    if (frames.isEmpty())
        return;
    menu->addSeparator();
    for (int i = 0; i < frames.size(); ++i) {
        CChildFrame* frame = frames[i];
        QAction* action = menu->addAction(QStringLiteral("&%1 %2").arg(i + 1).arg(frame->windowTitle()));
        action->setCheckable(true);
        action->setChecked(frame == m_activeChild.data());
        connect(action, &QAction::triggered, this, [this, frame = QPointer<CChildFrame>(frame)] {
            if (frame != nullptr)
                m_mdiArea->setActiveSubWindow(frame);
        });
    }
}

// A maximised child's caption is added by the MDI area itself, as " - [caption]"; a child
// in a window of its own adds its caption here.
void CMainFrame::updateTitle() {
    const QString title = Text(m_edition.applicationTitle);
    CChildFrame* active = activeChild();
    const bool addCaption = active != nullptr && !active->isMaximized();
    setWindowTitle(addCaption ? title + QStringLiteral(" - ") + active->windowTitle() : title);
}

} // namespace zdtui

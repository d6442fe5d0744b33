#include "app/MenuResources.h"

#include "app/BrandEdition.h"

namespace zdtui {
namespace {

using Kind = MenuItemResource::Kind;

MenuItemResource Item(const char* text, MenuCommand command) {
    return {Kind::Command, QString::fromUtf8(text), command};
}
MenuItemResource Separator() {
    return {Kind::Separator, QString(), FrameCommand::FileOpen};
}
MenuItemResource RecentFiles() {
    return {Kind::RecentFiles, QString(), FrameCommand::FileOpen};
}
MenuItemResource WindowList() {
    return {Kind::WindowList, QString(), FrameCommand::FileOpen};
}
MenuItemResource ColumnsPopup() {
    return {Kind::ColumnsPopup, QStringLiteral("&Columns"), FrameCommand::FileOpen};
}

// The edition whose titles a menu resource carries.
int EditionOfMenu(int id) {
    switch (id) {
    case 130:
    case 143:
        return zdt::BrandEditionPartner;
    case 131:
        return zdt::BrandEditionCustomer;
    default:
        return zdt::BrandEditionStandard;
    }
}

MenuItemResource AboutItem(int menuId) {
    const std::string_view title = zdt::EditionInfoFor(EditionOfMenu(menuId)).applicationTitle;
    return {Kind::Command, "&About " + QString::fromUtf8(title.data(), qsizetype(title.size())) + "...",
            FrameCommand::AppAbout};
}

PopupResource HelpPopup(int menuId) {
    return {"&Help", {Item("&Help Topics\tF1", FrameCommand::Help), Separator(), AboutItem(menuId)}};
}

// The items that show and hide the bars, at the end of every "&View" popup.
std::vector<MenuItemResource> BarItems() {
    return {Item("&Toolbar", FrameCommand::ViewToolbar), Item("B&ookmark Toolbar", FrameCommand::ViewBookmarkToolbar),
            Item("&Status Bar", FrameCommand::ViewStatusBar)};
}

std::vector<PopupResource> MainMenu(int id) {
    return {
        {"&File",
         {Item("&Open...\tCtrl+O", FrameCommand::FileOpen), Separator(),
          Item("P&rint Setup...", FrameCommand::FilePrintSetup), Separator(), RecentFiles(), Separator(),
          Item("E&xit", FrameCommand::AppExit)}},
        {"&View", BarItems()},
        HelpPopup(id),
    };
}

// One menu serves every edition of an XML family: its About item names the running edition.
int MainMenuOfEdition() {
    return zdt::EditionInfoFor(zdt::BrandEdition()).mainFrameId;
}

PopupResource WindowPopup() {
    return {"&Window",
            {Item("&Cascade", FrameCommand::WindowCascade),
             Item("Tile &Horizontally", FrameCommand::WindowTileHorizontal),
             Item("Tile &Vertically", FrameCommand::WindowTileVertical), WindowList()}};
}

// The "&File" popup of a document window; only its save item differs between families.
PopupResource DocumentFilePopup(MenuItemResource saveItem) {
    return {"&File",
            {Item("&Open...\tCtrl+O", FrameCommand::FileOpen), Item("&Close", FrameCommand::FileClose), Separator(),
             Item("&Print...\tCtrl+P", ViewCommand::Print), Item("Print Pre&view", ViewCommand::PrintPreview),
             Item("P&rint Setup...", FrameCommand::FilePrintSetup), Separator(), saveItem, Separator(), RecentFiles(),
             Separator(), Item("E&xit", FrameCommand::AppExit)}};
}

// The "&Session" popup of a document window. The XML families add named bookmarks and
// the bookmark list; the filter item closes the popup.
PopupResource SessionPopup(bool xmlBookmarks, MenuItemResource filterItem) {
    std::vector<MenuItemResource> items = {Item("Session Info...", ViewCommand::SessionInfo),
                                           Separator(),
                                           Item("&Find\tCtrl+F", ViewCommand::Find),
                                           Item("Find &Next\tCtrl+F3", ViewCommand::FindNext),
                                           Item("Find &Previous\tCtrl+Shift+F3", ViewCommand::FindPrevious),
                                           Separator(),
                                           Item("&Toggle Bookmark\tCtrl+F2", ViewCommand::ToggleBookmark)};
    // Linux desktops keep Ctrl+Alt+F2 to switch consoles; the second key reaches us there.
    if (xmlBookmarks)
        items.push_back(
            Item("Toggle Bookmark with Na&me...\tCtrl+Alt+F2; Alt+Shift+F2", ViewCommand::ToggleNamedBookmark));
    items.push_back(Item("&Goto Next Bookmark\tF2", ViewCommand::NextBookmark));
    items.push_back(Item("Goto Previous &Bookmark\tShift+F2", ViewCommand::PreviousBookmark));
    items.push_back(Item("Clear All Bookmarks\tCtrl+Shift+F2", ViewCommand::ClearBookmarks));
    if (xmlBookmarks)
        items.push_back(Item("Bookmark &List...\tCtrl+B", ViewCommand::BookmarkList));
    items.push_back(Separator());
    items.push_back(filterItem);
    return {"&Session", items};
}

std::vector<PopupResource> ClassicMenu(int id) {
    // The partner's menu keeps the trailing blank of this item.
    const char* styleKLine = id == 143 ? "Style KLine Link " : "Style KLine Link";
    std::vector<MenuItemResource> view = {Item(styleKLine, ViewCommand::StyleKLine),
                                          Item("Style CAN Link", ViewCommand::StyleCan), Separator()};
    for (const MenuItemResource& item : BarItems())
        view.push_back(item);
    PopupResource session = SessionPopup(false, Item("&Can Filter ...", ViewCommand::CanFilter));
    session.items.insert(session.items.begin() + 1,
                         Item("Identifier statistics...", ViewCommand::IdentifierStatistics));
    return {
        DocumentFilePopup(Item("Save &As ASCII file...", ViewCommand::SaveAsAscii)),
        session,
        {"&View", view},
        WindowPopup(),
        HelpPopup(id),
    };
}

// The menu of the XML document families. Only process value traces have the "&Columns"
// popup; a snapshot's columns are toggled from the list's own context menu.
std::vector<PopupResource> XmlDocumentMenu(int id) {
    std::vector<MenuItemResource> view;
    if (id == 139)
        view = {ColumnsPopup(), Separator()};
    for (const MenuItemResource& item : BarItems())
        view.push_back(item);
    return {
        DocumentFilePopup(Item("Save &As...\tCtrl+Shift+S", ViewCommand::SaveAs)),
        SessionPopup(true, Item("Filte&r...", ViewCommand::Filter)),
        {"&View", view},
        WindowPopup(),
        HelpPopup(MainMenuOfEdition()),
    };
}

} // namespace

std::vector<PopupResource> MenuResource(int id) {
    switch (id) {
    case 139:
    case 111:
        return XmlDocumentMenu(id);
    case 142:
    case 143:
        return ClassicMenu(id);
    case 130:
    case 131:
        return MainMenu(id);
    default:
        return MainMenu(128);
    }
}

std::vector<std::optional<MenuCommand>> ToolBarResource(int id) {
    if (id == BookmarkToolBarResource) {
        return {ViewCommand::ToggleBookmark, ViewCommand::NextBookmark, ViewCommand::PreviousBookmark,
                ViewCommand::ClearBookmarks};
    }
    return {FrameCommand::FileOpen,
            std::nullopt,
            ViewCommand::Print,
            ViewCommand::PrintPreview,
            ViewCommand::SaveAsAscii,
            std::nullopt,
            ViewCommand::SessionInfo,
            ViewCommand::Find,
            ViewCommand::FindNext,
            ViewCommand::FindPrevious,
            ViewCommand::CanFilter,
            std::nullopt,
            ViewCommand::StyleKLine,
            ViewCommand::StyleCan,
            std::nullopt,
            FrameCommand::AppAbout};
}

QString MenuItemLabel(const QString& resourceText) {
    const qsizetype tab = resourceText.indexOf(u'\t');
    return tab < 0 ? resourceText : resourceText.left(tab);
}

QList<QKeySequence> MenuItemShortcuts(const QString& resourceText) {
    const qsizetype tab = resourceText.indexOf(u'\t');
    if (tab < 0)
        return {};
    return QKeySequence::listFromString(resourceText.mid(tab + 1), QKeySequence::PortableText);
}

QKeySequence MenuItemShortcut(const QString& resourceText) {
    const QList<QKeySequence> keys = MenuItemShortcuts(resourceText);
    return keys.isEmpty() ? QKeySequence() : keys.first();
}

QString MenuItemText(const QString& resourceText) {
    const QList<QKeySequence> keys = MenuItemShortcuts(resourceText);
    if (keys.size() < 2)
        return MenuItemLabel(resourceText);
    // A menu shows only an action's first key by itself; text behind a tab it shows instead.
    return MenuItemLabel(resourceText) + u'\t' + QKeySequence::listToString(keys, QKeySequence::NativeText);
}

} // namespace zdtui

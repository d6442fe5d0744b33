#pragma once

#include "app/FrameCommand.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <optional>
#include <vector>

namespace zdtui {

// One entry of a menu resource. `text` is written as in the resource: the label, and
// behind a tab the accelerator ("&Find\tCtrl+F").
struct MenuItemResource {
    // ColumnsPopup is a submenu that the active view fills with its columns.
    enum class Kind { Command, Separator, RecentFiles, WindowList, ColumnsPopup };
    Kind kind = Kind::Command;
    QString text;
    MenuCommand command = FrameCommand::FileOpen;
};

struct PopupResource {
    QString title;
    std::vector<MenuItemResource> items;
};

// Menu bars by resource id: 128, 130 and 131 are the main menus of the three editions
// (shown with no document), 142 and 143 the classic document's menus, 139 the process
// value trace's and 111 the snapshot's. Unknown ids give 128.
std::vector<PopupResource> MenuResource(int id);

inline constexpr int MainToolBarResource = 128;
inline constexpr int BookmarkToolBarResource = 144;

// Tool-bar buttons by resource id (128 main, 144 bookmarks); null entries are separators.
// Buttons stand in the order of the menus.
std::vector<std::optional<MenuCommand>> ToolBarResource(int id);

// The label of a resource text, without the accelerator.
QString MenuItemLabel(const QString& resourceText);
// The accelerators behind the tab, separated by "; " when an item has more than one.
QList<QKeySequence> MenuItemShortcuts(const QString& resourceText);
// The first accelerator, empty when there is none.
QKeySequence MenuItemShortcut(const QString& resourceText);
// What the menu item's action is called: the label, followed by a tab and every key
// when there are several (the menu would show only the first).
QString MenuItemText(const QString& resourceText);

} // namespace zdtui

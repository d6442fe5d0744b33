#pragma once

#include "app/UiDocument.h"

#include <variant>

namespace zdtui {

// Commands the main frame and the application serve themselves, whatever view is active.
// The values are the command ids of the menu resources.
enum class FrameCommand {
    FileOpen = 57601,
    FileClose = 57602,
    FilePrintSetup = 57606,
    AppExit = 57665,
    ViewToolbar = 59392,
    ViewStatusBar = 59393,
    ViewBookmarkToolbar = 32790,
    WindowCascade = 57650,
    WindowTileHorizontal = 57651,
    WindowTileVertical = 57652,
    Help = 57670,
    AppAbout = 57664,
};

// A menu item or tool-bar button is served either by the frame or by the active view.
using MenuCommand = std::variant<FrameCommand, ViewCommand>;

} // namespace zdtui

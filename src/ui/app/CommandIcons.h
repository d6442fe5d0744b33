#pragma once

#include "app/FrameCommand.h"

#include <QIcon>

namespace zdtui {

// The tool-bar picture of a command, drawn at run time so that no bitmap files are needed;
// null for commands that are on no tool bar.
QIcon CommandIcon(const MenuCommand& command);

// The program icon of a resource id: 128 standard, 130 partner, 131 customer.
QIcon ProgramIcon(int resourceId);

} // namespace zdtui

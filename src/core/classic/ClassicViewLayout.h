#pragma once

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicRowFormatter.h"

#include <array>
#include <string>

// What the classic list shows of a trace besides its rows: the column widths it starts
// with, the column menu of its header, the time column's title and the window title.

// Which optional columns a trace fills.
struct ClassicColumnContent {
    bool identifier = false; // identifiers or Flex frames
    bool channel = false;
    bool priority = false;
    bool source = false;
    bool destination = false;
};
ClassicColumnContent ColumnContentOf(const CAnalyzerDoc& doc);

// The registered widths (0 = hidden), widened for what the file holds. Indexed by ClassicColumn.
std::array<int, ClassicColumnCount> InitialColumnWidths(const ClassicColumnContent& content);

// A column counts as shown in the header menu from this width on; narrower ones are
// hidden for the menu even if a sliver of them is on screen.
constexpr int ColumnMenuShownWidth = 11;
constexpr int ColumnMenuMinimumTextWidth = 40;
constexpr int ColumnMenuPadding = 12;
bool IsColumnMenuChecked(int width);
// The width a column gets when its menu entry is chosen: a shown column is hidden, a
// hidden one becomes as wide as its widest text (at least 40) plus 12.
int ColumnWidthAfterMenuChoice(int width, int widestTextWidth);

// "Time [sec]" in absolute mode, "Time [ms]" in the others.
const char* TimeColumnTitle(TimeMode mode);

// "Diagnostic Channel <path>" for a ZDT trace, "CAN Onboard Channel  <path>" otherwise.
std::string ClassicWindowTitle(const std::string& traceTitle, const std::string& path);

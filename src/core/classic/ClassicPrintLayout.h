#pragma once

#include <cstdint>
#include <string>
#include <vector>

class CAnalyzerDoc;

// How the rows of a classic trace fall onto printed pages, and the texts around them.
// All lengths are in device pixels.
struct ClassicPrintLayout {
    int pageHeight = 0; // the device's page height less the bottom margin
    int lineHeight = 1; // text height plus external leading
    std::uint32_t rowsPerPage = 1;
    std::uint32_t pageCount = 1; // pages are numbered from 1
};

constexpr int PrintPageBottomMargin = 70;
// Lines of the page the rows leave free for head and foot.
constexpr int PrintReservedLines = 9;
constexpr int PrintLeftX = 127;
// Where the rows start: below the longest head (three lines) and one blank line.
constexpr int PrintFirstRowLine = 5;

// Rows per page are page height / line height less the reserved lines; a page too small for
// that still takes one row, so that printing ends. The page count is rows / rows per page + 1.
ClassicPrintLayout MakeClassicPrintLayout(int devicePageHeight, int lineHeight, std::uint32_t rowCount);

// The print font's pixel height: the screen font's height taken as points at the device's
// vertical resolution.
int PrintFontPixelHeight(int screenPixelHeight, int deviceDpiY);

// The rows of page `page`: the first row and how many.
struct PrintPageRows {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
};
PrintPageRows RowsOfPage(const ClassicPrintLayout& layout, std::uint32_t page, std::uint32_t rowCount);

// Top of the head's line `line` (0-based), of the row at `indexOnPage`, and of the foot.
int PrintHeadLineTop(const ClassicPrintLayout& layout, int line);
int PrintRowTop(const ClassicPrintLayout& layout, std::uint32_t indexOnPage);
int PrintFootTop(const ClassicPrintLayout& layout);
// Left edge of the foot, which ends as far from the right edge as the rows start from the left.
int PrintFootLeft(int pageWidth, int footTextWidth);

// The head of a page for a brand edition (1 Standard, 2 Partner, 4 Customer): three lines
// on the first page, one on the others.
std::vector<std::string> PrintPageHead(const CAnalyzerDoc& doc, int edition, std::uint32_t page);
// "- N -".
std::string PrintPageFoot(std::uint32_t page);

#include "classic/ClassicPrintLayout.h"

#include "classic/CAnalyzerDoc.h"

#include <algorithm>

namespace {

constexpr int kEditionPartner = 2;
constexpr const char* kPartnerVersion = "V1.0.0";

} // namespace

ClassicPrintLayout MakeClassicPrintLayout(int devicePageHeight, int lineHeight, std::uint32_t rowCount) {
    ClassicPrintLayout layout;
    layout.pageHeight = devicePageHeight - PrintPageBottomMargin;
    layout.lineHeight = std::max(lineHeight, 1);
    const int rows = layout.pageHeight / layout.lineHeight - PrintReservedLines;
    layout.rowsPerPage = rows > 0 ? static_cast<std::uint32_t>(rows) : 1u;
    layout.pageCount = rowCount / layout.rowsPerPage + 1;
    return layout;
}

int PrintFontPixelHeight(int screenPixelHeight, int deviceDpiY) {
    return std::max(1, screenPixelHeight * deviceDpiY / 72);
}

PrintPageRows RowsOfPage(const ClassicPrintLayout& layout, std::uint32_t page, std::uint32_t rowCount) {
    PrintPageRows rows;
    if (page < 1 || page > layout.pageCount)
        return rows;
    const std::uint64_t first = static_cast<std::uint64_t>(page - 1) * layout.rowsPerPage;
    if (first >= rowCount)
        return rows;
    rows.first = static_cast<std::uint32_t>(first);
    rows.count = std::min<std::uint32_t>(layout.rowsPerPage, rowCount - rows.first);
    return rows;
}

int PrintHeadLineTop(const ClassicPrintLayout& layout, int line) {
    return (1 + line) * layout.lineHeight;
}

int PrintRowTop(const ClassicPrintLayout& layout, std::uint32_t indexOnPage) {
    return static_cast<int>((PrintFirstRowLine + indexOnPage) * static_cast<std::uint32_t>(layout.lineHeight));
}

int PrintFootTop(const ClassicPrintLayout& layout) {
    return layout.pageHeight - 2 * layout.lineHeight;
}

int PrintFootLeft(int pageWidth, int footTextWidth) {
    return std::max(0, pageWidth - PrintLeftX - footTextWidth);
}

std::vector<std::string> PrintPageHead(const CAnalyzerDoc& doc, int edition, std::uint32_t page) {
    const bool partner = edition == kEditionPartner;
    if (page > 1)
        return {partner ? "***** OVX Bytes & Timings Trace *****" : "***** ZDT Bytes & Timings Trace *****"};
    std::vector<std::string> head;
    if (partner)
        head.push_back(std::string("***** ") + " OVX Product Family " + kPartnerVersion + " - OVX Trace File" +
                       " *****");
    else
        head.push_back("***** " + doc.ProductVersion() + " - " + doc.Title() + " *****");
    head.push_back("Interface: " + doc.InterfaceBoard());
    head.push_back("Date: " + doc.Date() + ",     Time: " + doc.Time());
    return head;
}

std::string PrintPageFoot(std::uint32_t page) {
    return "- " + std::to_string(page) + " -";
}

#include "classic/ClassicPrinter.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicPrintLayout.h"
#include "classic/ClassicReport.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>

#include <algorithm>

namespace zdtui {
namespace {

constexpr int kDefaultViewPixels = 12;

void DrawLine(QPainter& painter, int x, int top, const std::string& text) {
    painter.drawText(x, top + painter.fontMetrics().ascent(), QString::fromUtf8(text.c_str()));
}

} // namespace

ClassicPrinter::ClassicPrinter(CAnalyzerDoc& doc, const QFont& viewFont, int edition)
    : m_doc(doc), m_viewFont(viewFont), m_edition(edition) {}

int ClassicPrinter::print(QPrinter* printer) {
    QPainter painter;
    if (!painter.begin(printer))
        return 0;
    QFont rowFont = m_viewFont;
    const int viewPixels = m_viewFont.pixelSize() > 0 ? m_viewFont.pixelSize() : kDefaultViewPixels;
    rowFont.setPixelSize(PrintFontPixelHeight(viewPixels, printer->logicalDpiY()));
    QFont headFont = rowFont;
    headFont.setItalic(true);
    headFont.setWeight(QFont::Medium);

    painter.setFont(rowFont);
    const QFontMetrics metrics = painter.fontMetrics();
    const ClassicPrintLayout layout =
        MakeClassicPrintLayout(printer->height(), metrics.height() + metrics.leading(), m_doc.GetVisibleCount());

    unsigned first = 1;
    unsigned last = layout.pageCount;
    if (printer->printRange() == QPrinter::PageRange && printer->fromPage() > 0) {
        first = std::max(1u, static_cast<unsigned>(printer->fromPage()));
        last = std::min(last, static_cast<unsigned>(std::max(printer->toPage(), printer->fromPage())));
    }
    int printed = 0;
    for (unsigned page = first; page <= last; ++page) {
        if (printed > 0)
            printer->newPage();
        printPage(painter, printer, rowFont, headFont, layout, page);
        ++printed;
    }
    painter.end();
    return printed;
}

void ClassicPrinter::printPage(QPainter& painter, QPrinter* printer, const QFont& rowFont, const QFont& headFont,
                               const ClassicPrintLayout& layout, unsigned page) {
    painter.setFont(headFont);
    const std::vector<std::string> head = PrintPageHead(m_doc, m_edition, page);
    for (std::size_t line = 0; line < head.size(); ++line)
        DrawLine(painter, PrintLeftX, PrintHeadLineTop(layout, static_cast<int>(line)), head[line]);

    painter.setFont(rowFont);
    const PrintPageRows rows = RowsOfPage(layout, page, m_doc.GetVisibleCount());
    ClassicReportFormatter formatter(m_doc);
    for (std::uint32_t i = 0; i < rows.count; ++i) {
        std::string text = formatter.FormatLine(rows.first + i);
        if (!text.empty() && text.back() == '\n')
            text.pop_back();
        DrawLine(painter, PrintLeftX, PrintRowTop(layout, i), text);
    }

    painter.setFont(headFont);
    const std::string foot = PrintPageFoot(page);
    const int footWidth = painter.fontMetrics().horizontalAdvance(QString::fromLatin1(foot.c_str()));
    DrawLine(painter, PrintFootLeft(printer->width(), footWidth), PrintFootTop(layout), foot);
}

} // namespace zdtui

#pragma once

#include <QFont>

class CAnalyzerDoc;
struct ClassicPrintLayout;
class QPainter;
class QPrinter;

namespace zdtui {

// Prints the rows of a classic trace with the padded report formatter: a head on every
// page (the session on the first), the rows, and the page number at the foot.
class ClassicPrinter final {
public:
    // `viewFont` is the list's font; the print font is it scaled to the printer.
    ClassicPrinter(CAnalyzerDoc& doc, const QFont& viewFont, int edition);

    // Prints the printer's page range (all pages when it names none). Returns the pages
    // printed; 0 when the printer could not be started.
    int print(QPrinter* printer);

private:
    void printPage(QPainter& painter, QPrinter* printer, const QFont& rowFont, const QFont& headFont,
                   const ClassicPrintLayout& layout, unsigned page);

    CAnalyzerDoc& m_doc;
    QFont m_viewFont;
    int m_edition;
};

} // namespace zdtui

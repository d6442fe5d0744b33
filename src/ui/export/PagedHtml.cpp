#include "export/PagedHtml.h"

namespace zdtui {
namespace {

constexpr QLatin1StringView BodyOpen("<tbody>");
constexpr QLatin1StringView BodyClose("</tbody>");
// What closes a piece that is not the last.
constexpr QLatin1StringView PieceClose("</tbody></table></body></html>");

// The start of the next "<tr" element at or after `from` (not "<track" or the like).
qsizetype NextRow(const QString& html, qsizetype from, qsizetype end) {
    for (qsizetype at = html.indexOf(QLatin1StringView("<tr"), from, Qt::CaseInsensitive); at >= 0 && at < end;
         at = html.indexOf(QLatin1StringView("<tr"), at + 3, Qt::CaseInsensitive)) {
        const QChar next = at + 3 < html.size() ? html.at(at + 3) : QChar();
        if (next == QLatin1Char('>') || next.isSpace())
            return at;
    }
    return -1;
}

} // namespace

PagedHtml::PagedHtml(const QString& html, int rowsPerPiece) {
    const qsizetype bodyClose = html.lastIndexOf(BodyClose, -1, Qt::CaseInsensitive);
    const qsizetype bodyOpen = bodyClose < 0 ? -1 : html.lastIndexOf(BodyOpen, bodyClose, Qt::CaseInsensitive);
    const qsizetype tableOpen =
        bodyOpen < 0 ? -1 : html.lastIndexOf(QLatin1StringView("<table"), bodyOpen, Qt::CaseInsensitive);
    const qsizetype documentBody = html.indexOf(QLatin1StringView("<body"), 0, Qt::CaseInsensitive);
    const qsizetype documentBodyEnd = documentBody < 0 ? -1 : html.indexOf(QLatin1Char('>'), documentBody);
    if (tableOpen < 0 || documentBodyEnd < 0 || documentBodyEnd > tableOpen || rowsPerPiece < 1) {
        m_rows << html;
        m_rowsIn << 0;
        return;
    }
    m_whole = false;
    const qsizetype rowsBegin = bodyOpen + BodyOpen.size();
    m_firstPrefix = html.left(rowsBegin);
    m_prefix = html.left(documentBodyEnd + 1) + html.mid(tableOpen, rowsBegin - tableOpen);
    m_lastSuffix = html.mid(bodyClose);

    qsizetype pieceStart = rowsBegin;
    int rowsInPiece = 0;
    for (qsizetype row = NextRow(html, rowsBegin, bodyClose); row >= 0; row = NextRow(html, row + 3, bodyClose)) {
        if (rowsInPiece == rowsPerPiece) {
            m_rows << html.mid(pieceStart, row - pieceStart);
            m_rowsIn << rowsInPiece;
            pieceStart = row;
            rowsInPiece = 0;
        }
        ++rowsInPiece;
        ++m_rowCount;
    }
    m_rows << html.mid(pieceStart, bodyClose - pieceStart);
    m_rowsIn << rowsInPiece;
}

QString PagedHtml::piece(int index) const {
    if (index < 0 || index >= pieceCount())
        return {};
    if (m_whole)
        return m_rows[index];
    const bool last = index == pieceCount() - 1;
    return (index == 0 ? m_firstPrefix : m_prefix) + m_rows[index] + (last ? m_lastSuffix : QString(PieceClose));
}

} // namespace zdtui

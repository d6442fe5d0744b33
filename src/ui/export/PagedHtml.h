#pragma once

#include <QString>
#include <QStringList>

namespace zdtui {

// An export's HTML page cut into documents of a few rows each, so that a page of a
// hundred thousand rows is laid out a piece at a time: the rich text layout takes about a
// millisecond per table row, and a whole trace at once would freeze the window for
// minutes. The rows are those of the last "<tbody>" element; every piece repeats the
// head and the table's opening with its column titles. A page without a body of rows is
// one piece.
class PagedHtml {
public:
    PagedHtml() = default;
    PagedHtml(const QString& html, int rowsPerPiece);

    int pieceCount() const { return int(m_rows.size()); }
    int rowCount() const { return m_rowCount; }
    // The rows in piece `index` (0 for a page without rows).
    int rowsIn(int index) const { return m_rowsIn.value(index); }
    // Piece `index` as a page of its own.
    QString piece(int index) const;

private:
    bool m_whole = true;
    QString m_firstPrefix;
    QString m_prefix;
    QString m_lastSuffix;
    QStringList m_rows;
    QList<int> m_rowsIn;
    int m_rowCount = 0;
};

} // namespace zdtui

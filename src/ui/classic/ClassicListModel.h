#pragma once

#include "classic/ClassicRowFormatter.h"

#include <QAbstractTableModel>
#include <QColor>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

class CAnalyzerDoc;

namespace zdtui {

// The rows of a classic trace for the list. It stores only the row count: each row is
// formatted from its record when it is asked for, and only about a screenful of
// formatted rows is kept. Column 0 is the mark column, columns 1 to 8 are the trace
// columns in ClassicColumn order.
class ClassicListModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int MarkColumn = 0;
    static constexpr int ColumnCount = 1 + static_cast<int>(ClassicColumnCount);
    static constexpr int ModelColumn(ClassicColumn column) { return 1 + static_cast<int>(column); }

    explicit ClassicListModel(CAnalyzerDoc& doc, QObject* parent = nullptr);
    ~ClassicListModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // Takes row count, time mode and rows anew from the document.
    void reload();
    // No rows while the document is being rebuilt on another thread: nothing may read it.
    void suspend();
    // The index pass has published `rows` rows: the list takes those beyond its count.
    void growTo(int rows);
    // Marks (bookmarks, alarms) of these rows changed.
    void rowsChanged(int first, int last);
    void setSelectedRow(long long row);
    long long selectedRow() const { return m_selected; }
    // The most formatted rows kept at once; the list sets it to what fits on screen.
    void setCacheCapacity(int rows);

    // The formatted row `row` (0 <= row < rowCount()).
    const ClassicRow& row(int row) const;
    QString cellText(int row, int column) const;
    QColor foreground(int row) const;
    // White or the row's own background; grey for the selected row.
    QColor background(int row) const;

    static QColor ToQColor(std::uint32_t bbggrr);

private:
    struct CachedRow {
        long long row = -1;
        ClassicRow content;
    };

    CAnalyzerDoc& m_doc;
    int m_rows = 0;
    bool m_suspended = false;
    QString m_timeTitle;
    long long m_selected = -1;
    mutable std::unique_ptr<ClassicRowFormatter> m_formatter;
    mutable std::vector<CachedRow> m_cache;
};

} // namespace zdtui

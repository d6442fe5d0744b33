#pragma once

#include <QAbstractScrollArea>
#include <QFont>

class QAbstractItemModel;
class QHeaderView;

namespace zdtui {

// A list of rows of one height under a header of columns; the subclass paints each row.
// Nothing is kept per row, so a list of many millions of rows costs no memory here, and
// growing or scrolling it costs the same at any length, which a table view's per-row
// header does not.
class UniformRowList : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit UniformRowList(QWidget* parent = nullptr);
    ~UniformRowList() override;

    QHeaderView* header() const { return m_header; }
    const QFont& rowFont() const { return m_font; }
    int lineHeight() const;

    int firstRowOnScreen() const;
    // Rows drawn on screen, the last perhaps in part.
    int rowsOnScreen() const;
    // The row under viewport position `y`, or -1.
    int rowAt(int y) const;
    // Where a cell is drawn, in viewport coordinates; empty for a hidden column.
    QRect cellRect(int row, int column) const;

    // The selected row, -1 with none.
    virtual long long selectedRow() const { return m_selectedRow; }
    // Selects `row` (-1: none) and, with `scroll`, brings it on screen.
    virtual void selectRow(long long row, bool scroll = true);
    void clearSelection() { selectRow(-1, false); }
    void ensureVisible(long long row);
    void scrollToBottom();

Q_SIGNALS:
    void selectedRowChanged();

protected:
    // The header shows the model's column titles; its row count changes update the scroll range.
    void setHeaderModel(QAbstractItemModel* model);
    void setRowFont(const QFont& font);
    // Added to the font's height, and the least a line may be.
    void setLinePadding(int padding, int minimumHeight = 0);
    virtual int listRowCount() const = 0;
    // Paints `row` into `rowRect`, which spans the viewport's width.
    virtual void paintRow(QPainter& painter, int row, const QRect& rowRect) = 0;
    // The rows that fit on screen changed, for caches sized to them.
    virtual void fullRowsOnScreenChanged(int) {}

    int fullRowsOnScreen() const;
    void updateGeometries();
    void updateScrollBars();

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    QHeaderView* m_header;
    QFont m_font;
    int m_linePadding = 2;
    int m_minimumLineHeight = 0;
    long long m_selectedRow = -1;
    int m_wheelRemainder = 0;
};

} // namespace zdtui

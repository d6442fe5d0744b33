#pragma once

#include "app/UiDocument.h"
#include "classic/ClassicRowFormatter.h"
#include "classic/ClassicSearch.h"

#include <QAbstractScrollArea>
#include <QFont>

#include <array>
#include <functional>

class CAnalyzerDoc;
class QHeaderView;
class QPrinter;

namespace zdtui {

class CFindDlg;
class ClassicDocument;
class IdentifierStatisticsDialog;
class ClassicListModel;

// The list of a classic trace: a header with the mark column and the eight trace
// columns, and rows painted straight from the model, so that a trace of many millions
// of rows costs no memory per row here. Serves the document's commands to the frame.
class CAnaView final : public QAbstractScrollArea, public CommandView {
    Q_OBJECT
public:
    static constexpr int MarkColumnWidth = 24;

    CAnaView(ClassicDocument& document, StatusSink* status, QWidget* parent = nullptr);
    ~CAnaView() override;

    QAction* commandAction(ViewCommand command) override;
    int menuResource() const override;
    void activateView() override;

    ClassicListModel* model() const { return m_model; }
    QHeaderView* header() const { return m_header; }
    const QFont& rowFont() const { return m_font; }
    int lineHeight() const;

    long long selectedRow() const;
    // Selects `row` (-1: none) and, with `scroll`, brings it on screen.
    void selectRow(long long row, bool scroll = true);
    int firstRowOnScreen() const;
    // Rows drawn on screen, the last perhaps in part.
    int rowsOnScreen() const;
    // The row under viewport position `y`, or -1.
    int rowAt(int y) const;

    // Widths as the header holds them; 0 for a hidden column.
    int columnWidth(ClassicColumn column) const;
    void setColumnWidth(ClassicColumn column, int width);
    // The header menu's entry of `column`: hides a shown column, sizes a hidden one to its text.
    void chooseColumnFromMenu(ClassicColumn column);
    // The widest text of `column` among the rows on screen, in pixels of the row font.
    int widestTextOnScreen(ClassicColumn column) const;

    void onToggleBookmark();
    void onNextBookmark();
    void onPreviousBookmark();
    void onClearBookmarks();
    void onFind();
    void onFindNext();
    void onFindPrevious();
    // What follows the find dialog's OK: the scan in the background, then its box and
    // the first hit selected.
    void runSearch(const ClassicFindCriteria& criteria, bool hasCriteria, bool markAll);
    // The search ended: the marks, the first hit and the commands follow its results.
    void showSearchResults(bool markAll);
    CFindDlg* findDialog();
    // The identifier statistics, opened on the identifier of the selected row.
    void onIdentifierStatistics();
    IdentifierStatisticsDialog* statisticsDialog() const { return m_statisticsDialog; }
    // The list's context menu: the commands that act on the row under the pointer.
    void fillListMenu(QMenu& menu);
    void onSaveAsAscii();
    // Writes the ".sbt" report to `fileName`; false when the file cannot be written.
    bool saveAsAscii(const QString& fileName);
    void onPrint();
    void onPrintPreview();
    // Prints onto `printer`; returns the pages printed.
    int printTo(QPrinter* printer);

    // Rows, times or marks of the document changed.
    void refreshFromDocument();
    // The read has published `rows` rows so far.
    void takeRows(int rows);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    CAnalyzerDoc& doc() const;
    void createActions();
    QAction* addCommand(ViewCommand command, const QString& text, const QKeySequence& shortcut,
                        const std::function<void()>& handler);
    void updateActions();
    void updateGeometries();
    void updateScrollBars();
    void applyColumnWidths();
    void onSectionResized(int logical, int oldSize, int newSize);
    void showColumnMenu(const QPoint& globalPos);
    int fullRowsOnScreen() const;
    void ensureVisible(long long row);

    ClassicDocument& m_document;
    StatusSink* m_status;
    ClassicListModel* m_model;
    QHeaderView* m_header;
    QFont m_font;
    std::array<int, ClassicColumnCount> m_widths{};
    bool m_applyingWidths = false;
    int m_wheelRemainder = 0;
    std::array<QAction*, static_cast<int>(ViewCommand::IdentifierStatistics) + 1> m_actions{};
    CFindDlg* m_findDialog = nullptr;
    IdentifierStatisticsDialog* m_statisticsDialog = nullptr;
};

} // namespace zdtui

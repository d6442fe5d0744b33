#pragma once

#include "app/UiDocument.h"
#include "app/UniformRowList.h"
#include "classic/ClassicRowFormatter.h"
#include "classic/ClassicSearch.h"

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
class CAnaView final : public UniformRowList, public CommandView {
    Q_OBJECT
public:
    static constexpr int MarkColumnWidth = 24;

    CAnaView(ClassicDocument& document, StatusSink* status, QWidget* parent = nullptr);
    ~CAnaView() override;

    QAction* commandAction(ViewCommand command) override;
    int menuResource() const override;
    void activateView() override;

    ClassicListModel* model() const { return m_model; }
    long long selectedRow() const override;
    void selectRow(long long row, bool scroll = true) override;

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
    int listRowCount() const override;
    void paintRow(QPainter& painter, int row, const QRect& rowRect) override;
    void fullRowsOnScreenChanged(int rows) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    CAnalyzerDoc& doc() const;
    void createActions();
    QAction* addCommand(ViewCommand command, const QString& text, const QKeySequence& shortcut,
                        const std::function<void()>& handler);
    void updateActions();
    void applyColumnWidths();
    void onSectionResized(int logical, int oldSize, int newSize);
    void showColumnMenu(const QPoint& globalPos);

    ClassicDocument& m_document;
    StatusSink* m_status;
    ClassicListModel* m_model;
    std::array<int, ClassicColumnCount> m_widths{};
    bool m_applyingWidths = false;
    std::array<QAction*, static_cast<int>(ViewCommand::IdentifierStatistics) + 1> m_actions{};
    CFindDlg* m_findDialog = nullptr;
    IdentifierStatisticsDialog* m_statisticsDialog = nullptr;
};

} // namespace zdtui

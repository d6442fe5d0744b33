#pragma once

#include "app/UniformRowList.h"
#include "export/ConversionProxy.h"
#include "xmldoc/PrintPrintPreviewProxy.h"

#include <QColor>
#include <QFont>
#include <QMap>
#include <QPixmap>

#include <array>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

class QMenu;

namespace ZDTAnalyzer {
class BaseDoc;
}

namespace zdtui {

using ZDTAnalyzer::Conversion;
using ZDTAnalyzer::ConversionProxy;

class AdornedListModel;

// The list of rows that the XML families share: a virtual list over the document's swap
// file with marks for find results and bookmarks, a colour per row, a line column,
// columns that grow to the widest text drawn, a context menu and command tables that the
// concrete view fills. Save As exports and Print prints through proxies that refuse
// until the concrete view binds a target.
class AdornedListView : public UniformRowList {
    Q_OBJECT
public:
    enum class TextAlignment { Left = 0, Right = 1 };

    // Command ids of the list and of its update table.
    static constexpr int ToggleBookmarkId = 32781;
    static constexpr int ToggleBookmarkDialogId = 40201;
    static constexpr int NextBookmarkId = 32782;
    static constexpr int PreviousBookmarkId = 32783;
    static constexpr int ClearBookmarksId = 32779;
    static constexpr int FilterId = 40020;
    static constexpr int FindNextId = 32775;
    static constexpr int FindPreviousId = 32703;
    static constexpr int FirstColumnToggleId = 40030;
    static constexpr int LastColumnToggleId = 40034;
    static constexpr int SaveId = 57603;
    static constexpr int SaveAsId = 57604;
    static constexpr int PrintId = 57607;
    static constexpr int PrintPreviewId = 57609;
    static constexpr int PrintSetupId = 57606;
    static constexpr int ColumnWidthEntries = 30;
    // Column 0 must be wider than this for the marks to be drawn.
    static constexpr int MarkColumnMinimum = 34;

    static constexpr const char* ContextMenuFailedText = "Fatal error while performing right click context menu.";
    static constexpr const char* SaveAsFailedText = "Fatal error occured while saving document";
    static constexpr const char* PrintFailedText = "Print did not worked";
    static constexpr const char* PrintPreviewFailedText = "Print preview did not worked";
    static constexpr const char* UpdateFailedText = "Fatal error while processing update event.";
    static constexpr const char* DrawFailedText = "Fatal error while performing view draw item operation.";
    static constexpr const char* ReplaceQuestionText = "%1 already exists.\nDo you want to replace it?";
    static constexpr const char* SaveAsTitle = "Save As";

    struct SaveAsChoice {
        QString fileName;
        int filterIndex = 1; // 1 to 4, as the filters stand
    };
    // Asks for the export's name; nothing means the user gave up.
    using SaveAsChooser = std::function<std::optional<SaveAsChoice>(QWidget* parent, const QString& proposedName)>;

    using CommandRoutine = std::function<void()>;
    using UpdateRoutine = std::function<void(QAction&)>;

    AdornedListView(ZDTAnalyzer::BaseDoc& document, QWidget* parent = nullptr);
    ~AdornedListView() override;

    // Builds the list from the concrete view's answers; call once after construction.
    void initialUpdate();
    // The document changed: new row count, and the jump row if one is asked for.
    void OnUpdate();

    ZDTAnalyzer::BaseDoc& document() const { return m_document; }
    AdornedListModel* listModel() const { return m_model; }
    // The row most recently selected, -1 with none.
    int selectionMark() const;
    int itemCount() const;
    // Selects and focuses `row` alone and brings it into sight.
    void selectListRow(int row);

    // Widths as drawn; 0 for a hidden column.
    int listColumnWidth(int column) const;
    void setListColumnWidth(int column, int width);
    // The widest text drawn so far in a column, plus its margin.
    int columnWidthEntry(int column) const;
    void setColumnWidthEntry(int column, int width);
    // What a header divider double click does to `column`.
    void applyColumnWidthEntry(int column);

    const std::vector<QColor>& textColors() const { return m_textColors; }
    const QFont& listFont() const { return m_font; }
    Qt::Alignment columnAlignment(int column) const;
    const std::array<QPixmap, 2>& markImages() const { return m_images; }

    // The command tables: every entry with the id runs, from the last entered to the first.
    void addCommand(int id, CommandRoutine routine);
    void addUpdateCommand(int id, UpdateRoutine routine);
    void runCommand(int id);
    // The action of a command id; it runs the table and its state follows the update table.
    QAction* commandActionById(int id);
    void updateCommands();

    // The context menu as the user opens it; guarded.
    void showContextMenu(const QPoint& globalPos);
    // The menu as loaded; its first submenu is what opens.
    QMenu* contextMenu() const { return m_contextMenu; }
    QMenu* contextSubMenu() const;

    void setSaveAsChooser(SaveAsChooser chooser) { m_saveAsChooser = std::move(chooser); }
    void onSaveAs();
    void onPrint();
    void onPrintPreview();
    ConversionProxy& conversionProxy() { return m_conversion; }
    PrintPrintPreviewProxy& printProxy() { return m_print; }

    // Draws one cell as the owner-drawn list draws it.
    void drawCell(QPainter& painter, const QRect& cell, int row, int column, bool selected);
    // The text the model gives a cell: rowFlags, the line number, then fields 1 up.
    QString cellText(int row, int column);

Q_SIGNALS:
    // A view-level failure box was shown (draw failures show theirs deferred).
    void failureShown(const QString& text);

protected:
    // What the concrete view supplies, called in this order by initialUpdate().
    virtual void prepareList() {}
    // Returns the column titles and widths.
    virtual std::vector<std::pair<QString, int>> insertColumns() = 0;
    virtual void getTextColors(std::vector<QColor>& colors) = 0;
    virtual void getListFont(QFont& font) = 0;
    virtual void getColumnAlignments(std::vector<TextAlignment>& alignments) = 0;
    virtual void loadImages(std::array<QPixmap, 2>& images) = 0;
    virtual void loadContextMenu(QMenu& menu) = 0;
    virtual void bindConversion(ConversionProxy& proxy) = 0;
    virtual void bindPrint(PrintPrintPreviewProxy& proxy) = 0;
    virtual void updateContextMenu(QMenu& menu) = 0;
    virtual void executeContextMenuCommand(int id) = 0;
    // The text of field `field` of `row` (0 is rowFlags).
    virtual QString getDisplayText(int row, int field) = 0;

    // The document's path name, for exports and printing.
    virtual QString documentPathName() const = 0;
    // Runs the export of `input` to `output` with `conversion`, which has a target.
    virtual void startExport(Conversion& conversion, ZDTAnalyzer::ExportFormat format, const std::string& input,
                             const std::string& output) = 0;
    // A find mark and a bookmark, 16 by 16, for views without images of their own.
    static std::array<QPixmap, 2> DefaultMarkImages();

    int listRowCount() const override;
    void paintRow(QPainter& painter, int row, const QRect& rowRect) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void showFailure(const QString& text);

private:
    void raiseWidthEntry(int column, int textWidth);
    void reportDrawFailure();
    std::optional<SaveAsChoice> chooseSaveAsName(const QString& proposedName);
    void exportTo(int filterIndex, const std::string& input, const std::string& output);

    ZDTAnalyzer::BaseDoc& m_document;
    AdornedListModel* m_model;
    QFont m_font;
    std::vector<QColor> m_textColors;
    // Kept between rows: a colour digit outside the table leaves it in force.
    QColor m_textColor = Qt::black;
    QMenu* m_contextMenu;
    std::array<QPixmap, 2> m_images;
    std::vector<int> m_columnWidths = std::vector<int>(ColumnWidthEntries, 0);
    std::vector<Qt::Alignment> m_columnFormats;
    ConversionProxy m_conversion;
    PrintPrintPreviewProxy m_print;
    std::vector<std::pair<int, CommandRoutine>> m_commands;
    std::vector<std::pair<int, UpdateRoutine>> m_updateCommands;
    QMap<int, QAction*> m_actions;
    SaveAsChooser m_saveAsChooser;
    bool m_drawFailurePending = false;
};

} // namespace zdtui

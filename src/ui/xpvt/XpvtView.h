#pragma once

#include "app/UiDocument.h"
#include "xmldoc/AdornedListView.h"

#include <QMenu>
#include <QPointer>

namespace ZDTAnalyzer {
class XpvtDoc;
}

namespace zdtui {

class XpvtUiDocument;

// The list of a process value trace. Columns, menus and commands follow the document's
// schema (7.01 or 7.02), asked anew each time; since the window is made before the file
// is read, the list is laid out again once the header has told the schema.
class XpvtView final : public AdornedListView, public CommandView {
    Q_OBJECT
public:
    static constexpr int ContextMenu701 = 103;
    static constexpr int ContextMenu702 = 135;
    static constexpr int MenuResourceId = 139;
    static constexpr int FindId = 32774;
    static constexpr int SessionInformationId = 1699;
    static constexpr int DocumentFilterId = 32787;
    static constexpr int BookmarkListId = 32791;

    // The column items of the context menu and of "&Columns", by command id.
    static constexpr int EventItemId = 40030;
    static constexpr int LogicalLinkItemId = 40007;
    static constexpr int CanIdItemId = 40008;
    static constexpr int AbsTimeItemId = 40009;
    static constexpr int LocationItemId = 40048;
    static constexpr int IdItemId = 40049;
    static constexpr int TimeItemId = 40050;
    static constexpr int DescriptionItemId = 40031;
    static constexpr int ValueItemId = 40034;
    static constexpr int UnitItemId = 40033;
    static constexpr int RangeInfoItemId = 40012;

    static constexpr const char* AutobookmarkText = "Autobookmark";
    // The sentence is shared with the snapshot view, word for word.
    static constexpr const char* InitialUpdateFailedText = "Fatal error while processing snp view initial update event.";
    static constexpr const char* SettingsSection = "XPVT";
    static constexpr const char* ColumnSettingsKey = "ColumnSettings";

    XpvtView(XpvtUiDocument& document, QWidget* parent = nullptr);

    // Base initial update, then the command tables and the row count; guarded.
    void initialUpdate();
    // The document changed: a new schema lays the list out again, then the rows.
    void onDocumentChanged();

    bool is702() const;
    // The column a column item toggles in a list of the given schema; -1 for none.
    static int ColumnOfMenuId(int id, bool schema702);

    QAction* commandAction(ViewCommand command) override;
    int menuResource() const override { return MenuResourceId; }
    void activateView() override;
    void fillColumnsMenu(QMenu* columns) override;

    void executeContextMenuCommand(int id) override;
    void updateContextMenu(QMenu& menu) override;

    // The go-to commands by id (32783, 32782, 32775, 32703).
    void goTo(int id);
    void toggleBookmark();
    void toggleBookmarkWithDialog();

    bool initialised() const { return m_initialised; }
    // The schema the columns were laid out for.
    bool laidOutFor702() const { return m_laidOutFor702; }

protected:
    std::vector<std::pair<QString, int>> insertColumns() override;
    void getTextColors(std::vector<QColor>& colors) override;
    void getListFont(QFont& font) override;
    void getColumnAlignments(std::vector<TextAlignment>& alignments) override;
    void loadImages(std::array<QPixmap, 2>& images) override;
    void loadContextMenu(QMenu& menu) override;
    void bindConversion(ConversionProxy& proxy) override;
    void bindPrint(PrintPrintPreviewProxy& proxy) override;
    QString getDisplayText(int row, int field) override;
    QString documentPathName() const override;

private:
    ZDTAnalyzer::XpvtDoc& doc() const;
    void layOut();
    void enterCommands();
    void enterColumnCommands();
    void enterDocumentCommands();
    bool noRowSelected();

    XpvtUiDocument& m_uiDocument;
    // The "&Columns" popup this view filled last; refilled when the schema turns out to
    // be 7.02 while the popup is still this view's.
    QPointer<QMenu> m_columnsMenu;
    bool m_initialised = false;
    bool m_laidOutFor702 = false;
};

}  // namespace zdtui

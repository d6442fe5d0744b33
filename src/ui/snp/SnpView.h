#pragma once

#include "app/UiDocument.h"
#include "xmldoc/AdornedListView.h"

namespace ZDTAnalyzer {
class SnpDoc;
}

namespace zdtui {

class SnpUiDocument;

// The list of a snapshot file: line, event, description, name, value and unit, with
// the bookmark and find-result commands and the column menu.
class SnpView final : public AdornedListView, public CommandView {
    Q_OBJECT
public:
    static constexpr int ContextMenuResource = 121;
    static constexpr int MenuResourceId = 111;
    static constexpr int FindId = 32774;
    static constexpr int SessionInformationId = 40029;
    static constexpr int BookmarkListId = 32791;
    static constexpr const char* AutobookmarkText = "Autobookmark";
    static constexpr const char* InitialUpdateFailedText = "Fatal error while processing snp view initial update event.";

    SnpView(SnpUiDocument& document, QWidget* parent = nullptr);

    // Base initial update, then the command tables and the row count; guarded.
    void initialUpdate();

    QAction* commandAction(ViewCommand command) override;
    int menuResource() const override;
    void activateView() override;
    // False while another document's window is the current one of the frame.
    bool isActiveView() const;

    // The column that a context menu id toggles; the last two labels are crossed.
    static int ColumnOfMenuId(int id);
    void executeContextMenuCommand(int id) override;
    void updateContextMenu(QMenu& menu) override;

    // The go-to commands by id (32783, 32782, 32775, 32703).
    void goTo(int id);
    void toggleBookmark();
    void toggleBookmarkWithDialog();

    bool initialised() const { return m_initialised; }

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
    ZDTAnalyzer::SnpDoc& doc() const;
    void enterCommands();
    void toggleBookmarkAt(int row, const std::string& name, const std::string& description);

    SnpUiDocument& m_uiDocument;
    bool m_initialised = false;
};

}  // namespace zdtui

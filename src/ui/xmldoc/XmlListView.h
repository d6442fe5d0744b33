#pragma once

#include "app/UiDocument.h"
#include "export/PrintPrintPreviewImpl.h"
#include "xmldoc/AdornedListView.h"

#include <string>

namespace zdtui {

class XmlUiDocument;

// The list of an XML document with what its families share: the bookmark and find-result
// commands with their boxes, the document's commands (find, session information, bookmark
// list), the commands that wait for the end of the read, and the command table the frame
// asks for. The family adds its columns, colours and menus.
class XmlListView : public AdornedListView, public CommandView {
    Q_OBJECT
public:
    static constexpr int FindId = 32774;
    static constexpr int BookmarkListId = 32791;
    static constexpr const char* AutobookmarkText = "Autobookmark";
    // Both families show this sentence, word for word.
    static constexpr const char* InitialUpdateFailedText =
        "Fatal error while processing snp view initial update event.";

    // The ids and texts by which the families differ.
    struct Family {
        int menuResource;
        int sessionInformationId;
        int filterId;
        const char* noRowSelectedText;
    };

    XmlListView(XmlUiDocument& document, const Family& family, QWidget* parent = nullptr);

    // The list's layout, the command tables and the row count; guarded.
    void initialUpdate();
    // The document changed: the rows, marks and command states follow it.
    virtual void onDocumentChanged();

    QAction* commandAction(ViewCommand command) override;
    int menuResource() const override { return m_family.menuResource; }
    void activateView() override;
    // False while another document's window is the current one of the frame.
    bool isActiveView() const;

    // The go-to commands by id (32783, 32782, 32775, 32703).
    void goTo(int id);
    void toggleBookmark();
    void toggleBookmarkWithDialog();

    bool initialised() const { return m_initialised; }

protected:
    // Lays the list out from the family's answers.
    virtual void layOut();
    // The family's own commands; entered after the waits for the read, so they may only
    // disable what those leave alone.
    virtual void enterFamilyCommands() = 0;

    void getListFont(QFont& font) override;
    void loadImages(std::array<QPixmap, 2>& images) override;
    void bindConversion(ConversionProxy& proxy) override;
    void bindPrint(PrintPrintPreviewProxy& proxy) override;
    QString getDisplayText(int row, int field) override;
    QString documentPathName() const override;
    void startExport(Conversion& conversion, ZDTAnalyzer::ExportFormat format, const std::string& input,
                     const std::string& output) override;
    // Runs a print's conversion as the document's operation, its boxes on this list.
    PrintPrintPreviewImpl::OperationRunner printOperationRunner();

    XmlUiDocument& uiDocument() const { return m_uiDocument; }

private:
    void enterCommands();
    void enterMarkCommands();
    // Shows the box and answers true when no row is selected.
    bool noRowSelected();

    XmlUiDocument& m_uiDocument;
    Family m_family;
    bool m_initialised = false;
};

} // namespace zdtui

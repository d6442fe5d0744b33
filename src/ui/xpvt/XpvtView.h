#pragma once

#include "export/PrintPrintPreviewImpl.h"
#include "export/XpvtNewConversion.h"
#include "export/XpvtOldConversion.h"
#include "xmldoc/XmlListView.h"

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
class XpvtView final : public XmlListView {
    Q_OBJECT
public:
    static constexpr int ContextMenu701 = 103;
    static constexpr int ContextMenu702 = 135;
    static constexpr int MenuResourceId = 139;
    static constexpr int SessionInformationId = 1699;
    static constexpr int DocumentFilterId = 32787;

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

    static constexpr const char* SettingsSection = "XPVT";
    static constexpr const char* ColumnSettingsKey = "ColumnSettings";

    XpvtView(XpvtUiDocument& document, QWidget* parent = nullptr);

    // The document changed: a new schema lays the list out again, then the rows.
    void onDocumentChanged() override;

    bool is702() const;
    // The column a column item toggles in a list of the given schema; -1 for none.
    static int ColumnOfMenuId(int id, bool schema702);

    void fillColumnsMenu(QMenu* columns) override;
    void executeContextMenuCommand(int id) override;
    void updateContextMenu(QMenu& menu) override;

    // The schema the columns were laid out for.
    bool laidOutFor702() const { return m_laidOutFor702; }

protected:
    void layOut() override;
    void enterFamilyCommands() override;
    std::vector<std::pair<QString, int>> insertColumns() override;
    void getTextColors(std::vector<QColor>& colors) override;
    void getColumnAlignments(std::vector<TextAlignment>& alignments) override;
    void loadContextMenu(QMenu& menu) override;
    // Bound again whenever the list is laid out for a newly learnt schema.
    void bindConversion(ConversionProxy& proxy) override;
    void bindPrint(PrintPrintPreviewProxy& proxy) override;

private:
    ZDTAnalyzer::XpvtDoc& doc() const;
    void enterColumnCommands();

    XpvtUiDocument& m_uiDocument;
    // The "&Columns" popup this view filled last; refilled when the schema turns out to
    // be 7.02 while the popup is still this view's.
    QPointer<QMenu> m_columnsMenu;
    bool m_laidOutFor702 = false;
    ZDTAnalyzer::XpvtOldConversion m_conversion701;
    ZDTAnalyzer::XpvtNewConversion m_conversion702;
    PrintPrintPreviewImpl m_printing701;
    PrintPrintPreviewImpl m_printing702;
};

} // namespace zdtui

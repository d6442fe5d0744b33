#pragma once

#include "export/PrintPrintPreviewImpl.h"
#include "export/SnpConversion.h"
#include "xmldoc/XmlListView.h"

namespace zdtui {

class SnpUiDocument;

// The list of a snapshot file: line, event, description, name, value and unit, with
// the column menu.
class SnpView final : public XmlListView {
    Q_OBJECT
public:
    static constexpr int ContextMenuResource = 121;
    static constexpr int MenuResourceId = 111;
    static constexpr int SessionInformationId = 40029;

    SnpView(SnpUiDocument& document, QWidget* parent = nullptr);

    // The column that a context menu id toggles; the last two labels are crossed.
    static int ColumnOfMenuId(int id);
    void executeContextMenuCommand(int id) override;
    void updateContextMenu(QMenu& menu) override;

protected:
    void enterFamilyCommands() override;
    std::vector<std::pair<QString, int>> insertColumns() override;
    void getTextColors(std::vector<QColor>& colors) override;
    void getColumnAlignments(std::vector<TextAlignment>& alignments) override;
    void loadContextMenu(QMenu& menu) override;
    void bindConversion(ConversionProxy& proxy) override;
    void bindPrint(PrintPrintPreviewProxy& proxy) override;

private:
    ZDTAnalyzer::SnpConversion m_snpConversion;
    PrintPrintPreviewImpl m_printing;
};

} // namespace zdtui

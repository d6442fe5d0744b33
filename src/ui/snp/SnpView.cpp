#include "snp/SnpView.h"

#include "export/DesktopConversionSettings.h"
#include "snp/SnpDoc.h"
#include "snp/SnpUiDocument.h"

#include <QAction>
#include <QMenu>

namespace zdtui {

SnpView::SnpView(SnpUiDocument& document, QWidget* parent)
    : XmlListView(document,
                  Family{MenuResourceId, SessionInformationId, FilterId, ZDTAnalyzer::SnpDoc::NoRowSelectedText},
                  parent),
      m_snpConversion(DesktopConversionSettings()), m_printing(m_snpConversion, printOperationRunner(), this) {}

void SnpView::bindConversion(ConversionProxy& proxy) {
    proxy.setTarget(&m_snpConversion);
}

void SnpView::bindPrint(PrintPrintPreviewProxy& proxy) {
    proxy.setTarget(&m_printing);
}

void SnpView::enterFamilyCommands() {
    addCommand(FilterId, [this] { static_cast<SnpUiDocument&>(uiDocument()).onFilter(this); });
    for (int id = FirstColumnToggleId; id <= LastColumnToggleId; ++id) {
        addCommand(id, [this, id] { executeContextMenuCommand(id); });
        addUpdateCommand(id, [this, id](QAction& action) {
            action.setCheckable(true);
            action.setChecked(listColumnWidth(ColumnOfMenuId(id)) != 0);
            action.setEnabled(true);
        });
    }
}

std::vector<std::pair<QString, int>> SnpView::insertColumns() {
    return {{QString(), 40},
            {QStringLiteral("Line"), 40},
            {QStringLiteral("Event"), 80},
            {QStringLiteral("Description"), 160},
            {QStringLiteral("Name"), 160},
            {QStringLiteral("Value"), 160},
            {QStringLiteral("Unit"), 160}};
}

void SnpView::getTextColors(std::vector<QColor>& colors) {
    colors = {QColor(0, 0, 0), QColor(0, 0xAA, 0), QColor(0, 0, 0xAA), QColor(0xAA, 0, 0)};
}

void SnpView::getColumnAlignments(std::vector<TextAlignment>& alignments) {
    alignments.assign(7, TextAlignment::Left);
    alignments[1] = TextAlignment::Right;
}

void SnpView::loadContextMenu(QMenu& menu) {
    static const char* const labels[] = {"EVENT", "DESCRIPTION", "NAME", "UNIT", "VALUE"};
    QMenu* events = menu.addMenu(QStringLiteral("EVENTS"));
    for (int id = FirstColumnToggleId; id <= LastColumnToggleId; ++id) {
        QAction* item = events->addAction(QString::fromUtf8(labels[id - FirstColumnToggleId]));
        item->setData(id);
        item->setCheckable(true);
    }
}

void SnpView::updateContextMenu(QMenu& menu) {
    for (QAction* item : menu.actions()) {
        const int column = ColumnOfMenuId(item->data().toInt());
        if (column >= 0)
            item->setChecked(listColumnWidth(column) != 0);
    }
}

int SnpView::ColumnOfMenuId(int id) {
    if (id < FirstColumnToggleId || id > LastColumnToggleId)
        return -1;
    return 2 + (id - FirstColumnToggleId);
}

void SnpView::executeContextMenuCommand(int id) {
    const int column = ColumnOfMenuId(id);
    if (column < 0)
        return;
    const int width = listColumnWidth(column);
    if (width != 0) {
        // Remember the width the user had, unless a drawn text already set the entry.
        if (columnWidthEntry(column) == 0)
            setColumnWidthEntry(column, width);
        setListColumnWidth(column, 0);
    } else {
        applyColumnWidthEntry(column);
    }
}

} // namespace zdtui

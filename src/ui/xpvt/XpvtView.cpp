#include "xpvt/XpvtView.h"

#include "export/DesktopConversionSettings.h"

#include "xpvt/XpvtColumnSettings.h"
#include "xpvt/XpvtDoc.h"
#include "xpvt/XpvtUiDocument.h"

#include <QAction>
#include <QMenu>
#include <QSettings>

#include <iterator>
#include <span>

namespace zdtui {
namespace {

using ZDTAnalyzer::XpvtDoc;

struct ColumnItem {
    int id;
    const char* contextLabel; // the context menu's item
    const char* mainLabel;    // the item of "&Columns" in the main menu
    int column;
};

const ColumnItem Items701[] = {
    {XpvtView::EventItemId, "Event", "EVENT", 2},
    {XpvtView::LogicalLinkItemId, "LogicalLink", "LOGICALLINK", 3},
    {XpvtView::CanIdItemId, "CANID[hex]", "CANID", 4},
    {XpvtView::AbsTimeItemId, "Abs.Time[ms]", "ABSTIME", 5},
    {XpvtView::DescriptionItemId, "Description", "DESCRIPTION", 6},
    {XpvtView::ValueItemId, "Value", "VALUE", 7},
    {XpvtView::RangeInfoItemId, "RangeInfo", "RANGEINFO", 8},
};

const ColumnItem Items702[] = {
    {XpvtView::EventItemId, "Event", "EVENT", 2},
    {XpvtView::LogicalLinkItemId, "LogicalLink", "LOGICAL LINK", 3},
    {XpvtView::LocationItemId, "Location", "LOCATION", 4},
    {XpvtView::IdItemId, "ID", "ID", 5},
    {XpvtView::TimeItemId, "Time", "TIME", 6},
    {XpvtView::DescriptionItemId, "Description", "DESCRIPTION", 7},
    {XpvtView::ValueItemId, "Value", "VALUE", 8},
    {XpvtView::UnitItemId, "Unit", "UNIT", 9},
    {XpvtView::RangeInfoItemId, "RangeInfo", "RANGEINFO", 10},
};

// Every id either schema uses, so that the command table can be entered before the
// schema is known.
const int AllItemIds[] = {XpvtView::EventItemId,   XpvtView::LogicalLinkItemId, XpvtView::CanIdItemId,
                          XpvtView::AbsTimeItemId, XpvtView::LocationItemId,    XpvtView::IdItemId,
                          XpvtView::TimeItemId,    XpvtView::DescriptionItemId, XpvtView::ValueItemId,
                          XpvtView::UnitItemId,    XpvtView::RangeInfoItemId};

std::span<const ColumnItem> ItemsOf(bool schema702) {
    return schema702 ? std::span<const ColumnItem>(Items702) : std::span<const ColumnItem>(Items701);
}

const char* const Titles701[] = {
    "", "Line", "Event", "LogicalLink", "CANID[hex]", "Abs.Time[ms]", "Description", "Value", "RangeInfo"};
const int Widths701[] = {35, 40, 80, 160, 50, 50, 200, 200, 120};
const char* const Titles702[] = {"",     "Line",        "Event", "LogicalLink", "Location", "ID",
                                 "Time", "Description", "Value", "Unit",        "RangeInfo"};

// Names the view that filled a "&Columns" popup last.
const char* const ColumnsOwnerProperty = "xpvtColumnsOwner";

std::string StoredColumnSettings() {
    QSettings settings(QStringLiteral("Norvika"), QStringLiteral("ZDT7"));
    settings.beginGroup(QString::fromUtf8(XpvtView::SettingsSection));
    const QString text = settings
                             .value(QString::fromUtf8(XpvtView::ColumnSettingsKey),
                                    QString::fromUtf8(ZDTAnalyzer::XpvtColumnSettings::DefaultText))
                             .toString();
    return text.toStdString();
}

} // namespace

XpvtView::XpvtView(XpvtUiDocument& document, QWidget* parent)
    : XmlListView(document, Family{MenuResourceId, SessionInformationId, DocumentFilterId, XpvtDoc::NoRowSelectedText},
                  parent),
      m_uiDocument(document), m_conversion701(DesktopConversionSettings()),
      m_conversion702(DesktopConversionSettings()), m_printing701(m_conversion701, printOperationRunner(), this),
      m_printing702(m_conversion702, printOperationRunner(), this) {}

void XpvtView::bindConversion(ConversionProxy& proxy) {
    proxy.setTarget(is702() ? static_cast<Conversion*>(&m_conversion702) : &m_conversion701);
}

void XpvtView::bindPrint(PrintPrintPreviewProxy& proxy) {
    proxy.setTarget(is702() ? &m_printing702 : &m_printing701);
}

XpvtDoc& XpvtView::doc() const {
    return m_uiDocument.xpvtDoc();
}

bool XpvtView::is702() const {
    return doc().is702();
}

// Columns, alignments, colours and the context menu of the schema known now. The widths
// drawn so far belong to the old columns and go with them.
void XpvtView::layOut() {
    m_laidOutFor702 = is702();
    for (int column = 0; column < ColumnWidthEntries; ++column)
        setColumnWidthEntry(column, 0);
    XmlListView::layOut();
}

void XpvtView::onDocumentChanged() {
    if (initialised() && is702() != m_laidOutFor702) {
        try {
            layOut();
        } catch (...) {
            showFailure(InitialUpdateFailedText);
        }
        if (m_columnsMenu != nullptr && m_columnsMenu->property(ColumnsOwnerProperty).value<QObject*>() == this)
            fillColumnsMenu(m_columnsMenu);
    }
    XmlListView::onDocumentChanged();
}

void XpvtView::enterFamilyCommands() {
    // A 7.02 list keeps find disabled; a 7.01 list leaves it to the document.
    addUpdateCommand(FindId, [this](QAction& action) {
        if (is702())
            action.setEnabled(false);
    });
    addCommand(DocumentFilterId, [this] { m_uiDocument.onFilter(this); });
    enterColumnCommands();
}

void XpvtView::enterColumnCommands() {
    for (int id : AllItemIds) {
        addCommand(id, [this, id] { executeContextMenuCommand(id); });
        addUpdateCommand(id, [this, id](QAction& action) {
            const int column = ColumnOfMenuId(id, is702());
            action.setCheckable(true);
            action.setChecked(column >= 0 && listColumnWidth(column) != 0);
            action.setEnabled(column >= 0);
        });
    }
}

std::vector<std::pair<QString, int>> XpvtView::insertColumns() {
    std::vector<std::pair<QString, int>> columns;
    if (!is702()) {
        for (std::size_t i = 0; i < std::size(Titles701); ++i)
            columns.emplace_back(QString::fromUtf8(Titles701[i]), Widths701[i]);
        return columns;
    }
    // Eleven columns take the first eleven widths; the twelfth is read and never used.
    const std::vector<int> widths = ZDTAnalyzer::XpvtColumnSettings::widths(StoredColumnSettings());
    for (std::size_t i = 0; i < std::size(Titles702); ++i)
        columns.emplace_back(QString::fromUtf8(Titles702[i]), widths[i]);
    return columns;
}

// The colour digit of a row: 0 response parameters, 1 primitives, 2 the rest, 3 errors.
void XpvtView::getTextColors(std::vector<QColor>& colors) {
    colors = {QColor(0, 0, 0xFF), QColor(0, 0x80, 0), QColor(0, 0, 0), QColor(0xFF, 0, 0)};
}

void XpvtView::getColumnAlignments(std::vector<TextAlignment>& alignments) {
    alignments.assign(is702() ? 11 : 9, TextAlignment::Left);
    alignments[1] = TextAlignment::Right;
    if (is702())
        alignments[5] = TextAlignment::Right;
}

void XpvtView::loadContextMenu(QMenu& menu) {
    // Laid out again once the schema is known: the old popup goes first.
    menu.clear();
    QMenu* popup = menu.addMenu(is702() ? QStringLiteral("XPVT_NEW") : QStringLiteral("Events"));
    popup->setProperty("menuResource", is702() ? ContextMenu702 : ContextMenu701);
    for (const ColumnItem& item : ItemsOf(is702())) {
        QAction* action = popup->addAction(QString::fromUtf8(item.contextLabel));
        action->setData(item.id);
        action->setCheckable(true);
    }
}

void XpvtView::updateContextMenu(QMenu& menu) {
    for (QAction* action : menu.actions()) {
        const int column = ColumnOfMenuId(action->data().toInt(), is702());
        if (column >= 0)
            action->setChecked(listColumnWidth(column) != 0);
    }
}

int XpvtView::ColumnOfMenuId(int id, bool schema702) {
    for (const ColumnItem& item : ItemsOf(schema702)) {
        if (item.id == id)
            return item.column;
    }
    return -1;
}

// Only a 7.02 list keeps the width it hides; a 7.01 column comes back with whatever
// the drawing stored for it.
void XpvtView::executeContextMenuCommand(int id) {
    const bool schema702 = is702();
    const int column = ColumnOfMenuId(id, schema702);
    if (column < 0)
        return;
    const int width = listColumnWidth(column);
    if (width == 0) {
        applyColumnWidthEntry(column);
        return;
    }
    if (schema702 && columnWidthEntry(column) == 0)
        setColumnWidthEntry(column, width);
    setListColumnWidth(column, 0);
}

void XpvtView::fillColumnsMenu(QMenu* columns) {
    if (columns == nullptr)
        return;
    columns->clear();
    columns->setProperty(ColumnsOwnerProperty, QVariant::fromValue<QObject*>(this));
    m_columnsMenu = columns;
    for (const ColumnItem& item : ItemsOf(is702())) {
        QAction* action = commandActionById(item.id);
        action->setText(QString::fromUtf8(item.mainLabel));
        columns->addAction(action);
    }
    // The check marks follow the widths as they are when the menu opens.
    connect(columns, &QMenu::aboutToShow, this, &AdornedListView::updateCommands, Qt::UniqueConnection);
    columns->setEnabled(!columns->actions().isEmpty());
    updateCommands();
}

} // namespace zdtui

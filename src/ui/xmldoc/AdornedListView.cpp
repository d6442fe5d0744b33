#include "xmldoc/AdornedListView.h"

#include "app/Boxes.h"
#include "xmldoc/AdornedListModel.h"
#include "xmldoc/BaseDoc.h"
#include "xmldoc/SaveAsName.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QTimer>

namespace zdtui {
namespace {

std::string LocalPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

} // namespace

AdornedListView::AdornedListView(ZDTAnalyzer::BaseDoc& document, QWidget* parent)
    : UniformRowList(parent), m_document(document),
      m_model(new AdornedListModel([this](int row, int column) { return cellText(row, column); }, this)),
      m_contextMenu(new QMenu(this)) {
    setHeaderModel(m_model);
    header()->setHighlightSections(false);
    connect(header(), &QHeaderView::sectionHandleDoubleClicked, this, &AdornedListView::applyColumnWidthEntry);
    connect(this, &UniformRowList::selectedRowChanged, this, &AdornedListView::updateCommands);
    addCommand(SaveAsId, [this] { onSaveAs(); });
    addCommand(PrintId, [this] { onPrint(); });
    addCommand(PrintPreviewId, [this] { onPrintPreview(); });
}

AdornedListView::~AdornedListView() = default;

void AdornedListView::initialUpdate() {
    prepareList();
    const std::vector<std::pair<QString, int>> columns = insertColumns();
    QStringList titles;
    for (const auto& column : columns)
        titles << column.first;
    m_model->setColumnTitles(titles);
    for (int column = 0; column < int(columns.size()); ++column)
        setListColumnWidth(column, columns[column].second);
    getTextColors(m_textColors);
    getListFont(m_font);
    setRowFont(m_font);
    // The marks are 16 pixels high.
    setLinePadding(4, 18);
    std::vector<TextAlignment> alignments;
    getColumnAlignments(alignments);
    m_columnFormats.clear();
    for (TextAlignment alignment : alignments)
        m_columnFormats.push_back(alignment == TextAlignment::Right ? Qt::AlignRight : Qt::AlignLeft);
    loadImages(m_images);
    loadContextMenu(*m_contextMenu);
    bindConversion(m_conversion);
    bindPrint(m_print);
}

void AdornedListView::OnUpdate() {
    try {
        m_model->setRowCountTo(m_document.container().rowCount());
        const int jump = m_document.jumpRow();
        if (jump != -1)
            selectListRow(jump);
        viewport()->update();
        updateCommands();
    } catch (...) {
        showFailure(UpdateFailedText);
    }
}

int AdornedListView::selectionMark() const {
    return static_cast<int>(selectedRow());
}

int AdornedListView::itemCount() const {
    return m_model->rowCount();
}

int AdornedListView::listRowCount() const {
    return m_model->rowCount();
}

void AdornedListView::selectListRow(int row) {
    if (row < 0 || row >= itemCount())
        return;
    selectRow(row, true);
}

int AdornedListView::listColumnWidth(int column) const {
    if (column < 0 || column >= m_model->columnCount() || header()->isSectionHidden(column))
        return 0;
    return header()->sectionSize(column);
}

// Width 0 hides the column, as a list control's zero-width column is out of sight.
void AdornedListView::setListColumnWidth(int column, int width) {
    if (column < 0 || column >= m_model->columnCount())
        return;
    if (width <= 0) {
        header()->hideSection(column);
        return;
    }
    header()->showSection(column);
    header()->resizeSection(column, width);
}

int AdornedListView::columnWidthEntry(int column) const {
    return column >= 0 && column < ColumnWidthEntries ? m_columnWidths[column] : 0;
}

void AdornedListView::setColumnWidthEntry(int column, int width) {
    if (column >= 0 && column < ColumnWidthEntries)
        m_columnWidths[column] = width;
}

void AdornedListView::applyColumnWidthEntry(int column) {
    if (column >= 0 && column < ColumnWidthEntries)
        setListColumnWidth(column, m_columnWidths[column] & 0xFFFF);
}

Qt::Alignment AdornedListView::columnAlignment(int column) const {
    if (column < 0 || column >= int(m_columnFormats.size()))
        return Qt::AlignLeft;
    return m_columnFormats[column];
}

void AdornedListView::raiseWidthEntry(int column, int textWidth) {
    if (column >= 0 && column < ColumnWidthEntries && m_columnWidths[column] < textWidth + 10)
        m_columnWidths[column] = textWidth + 10;
}

QString AdornedListView::cellText(int row, int column) {
    if (column == 1)
        return QString::number(row + 1);
    return getDisplayText(row, column == 0 ? 0 : column - 1);
}

void AdornedListView::paintRow(QPainter& painter, int row, const QRect& rowRect) {
    const bool selected = row == selectedRow();
    QStyleOption option;
    option.initFrom(this);
    const QColor grid =
        QColor::fromRgba(static_cast<QRgb>(style()->styleHint(QStyle::SH_Table_GridLineColor, &option, this)));
    for (int column = 0; column < m_model->columnCount(); ++column) {
        QRect cell = cellRect(row, column);
        if (cell.isEmpty() || cell.left() >= rowRect.right() || cell.right() < 0)
            continue;
        cell.moveTop(rowRect.top());
        // The grid line takes the cell's last pixel on the right and at the bottom.
        const QRect inner = cell.adjusted(0, 0, -1, -1);
        drawCell(painter, inner, row, column, selected);
        painter.setPen(grid);
        painter.drawLine(cell.right(), cell.top(), cell.right(), cell.bottom());
        painter.drawLine(cell.left(), cell.bottom(), cell.right(), cell.bottom());
    }
}

void AdornedListView::drawCell(QPainter& painter, const QRect& cell, int row, int column, bool selected) {
    try {
        QRect rect = cell;
        painter.save();
        painter.fillRect(rect, selected ? QColor(0xA0, 0xA0, 0xA0) : QColor(Qt::white));
        painter.setFont(m_font);

        const QString flags = getDisplayText(row, 0);
        if (flags.size() < 3) {
            m_textColor = Qt::black;
        } else {
            const int colour = flags.at(2).unicode() - '0';
            if (colour >= 0 && colour < int(m_textColors.size()))
                m_textColor = m_textColors[colour];
        }
        if (column == 0) {
            if (flags.size() >= 3 && listColumnWidth(0) > MarkColumnMinimum) {
                const int top = rect.top() + (rect.height() - 16) / 2;
                if (flags.at(0) == QLatin1Char('1'))
                    painter.drawPixmap(rect.left() + 2, top, m_images[0]);
                if (flags.at(1) == QLatin1Char('1'))
                    painter.drawPixmap(rect.left() + 20, top, m_images[1]);
            }
        } else {
            const QString text = cellText(row, column);
            rect.setLeft(rect.left() + 5);
            painter.setPen(m_textColor);
            if (rect.left() < rect.right())
                painter.drawText(rect, int(columnAlignment(column) | Qt::AlignVCenter) | Qt::TextSingleLine, text);
            raiseWidthEntry(column, QFontMetrics(m_font).horizontalAdvance(text));
        }
        painter.restore();
    } catch (...) {
        painter.restore();
        reportDrawFailure();
    }
}

// The box waits for the paint to end: a modal box inside a paint event would paint again.
void AdornedListView::reportDrawFailure() {
    if (m_drawFailurePending)
        return;
    m_drawFailurePending = true;
    QTimer::singleShot(0, this, [this] {
        m_drawFailurePending = false;
        showFailure(DrawFailedText);
    });
}

void AdornedListView::showFailure(const QString& text) {
    Boxes::instance().show(this, QString(), text, QMessageBox::Critical);
    Q_EMIT failureShown(text);
}

void AdornedListView::addCommand(int id, CommandRoutine routine) {
    m_commands.emplace_back(id, std::move(routine));
    commandActionById(id);
}

void AdornedListView::addUpdateCommand(int id, UpdateRoutine routine) {
    m_updateCommands.emplace_back(id, std::move(routine));
    commandActionById(id);
}

void AdornedListView::runCommand(int id) {
    for (auto entry = m_commands.rbegin(); entry != m_commands.rend(); ++entry) {
        if (entry->first == id && entry->second)
            entry->second();
    }
    updateCommands();
}

QAction* AdornedListView::commandActionById(int id) {
    QAction* action = m_actions.value(id);
    if (action == nullptr) {
        action = new QAction(this);
        action->setData(id);
        connect(action, &QAction::triggered, this, [this, id] { runCommand(id); });
        m_actions.insert(id, action);
        updateCommands();
    }
    return action;
}

// A command with a routine is enabled unless its update routine says otherwise.
void AdornedListView::updateCommands() {
    for (auto it = m_actions.begin(); it != m_actions.end(); ++it) {
        const int id = it.key();
        QAction& action = *it.value();
        bool handled = false;
        for (const auto& entry : m_commands)
            handled = handled || (entry.first == id && entry.second);
        action.setEnabled(handled);
        if (id == SaveId)
            action.setEnabled(false);
        if (id == PrintId || id == PrintPreviewId || id == PrintSetupId)
            action.setEnabled(m_print.hasTarget());
        for (auto entry = m_updateCommands.rbegin(); entry != m_updateCommands.rend(); ++entry) {
            if (entry->first == id && entry->second)
                entry->second(action);
        }
    }
}

QMenu* AdornedListView::contextSubMenu() const {
    for (QAction* action : m_contextMenu->actions()) {
        if (action->menu() != nullptr)
            return action->menu();
    }
    return nullptr;
}

void AdornedListView::contextMenuEvent(QContextMenuEvent* event) {
    showContextMenu(event->globalPos());
    event->accept();
}

void AdornedListView::showContextMenu(const QPoint& globalPos) {
    try {
        QMenu* menu = contextSubMenu();
        if (menu == nullptr)
            return;
        updateContextMenu(*menu);
        QAction* chosen = menu->exec(globalPos);
        if (chosen != nullptr)
            executeContextMenuCommand(chosen->data().toInt());
    } catch (...) {
        showFailure(ContextMenuFailedText);
    }
}

std::array<QPixmap, 2> AdornedListView::DefaultMarkImages() {
    std::array<QPixmap, 2> images{QPixmap(16, 16), QPixmap(16, 16)};
    for (QPixmap& image : images)
        image.fill(Qt::transparent);
    {
        // The find mark: an arrow pointing at the row.
        QPainter painter(&images[0]);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor(0x64, 0x64, 0x64));
        painter.setBrush(QColor(0xE0, 0xA0, 0x00));
        const QPoint arrow[] = {{2, 3}, {13, 8}, {2, 13}};
        painter.drawPolygon(arrow, 3);
    }
    {
        // The bookmark: a blue flag.
        QPainter painter(&images[1]);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QColor(0x64, 0x64, 0x64));
        painter.setBrush(QColor(0x20, 0x60, 0xD0));
        painter.drawRoundedRect(QRectF(2.5, 2.5, 11, 11), 3, 3);
    }
    return images;
}

std::optional<AdornedListView::SaveAsChoice> AdornedListView::chooseSaveAsName(const QString& proposedName) {
    if (m_saveAsChooser)
        return m_saveAsChooser(this, proposedName);
    QStringList filters;
    for (const SaveAsFilter& filter : SaveAsFilters)
        filters << QStringLiteral("%1 (%2)").arg(QString::fromUtf8(filter.description),
                                                 QString::fromUtf8(filter.pattern));
    QFileDialog dialog(this, QString::fromUtf8(SaveAsTitle), proposedName);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setNameFilters(filters);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return SaveAsChoice{dialog.selectedFiles().first(), int(filters.indexOf(dialog.selectedNameFilter())) + 1};
}

void AdornedListView::exportTo(int filterIndex, const std::string& input, const std::string& output) {
    // In the order of the Save As filters.
    static constexpr ZDTAnalyzer::ExportFormat Formats[] = {
        ZDTAnalyzer::ExportFormat::Html, ZDTAnalyzer::ExportFormat::Rtf, ZDTAnalyzer::ExportFormat::Pdf,
        ZDTAnalyzer::ExportFormat::Csv};
    if (filterIndex < 1 || filterIndex > 4)
        return;
    // The proxy refuses here, on the thread of the windows, rather than in the operation.
    if (!m_conversion.hasTarget())
        throw Conversion::Exception(ConversionProxy::NotImplementedText);
    startExport(m_conversion, Formats[filterIndex - 1], input, output);
}

void AdornedListView::onSaveAs() {
    try {
        const QString pathName = documentPathName();
        const QString proposed = QFile::decodeName(ProposedSaveAsName(LocalPath(pathName)).c_str());
        for (;;) {
            const std::optional<SaveAsChoice> choice = chooseSaveAsName(proposed);
            if (!choice)
                return;
            const std::string chosen = LocalPath(choice->fileName);
            const std::string named = SaveAsNameWithExtension(chosen, choice->filterIndex);
            const QString fileName = QFile::decodeName(named.c_str());
            // The file dialog asked about the name as typed; only a grown name is asked here.
            if (named != chosen && QFileInfo::exists(fileName) &&
                !Boxes::instance().askYesNo(this, QString::fromUtf8(SaveAsTitle),
                                            QString::fromUtf8(ReplaceQuestionText).arg(fileName),
                                            QMessageBox::Question))
                continue;
            exportTo(choice->filterIndex, LocalPath(pathName), named);
            return;
        }
    } catch (const Conversion::Exception& error) {
        showFailure(QString::fromUtf8(error.what()));
    } catch (...) {
        showFailure(SaveAsFailedText);
    }
}

void AdornedListView::onPrint() {
    try {
        m_print.print(LocalPath(documentPathName()));
    } catch (const PrintPrintPreview::Exception& error) {
        showFailure(QString::fromUtf8(error.what()));
    } catch (...) {
        showFailure(PrintFailedText);
    }
}

void AdornedListView::onPrintPreview() {
    try {
        m_print.printPreview(LocalPath(documentPathName()));
    } catch (const PrintPrintPreview::Exception& error) {
        showFailure(QString::fromUtf8(error.what()));
    } catch (...) {
        showFailure(PrintPreviewFailedText);
    }
}

} // namespace zdtui

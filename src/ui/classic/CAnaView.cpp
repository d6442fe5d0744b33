#include "classic/CAnaView.h"

#include "app/Boxes.h"
#include "app/BrandEdition.h"
#include "app/WaitCursor.h"
#include "classic/CAnalyzerDoc.h"
#include "classic/CFindDlg.h"
#include "classic/ClassicDocument.h"
#include "classic/ClassicListModel.h"
#include "classic/ClassicPrinter.h"
#include "classic/ClassicReport.h"
#include "classic/ClassicViewLayout.h"
#include "classic/IdentifierStatisticsDialog.h"
#include "classic/SbtExportDialog.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFile>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace zdtui {
namespace {

constexpr int kCellPadding = 3;
constexpr int kRowPadding = 2;
constexpr int kPartnerMenu = 143;

QFont ListFont() {
    // The face name is the list's own choice; font matching finds a fixed-pitch face where it is missing.
    QFont font(QStringLiteral("Curier New"));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPixelSize(12);
    font.setWeight(QFont::Normal);
    return font;
}

constexpr int ModelColumn(ClassicColumn column) {
    return ClassicListModel::ModelColumn(column);
}

std::size_t IndexOf(ViewCommand command) {
    return static_cast<std::size_t>(command);
}

} // namespace

CAnaView::CAnaView(ClassicDocument& document, StatusSink* status, QWidget* parent)
    : UniformRowList(parent), m_document(document), m_status(status) {
    m_model = new ClassicListModel(doc(), this);
    setRowFont(ListFont());
    setLinePadding(kRowPadding);
    setHeaderModel(m_model);
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header(), &QHeaderView::customContextMenuRequested, this,
            [this](const QPoint& pos) { showColumnMenu(header()->mapToGlobal(pos)); });
    connect(header(), &QHeaderView::sectionResized, this, &CAnaView::onSectionResized);
    // A reset header forgets its section sizes: give them back.
    connect(m_model, &QAbstractItemModel::modelReset, this, &CAnaView::applyColumnWidths);

    connect(&m_document, &ClassicDocument::contentAboutToChange, m_model, &ClassicListModel::suspend);
    connect(&m_document, &ClassicDocument::contentChanged, this, &CAnaView::refreshFromDocument);
    connect(&m_document, &ClassicDocument::rowsArrived, this, &CAnaView::takeRows);
    connect(&m_document, &ClassicDocument::searchEnded, this, &CAnaView::showSearchResults);
    connect(&m_document, &UiDocument::busyChanged, this, &CAnaView::updateActions);
    // Which columns have content is known once the whole file was read.
    connect(&m_document, &UiDocument::openFinished, this, [this](bool opened) {
        if (!opened)
            return;
        m_widths = InitialColumnWidths(ColumnContentOf(doc()));
        applyColumnWidths();
        updateGeometries();
    });

    createActions();
    m_widths = InitialColumnWidths(ColumnContentOf(doc()));
    applyColumnWidths();
    updateGeometries();
    refreshFromDocument();
    activateView();
}

CAnaView::~CAnaView() = default;

CAnalyzerDoc& CAnaView::doc() const {
    return *m_document.analyzerDoc();
}

// ---- commands -------------------------------------------------------------------------

QAction* CAnaView::addCommand(ViewCommand command, const QString& text, const QKeySequence& shortcut,
                              const std::function<void()>& handler) {
    auto* action = new QAction(text, this);
    action->setShortcut(shortcut);
    // Keys work anywhere in the frame; the frame takes them away from a view that is not active.
    action->setShortcutContext(Qt::WindowShortcut);
    connect(action, &QAction::triggered, this, handler);
    addAction(action);
    m_actions[IndexOf(command)] = action;
    return action;
}

void CAnaView::createActions() {
    addCommand(ViewCommand::Print, tr("&Print..."), QKeySequence::Print, [this] { onPrint(); });
    addCommand(ViewCommand::PrintPreview, tr("Print Pre&view"), QKeySequence(), [this] { onPrintPreview(); });
    addCommand(ViewCommand::SaveAsAscii, QStringLiteral("Save &As ASCII file..."), QKeySequence(),
               [this] { onSaveAsAscii(); });
    addCommand(ViewCommand::SessionInfo, QStringLiteral("Session Info..."), QKeySequence(),
               [this] { m_document.onSessionInfo(this); });
    addCommand(ViewCommand::Find, QStringLiteral("&Find"), QKeySequence(Qt::CTRL | Qt::Key_F), [this] { onFind(); });
    addCommand(ViewCommand::FindNext, QStringLiteral("Find &Next"), QKeySequence(Qt::CTRL | Qt::Key_F3),
               [this] { onFindNext(); });
    addCommand(ViewCommand::FindPrevious, QStringLiteral("Find &Previous"),
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F3), [this] { onFindPrevious(); });
    addCommand(ViewCommand::ToggleBookmark, QStringLiteral("&Toggle Bookmark"), QKeySequence(Qt::CTRL | Qt::Key_F2),
               [this] { onToggleBookmark(); });
    addCommand(ViewCommand::NextBookmark, QStringLiteral("&Goto Next Bookmark"), QKeySequence(Qt::Key_F2),
               [this] { onNextBookmark(); });
    addCommand(ViewCommand::PreviousBookmark, QStringLiteral("Goto Previous &Bookmark"),
               QKeySequence(Qt::SHIFT | Qt::Key_F2), [this] { onPreviousBookmark(); });
    addCommand(ViewCommand::ClearBookmarks, QStringLiteral("Clear All Bookmarks"),
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F2), [this] { onClearBookmarks(); });
    addCommand(ViewCommand::CanFilter, QStringLiteral("&Can Filter ..."), QKeySequence(),
               [this] { m_document.onCanFilter(this); });
    // The partner's menu carries a blank behind this item.
    addCommand(ViewCommand::StyleKLine,
               menuResource() == kPartnerMenu ? QStringLiteral("Style KLine Link ")
                                              : QStringLiteral("Style KLine Link"),
               QKeySequence(), [this] { m_document.onStyleKLine(this); });
    addCommand(ViewCommand::StyleCan, QStringLiteral("Style CAN Link"), QKeySequence(),
               [this] { m_document.onStyleCan(this); });
    addCommand(ViewCommand::IdentifierStatistics, QStringLiteral("Identifier statistics..."), QKeySequence(),
               [this] { onIdentifierStatistics(); });
}

QAction* CAnaView::commandAction(ViewCommand command) {
    const std::size_t index = IndexOf(command);
    return index < m_actions.size() ? m_actions[index] : nullptr;
}

int CAnaView::menuResource() const {
    return zdt::EditionInfoFor(zdt::BrandEdition()).classicTemplateId;
}

void CAnaView::activateView() {
    m_document.refreshStatus();
}

void CAnaView::updateActions() {
    // While the document's work runs, only the bookmarks of the rows read so far may change.
    const bool busy = m_document.isBusy();
    for (ViewCommand command :
         {ViewCommand::Print, ViewCommand::PrintPreview, ViewCommand::SaveAsAscii, ViewCommand::SessionInfo,
          ViewCommand::Find, ViewCommand::CanFilter, ViewCommand::IdentifierStatistics})
        m_actions[IndexOf(command)]->setEnabled(!busy);
    if (busy) {
        for (ViewCommand command :
             {ViewCommand::FindNext, ViewCommand::FindPrevious, ViewCommand::StyleCan, ViewCommand::StyleKLine})
            m_actions[IndexOf(command)]->setEnabled(false);
    }
    const bool bookmarks = !doc().Bookmarks().empty();
    m_actions[IndexOf(ViewCommand::NextBookmark)]->setEnabled(bookmarks);
    m_actions[IndexOf(ViewCommand::PreviousBookmark)]->setEnabled(bookmarks);
    m_actions[IndexOf(ViewCommand::ClearBookmarks)]->setEnabled(bookmarks);
    const bool results = !doc().FindResults().empty();
    if (busy)
        return;
    m_actions[IndexOf(ViewCommand::FindNext)]->setEnabled(results);
    m_actions[IndexOf(ViewCommand::FindPrevious)]->setEnabled(results);
    m_actions[IndexOf(ViewCommand::StyleCan)]->setEnabled(doc().IsCanTrace());
    m_actions[IndexOf(ViewCommand::StyleKLine)]->setEnabled(!doc().IsCanTrace());
}

void CAnaView::takeRows(int rows) {
    m_model->growTo(rows);
    updateScrollBars();
    viewport()->update();
}

void CAnaView::refreshFromDocument() {
    m_model->reload();
    updateScrollBars();
    viewport()->update();
    updateActions();
}

// ---- bookmarks --------------------------------------------------------------------------

void CAnaView::onToggleBookmark() {
    const long long row = selectedRow();
    if (row < 0)
        return;
    doc().ToggleBookmark(static_cast<std::uint32_t>(row));
    m_model->rowsChanged(static_cast<int>(row), static_cast<int>(row));
    updateActions();
}

void CAnaView::onNextBookmark() {
    const long long row = doc().NextBookmark(selectedRow());
    if (row >= 0)
        selectRow(row);
}

void CAnaView::onPreviousBookmark() {
    const long long row = doc().PreviousBookmark(selectedRow());
    if (row >= 0)
        selectRow(row);
}

void CAnaView::onClearBookmarks() {
    doc().ClearBookmarks();
    m_model->rowsChanged(0, m_model->rowCount() - 1);
    updateActions();
}

// ---- search -----------------------------------------------------------------------------

CFindDlg* CAnaView::findDialog() {
    if (m_findDialog == nullptr)
        m_findDialog = new CFindDlg(this);
    return m_findDialog;
}

void CAnaView::onFind() {
    CAnalyzerDoc& document = doc();
    CFindDlg* dialog = findDialog();
    dialog->prepare(
        FindEnabling(document.SchemaNumber(), document.HasClass0(), document.HasClass4(), document.HasClass8()),
        QString::fromLatin1(document.FindBoundsText()), QString::fromLatin1(document.FindUnitText()));
    if (dialog->exec() != QDialog::Accepted)
        return;
    runSearch(dialog->criteria(), dialog->hasCriteria(), dialog->markAll());
}

void CAnaView::runSearch(const ClassicFindCriteria& criteria, bool hasCriteria, bool markAll) {
    if (m_document.isBusy())
        return;
    if (!hasCriteria) {
        // Nothing to look for: the dialog's OK only clears the results (and the marks).
        ApplyClassicFindResults(doc(), {}, markAll);
        showSearchResults(markAll);
        return;
    }
    m_document.runFind(criteria, markAll, this);
}

void CAnaView::showSearchResults(bool markAll) {
    if (markAll)
        m_model->rowsChanged(0, m_model->rowCount() - 1);
    if (!doc().FindResults().empty())
        selectRow(doc().FindResults().front());
    updateActions();
}

void CAnaView::onFindNext() {
    BoxMessageSink boxes(this);
    const long long row = FindNext(doc().FindResults(), selectedRow(), &boxes);
    if (row >= 0)
        selectRow(row);
}

void CAnaView::onFindPrevious() {
    BoxMessageSink boxes(this);
    const long long row = FindPrevious(doc().FindResults(), selectedRow(), &boxes);
    if (row >= 0)
        selectRow(row);
}

// ---- report and printing ----------------------------------------------------------------

void CAnaView::onSaveAsAscii() {
    const QString fileName = RunSbtExportDialog(this);
    if (!fileName.isEmpty())
        saveAsAscii(fileName);
}

bool CAnaView::saveAsAscii(const QString& fileName) {
    WaitCursor wait;
    return WriteSbtReport(doc(), QFile::encodeName(fileName).toStdString(), zdt::BrandEdition());
}

int CAnaView::printTo(QPrinter* printer) {
    WaitCursor wait;
    return ClassicPrinter(doc(), rowFont(), zdt::BrandEdition()).print(printer);
}

void CAnaView::onPrint() {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    dialog.setOption(QAbstractPrintDialog::PrintPageRange, true);
    if (dialog.exec() != QDialog::Accepted)
        return;
    printTo(&printer);
}

void CAnaView::onPrintPreview() {
    QPrintPreviewDialog preview(this);
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter* printer) { printTo(printer); });
    preview.exec();
}

// ---- columns ----------------------------------------------------------------------------

int CAnaView::columnWidth(ClassicColumn column) const {
    const int section = ModelColumn(column);
    return header()->isSectionHidden(section) ? 0 : header()->sectionSize(section);
}

void CAnaView::setColumnWidth(ClassicColumn column, int width) {
    m_widths[static_cast<std::size_t>(column)] = std::max(width, 0);
    applyColumnWidths();
}

void CAnaView::applyColumnWidths() {
    m_applyingWidths = true;
    header()->resizeSection(ClassicListModel::MarkColumn, MarkColumnWidth);
    for (std::size_t i = 0; i < m_widths.size(); ++i) {
        const int section = ModelColumn(static_cast<ClassicColumn>(i));
        if (m_widths[i] == 0) {
            header()->setSectionHidden(section, true);
        } else {
            header()->setSectionHidden(section, false);
            header()->resizeSection(section, m_widths[i]);
        }
    }
    m_applyingWidths = false;
    updateScrollBars();
    viewport()->update();
}

void CAnaView::onSectionResized(int logical, int, int newSize) {
    if (!m_applyingWidths && logical != ClassicListModel::MarkColumn)
        m_widths[static_cast<std::size_t>(logical - 1)] = newSize;
    updateScrollBars();
    viewport()->update();
}

int CAnaView::widestTextOnScreen(ClassicColumn column) const {
    const QFontMetrics metrics(rowFont());
    const int first = firstRowOnScreen();
    const int end = std::min(m_model->rowCount(), first + rowsOnScreen());
    int widest = 0;
    for (int row = first; row < end; ++row)
        widest = std::max(widest, metrics.horizontalAdvance(m_model->cellText(row, ModelColumn(column))));
    return widest;
}

void CAnaView::chooseColumnFromMenu(ClassicColumn column) {
    const int width = columnWidth(column);
    setColumnWidth(column,
                   ColumnWidthAfterMenuChoice(width, IsColumnMenuChecked(width) ? 0 : widestTextOnScreen(column)));
}

void CAnaView::showColumnMenu(const QPoint& globalPos) {
    QMenu menu(this);
    for (std::size_t i = 0; i < ClassicColumnCount; ++i) {
        const auto column = static_cast<ClassicColumn>(i);
        QAction* entry = menu.addAction(m_model->headerData(ModelColumn(column), Qt::Horizontal).toString());
        entry->setCheckable(true);
        entry->setChecked(IsColumnMenuChecked(columnWidth(column)));
        entry->setData(static_cast<int>(i));
    }
    if (QAction* chosen = menu.exec(globalPos))
        chooseColumnFromMenu(static_cast<ClassicColumn>(chosen->data().toInt()));
}

// ---- rows, selection and scrolling ------------------------------------------------------

int CAnaView::listRowCount() const {
    return m_model->rowCount();
}

long long CAnaView::selectedRow() const {
    return m_model->selectedRow();
}

void CAnaView::selectRow(long long row, bool scroll) {
    m_model->setSelectedRow(row);
    if (scroll)
        ensureVisible(m_model->selectedRow());
    viewport()->update();
}

void CAnaView::fullRowsOnScreenChanged(int rows) {
    m_model->setCacheCapacity(rows);
}

void CAnaView::paintRow(QPainter& painter, int row, const QRect& rowRect) {
    painter.fillRect(rowRect, m_model->background(row));
    painter.setPen(m_model->foreground(row));
    const int width = rowRect.width();
    for (int section = 0; section < ClassicListModel::ColumnCount; ++section) {
        if (header()->isSectionHidden(section))
            continue;
        const int left = header()->sectionViewportPosition(section);
        const int size = header()->sectionSize(section);
        if (left >= width || left + size <= 0)
            continue;
        const QRect cell(left + kCellPadding, rowRect.top(), size - 2 * kCellPadding, rowRect.height());
        const auto alignment = m_model->data(m_model->index(row, section), Qt::TextAlignmentRole).toInt();
        painter.drawText(cell, alignment, m_model->cellText(row, section));
    }
}

void CAnaView::onIdentifierStatistics() {
    std::optional<IdentifierKey> key;
    if (selectedRow() >= 0 && !m_document.isBusy()) {
        CTraceItemI item;
        if (doc().ReadItem(static_cast<zdt::RowIndex>(selectedRow()), item))
            key = IdentifierKeyOf(item);
    }
    if (m_statisticsDialog == nullptr)
        m_statisticsDialog = new IdentifierStatisticsDialog(m_document, this);
    m_statisticsDialog->showFor(key);
}

void CAnaView::fillListMenu(QMenu& menu) {
    menu.addAction(m_actions[IndexOf(ViewCommand::IdentifierStatistics)]);
}

void CAnaView::contextMenuEvent(QContextMenuEvent* event) {
    // The menu acts on the row under the pointer, as a left click would choose it.
    const int row = rowAt(viewport()->mapFromGlobal(event->globalPos()).y());
    if (row >= 0)
        selectRow(row, false);
    QMenu menu(this);
    fillListMenu(menu);
    menu.exec(event->globalPos());
}

} // namespace zdtui

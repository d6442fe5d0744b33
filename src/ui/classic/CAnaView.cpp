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
constexpr int kWheelStepWhenUnknown = 3;
constexpr int kWheelNotch = 120;
constexpr int kHorizontalStep = 20;
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
    : QAbstractScrollArea(parent), m_document(document), m_status(status), m_font(ListFont()) {
    m_model = new ClassicListModel(doc(), this);
    m_header = new QHeaderView(Qt::Horizontal, this);
    m_header->setModel(m_model);
    m_header->setSectionsClickable(false);
    m_header->setSectionsMovable(false);
    m_header->setStretchLastSection(false);
    m_header->setMinimumSectionSize(0);
    m_header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_header, &QHeaderView::customContextMenuRequested, this,
            [this](const QPoint& pos) { showColumnMenu(m_header->mapToGlobal(pos)); });
    connect(m_header, &QHeaderView::sectionResized, this, &CAnaView::onSectionResized);
    // A reset header forgets its section sizes: give them back.
    connect(m_model, &QAbstractItemModel::modelReset, this, &CAnaView::applyColumnWidths);
    connect(m_model, &QAbstractItemModel::dataChanged, viewport(), qOverload<>(&QWidget::update));

    QPalette palette = viewport()->palette();
    palette.setColor(QPalette::Base, Qt::white);
    viewport()->setPalette(palette);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setSingleStep(kHorizontalStep);

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
    return ClassicPrinter(doc(), m_font, zdt::BrandEdition()).print(printer);
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
    return m_header->isSectionHidden(section) ? 0 : m_header->sectionSize(section);
}

void CAnaView::setColumnWidth(ClassicColumn column, int width) {
    m_widths[static_cast<std::size_t>(column)] = std::max(width, 0);
    applyColumnWidths();
}

void CAnaView::applyColumnWidths() {
    m_applyingWidths = true;
    m_header->resizeSection(ClassicListModel::MarkColumn, MarkColumnWidth);
    for (std::size_t i = 0; i < m_widths.size(); ++i) {
        const int section = ModelColumn(static_cast<ClassicColumn>(i));
        if (m_widths[i] == 0) {
            m_header->setSectionHidden(section, true);
        } else {
            m_header->setSectionHidden(section, false);
            m_header->resizeSection(section, m_widths[i]);
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
    const QFontMetrics metrics(m_font);
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

int CAnaView::lineHeight() const {
    return QFontMetrics(m_font).height() + kRowPadding;
}

int CAnaView::firstRowOnScreen() const {
    return verticalScrollBar()->value();
}

int CAnaView::fullRowsOnScreen() const {
    return std::max(1, viewport()->height() / lineHeight());
}

int CAnaView::rowsOnScreen() const {
    const int lines = (viewport()->height() + lineHeight() - 1) / lineHeight();
    return std::max(0, std::min(lines, m_model->rowCount() - firstRowOnScreen()));
}

int CAnaView::rowAt(int y) const {
    if (y < 0)
        return -1;
    const long long row = static_cast<long long>(firstRowOnScreen()) + y / lineHeight();
    return row < m_model->rowCount() ? static_cast<int>(row) : -1;
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

void CAnaView::ensureVisible(long long row) {
    if (row < 0)
        return;
    const int first = firstRowOnScreen();
    const int full = fullRowsOnScreen();
    if (row < first)
        verticalScrollBar()->setValue(static_cast<int>(row));
    else if (row >= first + full)
        verticalScrollBar()->setValue(static_cast<int>(row) - full + 1);
}

void CAnaView::updateGeometries() {
    const int height = m_header->sizeHint().height();
    setViewportMargins(0, height, 0, 0);
    const QRect area = viewport()->geometry();
    m_header->setGeometry(area.left(), area.top() - height, area.width(), height);
    updateScrollBars();
}

void CAnaView::updateScrollBars() {
    const int full = fullRowsOnScreen();
    verticalScrollBar()->setRange(0, std::max(0, m_model->rowCount() - full));
    verticalScrollBar()->setPageStep(full);
    const int width = viewport()->width();
    horizontalScrollBar()->setRange(0, std::max(0, m_header->length() - width));
    horizontalScrollBar()->setPageStep(std::max(1, width));
    m_header->setOffset(horizontalScrollBar()->value());
    // One row more than fits, so that a partly shown last row is kept too.
    m_model->setCacheCapacity(full + 2);
}

void CAnaView::scrollContentsBy(int, int) {
    m_header->setOffset(horizontalScrollBar()->value());
    viewport()->update();
}

void CAnaView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateGeometries();
}

void CAnaView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setFont(m_font);
    const int height = viewport()->height();
    const int width = viewport()->width();
    const int line = lineHeight();
    const int rows = m_model->rowCount();
    int row = firstRowOnScreen();
    for (int top = 0; top < height && row < rows; top += line, ++row) {
        painter.fillRect(0, top, width, line, m_model->background(row));
        painter.setPen(m_model->foreground(row));
        for (int section = 0; section < ClassicListModel::ColumnCount; ++section) {
            if (m_header->isSectionHidden(section))
                continue;
            const int left = m_header->sectionViewportPosition(section);
            const int size = m_header->sectionSize(section);
            if (left >= width || left + size <= 0)
                continue;
            const QRect cell(left + kCellPadding, top, size - 2 * kCellPadding, line);
            const auto alignment = m_model->data(m_model->index(row, section), Qt::TextAlignmentRole).toInt();
            painter.drawText(cell, alignment, m_model->cellText(row, section));
        }
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

void CAnaView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        const int row = rowAt(event->position().toPoint().y());
        if (row >= 0)
            selectRow(row, false);
    }
    QAbstractScrollArea::mousePressEvent(event);
}

void CAnaView::wheelEvent(QWheelEvent* event) {
    const int delta = event->angleDelta().y();
    if (delta == 0) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    m_wheelRemainder += delta;
    const int notches = m_wheelRemainder / kWheelNotch;
    m_wheelRemainder -= notches * kWheelNotch;
    const int step = QApplication::wheelScrollLines() > 0 ? QApplication::wheelScrollLines() : kWheelStepWhenUnknown;
    verticalScrollBar()->setValue(verticalScrollBar()->value() - notches * step);
    event->accept();
}

void CAnaView::keyPressEvent(QKeyEvent* event) {
    const int rows = m_model->rowCount();
    const long long selected = selectedRow();
    long long target;
    switch (event->key()) {
    case Qt::Key_Up:
        target = selected - 1;
        break;
    case Qt::Key_Down:
        target = selected + 1;
        break;
    case Qt::Key_PageUp:
        target = selected - fullRowsOnScreen();
        break;
    case Qt::Key_PageDown:
        target = selected + fullRowsOnScreen();
        break;
    case Qt::Key_Home:
        target = 0;
        break;
    case Qt::Key_End:
        target = rows - 1;
        break;
    default:
        QAbstractScrollArea::keyPressEvent(event);
        return;
    }
    if (rows > 0)
        selectRow(std::clamp<long long>(target, 0, rows - 1));
    event->accept();
}

} // namespace zdtui

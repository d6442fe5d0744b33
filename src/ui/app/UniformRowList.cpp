#include "app/UniformRowList.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace zdtui {
namespace {

constexpr int kWheelStepWhenUnknown = 3;
constexpr int kWheelNotch = 120;
constexpr int kHorizontalStep = 20;

} // namespace

UniformRowList::UniformRowList(QWidget* parent)
    : QAbstractScrollArea(parent), m_header(new QHeaderView(Qt::Horizontal, this)) {
    m_header->setSectionsClickable(false);
    m_header->setSectionsMovable(false);
    m_header->setStretchLastSection(false);
    m_header->setMinimumSectionSize(0);
    m_header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    connect(m_header, &QHeaderView::sectionResized, this, [this] {
        updateScrollBars();
        viewport()->update();
    });

    QPalette palette = viewport()->palette();
    palette.setColor(QPalette::Base, Qt::white);
    viewport()->setPalette(palette);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setAutoFillBackground(true);
    setFocusPolicy(Qt::StrongFocus);
    verticalScrollBar()->setSingleStep(1);
    horizontalScrollBar()->setSingleStep(kHorizontalStep);
}

UniformRowList::~UniformRowList() = default;

void UniformRowList::setHeaderModel(QAbstractItemModel* model) {
    m_header->setModel(model);
    const auto rowsChanged = [this] {
        updateScrollBars();
        viewport()->update();
    };
    connect(model, &QAbstractItemModel::rowsInserted, this, rowsChanged);
    connect(model, &QAbstractItemModel::rowsRemoved, this, rowsChanged);
    connect(model, &QAbstractItemModel::modelReset, this, rowsChanged);
    connect(model, &QAbstractItemModel::layoutChanged, this, rowsChanged);
    connect(model, &QAbstractItemModel::dataChanged, viewport(), qOverload<>(&QWidget::update));
    updateGeometries();
}

void UniformRowList::setRowFont(const QFont& font) {
    m_font = font;
    setFont(font);
    updateScrollBars();
    viewport()->update();
}

void UniformRowList::setLinePadding(int padding, int minimumHeight) {
    m_linePadding = padding;
    m_minimumLineHeight = minimumHeight;
    updateScrollBars();
    viewport()->update();
}

int UniformRowList::lineHeight() const {
    return std::max(QFontMetrics(m_font).height() + m_linePadding, std::max(m_minimumLineHeight, 1));
}

int UniformRowList::firstRowOnScreen() const {
    return verticalScrollBar()->value();
}

int UniformRowList::fullRowsOnScreen() const {
    return std::max(1, viewport()->height() / lineHeight());
}

int UniformRowList::rowsOnScreen() const {
    const int lines = (viewport()->height() + lineHeight() - 1) / lineHeight();
    return std::max(0, std::min(lines, listRowCount() - firstRowOnScreen()));
}

int UniformRowList::rowAt(int y) const {
    if (y < 0)
        return -1;
    const long long row = static_cast<long long>(firstRowOnScreen()) + y / lineHeight();
    return row < listRowCount() ? static_cast<int>(row) : -1;
}

QRect UniformRowList::cellRect(int row, int column) const {
    if (column < 0 || column >= m_header->count() || m_header->isSectionHidden(column))
        return {};
    const long long top = (static_cast<long long>(row) - firstRowOnScreen()) * lineHeight();
    return {m_header->sectionViewportPosition(column),
            static_cast<int>(std::clamp<long long>(top, -1'000'000, 1'000'000)), m_header->sectionSize(column),
            lineHeight()};
}

void UniformRowList::selectRow(long long row, bool scroll) {
    const long long chosen = row >= 0 && row < listRowCount() ? row : -1;
    const bool changed = chosen != m_selectedRow;
    m_selectedRow = chosen;
    if (scroll)
        ensureVisible(chosen);
    viewport()->update();
    if (changed)
        Q_EMIT selectedRowChanged();
}

void UniformRowList::ensureVisible(long long row) {
    if (row < 0)
        return;
    updateScrollBars();
    const int first = firstRowOnScreen();
    const int full = fullRowsOnScreen();
    if (row < first)
        verticalScrollBar()->setValue(static_cast<int>(row));
    else if (row >= first + full)
        verticalScrollBar()->setValue(static_cast<int>(row) - full + 1);
}

void UniformRowList::scrollToBottom() {
    updateScrollBars();
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
}

void UniformRowList::updateGeometries() {
    const int height = m_header->sizeHint().height();
    setViewportMargins(0, height, 0, 0);
    const QRect area = viewport()->geometry();
    m_header->setGeometry(area.left(), area.top() - height, area.width(), height);
    updateScrollBars();
}

void UniformRowList::updateScrollBars() {
    const int full = fullRowsOnScreen();
    verticalScrollBar()->setRange(0, std::max(0, listRowCount() - full));
    verticalScrollBar()->setPageStep(full);
    const int width = viewport()->width();
    horizontalScrollBar()->setRange(0, std::max(0, m_header->length() - width));
    horizontalScrollBar()->setPageStep(std::max(1, width));
    m_header->setOffset(horizontalScrollBar()->value());
    // One row more than fits, so that a partly shown last row counts too.
    fullRowsOnScreenChanged(full + 2);
}

void UniformRowList::scrollContentsBy(int, int) {
    m_header->setOffset(horizontalScrollBar()->value());
    viewport()->update();
}

void UniformRowList::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateGeometries();
}

void UniformRowList::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.setFont(m_font);
    const int height = viewport()->height();
    const int width = viewport()->width();
    const int line = lineHeight();
    const int rows = listRowCount();
    int row = firstRowOnScreen();
    for (int top = 0; top < height && row < rows; top += line, ++row)
        paintRow(painter, row, QRect(0, top, width, line));
}

void UniformRowList::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        const int row = rowAt(event->position().toPoint().y());
        if (row >= 0)
            selectRow(row, false);
    }
    QAbstractScrollArea::mousePressEvent(event);
}

void UniformRowList::wheelEvent(QWheelEvent* event) {
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

void UniformRowList::keyPressEvent(QKeyEvent* event) {
    const int rows = listRowCount();
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

#include "classic/ClassicListModel.h"

#include "classic/CAnalyzerDoc.h"
#include "classic/ClassicViewLayout.h"

#include <algorithm>
#include <climits>

namespace zdtui {
namespace {

constexpr int kDefaultCacheRows = 128;

} // namespace

ClassicListModel::ClassicListModel(CAnalyzerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent), m_doc(doc), m_cache(kDefaultCacheRows) {
    reload();
}

ClassicListModel::~ClassicListModel() = default;

int ClassicListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows;
}

int ClassicListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QColor ClassicListModel::ToQColor(std::uint32_t bbggrr) {
    return QColor(static_cast<int>(bbggrr & 0xFF), static_cast<int>((bbggrr >> 8) & 0xFF),
                  static_cast<int>((bbggrr >> 16) & 0xFF));
}

void ClassicListModel::reload() {
    beginResetModel();
    m_suspended = false;
    // A list counts rows in int; beyond that the rest of a huge trace is out of reach.
    m_rows = static_cast<int>(std::min<std::uint32_t>(m_doc.GetVisibleCount(), INT_MAX));
    // A fresh formatter forgets what it knew of the rows before (the 701 time walk).
    m_formatter = std::make_unique<ClassicRowFormatter>(m_doc);
    for (CachedRow& cached : m_cache)
        cached.row = -1;
    m_timeTitle = QString::fromLatin1(TimeColumnTitle(m_doc.GetTimeMode()));
    m_doc.ClearHeaderUpdate();
    if (m_selected >= m_rows)
        m_selected = -1;
    endResetModel();
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

void ClassicListModel::suspend() {
    beginResetModel();
    m_suspended = true;
    m_rows = 0;
    for (CachedRow& cached : m_cache)
        cached.row = -1;
    endResetModel();
}

void ClassicListModel::growTo(int rows) {
    if (m_suspended || rows <= m_rows)
        return;
    // The first rows come once the head is read: a formatter made now knows the schema.
    if (m_rows == 0)
        m_formatter = std::make_unique<ClassicRowFormatter>(m_doc);
    beginInsertRows(QModelIndex(), m_rows, rows - 1);
    m_rows = rows;
    endInsertRows();
}

void ClassicListModel::rowsChanged(int first, int last) {
    first = std::max(first, 0);
    last = std::min(last, m_rows - 1);
    if (first > last)
        return;
    for (CachedRow& cached : m_cache)
        if (cached.row >= first && cached.row <= last)
            cached.row = -1;
    Q_EMIT dataChanged(index(first, 0), index(last, ColumnCount - 1));
}

void ClassicListModel::setSelectedRow(long long row) {
    if (row < -1 || row >= m_rows)
        row = -1;
    if (row == m_selected)
        return;
    const long long previous = m_selected;
    m_selected = row;
    if (previous >= 0)
        Q_EMIT dataChanged(index(static_cast<int>(previous), 0), index(static_cast<int>(previous), ColumnCount - 1));
    if (row >= 0)
        Q_EMIT dataChanged(index(static_cast<int>(row), 0), index(static_cast<int>(row), ColumnCount - 1));
}

void ClassicListModel::setCacheCapacity(int rows) {
    rows = std::max(rows, 1);
    if (static_cast<std::size_t>(rows) == m_cache.size())
        return;
    m_cache.assign(static_cast<std::size_t>(rows), CachedRow{});
}

const ClassicRow& ClassicListModel::row(int row) const {
    CachedRow& cached = m_cache[static_cast<std::size_t>(row) % m_cache.size()];
    if (cached.row != row) {
        m_formatter->Format(static_cast<std::uint32_t>(row), cached.content);
        cached.row = row;
    }
    return cached.content;
}

QString ClassicListModel::cellText(int row, int column) const {
    const ClassicRow& content = this->row(row);
    if (column == MarkColumn)
        return QString::fromUtf8(content.mark);
    return QString::fromUtf8(content.columns[static_cast<std::size_t>(column - 1)]);
}

QColor ClassicListModel::foreground(int row) const {
    return ToQColor(this->row(row).foreground);
}

QColor ClassicListModel::background(int row) const {
    if (row == m_selected)
        return ToQColor(ColourSelectedRow);
    return ToQColor(this->row(row).background);
}

QVariant ClassicListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || m_suspended || index.row() >= m_rows || index.column() >= ColumnCount)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return cellText(index.row(), index.column());
    case Qt::ForegroundRole:
        return foreground(index.row());
    case Qt::BackgroundRole:
        return background(index.row());
    case Qt::TextAlignmentRole: {
        const bool right =
            index.column() != MarkColumn && ClassicColumns()[static_cast<std::size_t>(index.column() - 1)].rightAligned;
        return QVariant::fromValue(Qt::AlignVCenter | (right ? Qt::AlignRight : Qt::AlignLeft));
    }
    default:
        return {};
    }
}

QVariant ClassicListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= ColumnCount)
        return {};
    if (role == Qt::DisplayRole) {
        if (section == MarkColumn)
            return QString();
        if (section == ModelColumn(ClassicColumn::Time))
            return m_timeTitle;
        return QString::fromLatin1(ClassicColumns()[static_cast<std::size_t>(section - 1)].name);
    }
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::AlignVCenter | Qt::AlignLeft);
    return {};
}

} // namespace zdtui

#include "xmldoc/AdornedListModel.h"

namespace zdtui {

AdornedListModel::AdornedListModel(TextSource source, QObject* parent)
    : QAbstractTableModel(parent), m_source(std::move(source)) {}

int AdornedListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_rows;
}

int AdornedListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_titles.size());
}

QVariant AdornedListModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !index.isValid() || !m_source)
        return QVariant();
    return m_source(index.row(), index.column());
}

QVariant AdornedListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= m_titles.size())
        return QVariant();
    return m_titles.at(section);
}

void AdornedListModel::setColumnTitles(const QStringList& titles) {
    beginResetModel();
    m_titles = titles;
    endResetModel();
}

void AdornedListModel::setRowCountTo(int rows) {
    if (rows == m_rows)
        return;
    if (rows > m_rows) {
        beginInsertRows(QModelIndex(), m_rows, rows - 1);
        m_rows = rows;
        endInsertRows();
        return;
    }
    beginRemoveRows(QModelIndex(), rows, m_rows - 1);
    m_rows = rows;
    endRemoveRows();
}

} // namespace zdtui

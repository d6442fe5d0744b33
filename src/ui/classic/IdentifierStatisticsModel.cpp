#include "classic/IdentifierStatisticsModel.h"

#include <array>
#include <utility>

namespace zdtui {
namespace {

const std::array<const char*, StatisticsColumnCount> kHeaders = {
    "Identifier",     "Channel",    "Total count", "Cycle min (ms)", "Cycle mid (ms)",
    "Cycle max (ms)", "Length min", "Length mid",  "Length max",     "Skipped times"};

enum Column { Identifier, Channel, Count, CycleMin, CycleMid, CycleMax, LengthMin, LengthMid, LengthMax, Skipped };

} // namespace

IdentifierStatisticsModel::IdentifierStatisticsModel(QObject* parent) : QAbstractTableModel(parent) {}

void IdentifierStatisticsModel::setStatistics(IdentifierStatistics statistics) {
    beginResetModel();
    m_statistics = std::move(statistics);
    endResetModel();
}

const IdentifierFigures& IdentifierStatisticsModel::figuresAt(int row) const {
    return m_statistics.figures.at(static_cast<std::size_t>(row));
}

int IdentifierStatisticsModel::rowOf(const IdentifierKey& key) const {
    const IdentifierFigures* figures = m_statistics.Find(key);
    return figures == nullptr ? -1 : static_cast<int>(figures - m_statistics.figures.data());
}

int IdentifierStatisticsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_statistics.figures.size());
}

int IdentifierStatisticsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(StatisticsColumnCount);
}

QVariant IdentifierStatisticsModel::sortValue(const IdentifierFigures& f, int column, int row) const {
    const bool cycles = f.HasCycleTime();
    switch (column) {
    case Identifier:
        return row; // the figures stand in key order
    case Channel:
        return f.key.channel;
    case Count:
        return f.count;
    case CycleMin:
        return cycles ? static_cast<double>(f.cycleMinMicros) : -1.0;
    case CycleMid:
        return cycles ? f.CycleMeanMillis() * 1000.0 : -1.0;
    case CycleMax:
        return cycles ? static_cast<double>(f.cycleMaxMicros) : -1.0;
    case LengthMin:
        return f.lengthMin;
    case LengthMid:
        return f.LengthMean();
    case LengthMax:
        return f.lengthMax;
    case Skipped:
        return f.skippedTimes;
    default:
        return {};
    }
}

QVariant IdentifierStatisticsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return {};
    const IdentifierFigures& f = figuresAt(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return QString::fromStdString(StatisticsCells(f)[static_cast<std::size_t>(index.column())]);
    case SortRole:
        return sortValue(f, index.column(), index.row());
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    default:
        return {};
    }
}

QVariant IdentifierStatisticsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 ||
        section >= static_cast<int>(kHeaders.size()))
        return QAbstractTableModel::headerData(section, orientation, role);
    return QString::fromLatin1(kHeaders[static_cast<std::size_t>(section)]);
}

} // namespace zdtui

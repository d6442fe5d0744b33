#pragma once

#include "classic/IdentifierStatistics.h"

#include <QAbstractTableModel>

namespace zdtui {

// The figures of every identifier and channel as a table. The display role shows the cells
// as `zdt-cli stats` prints them; SortRole holds numbers, so that a sort proxy sorts cycle
// times and counts by value, and "-" (no value) before every value.
class IdentifierStatisticsModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int SortRole = Qt::UserRole;

    explicit IdentifierStatisticsModel(QObject* parent = nullptr);

    void setStatistics(IdentifierStatistics statistics);
    const IdentifierStatistics& statistics() const { return m_statistics; }
    const IdentifierFigures& figuresAt(int row) const;
    // The model row of `key`, or -1.
    int rowOf(const IdentifierKey& key) const;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QVariant sortValue(const IdentifierFigures& figures, int column, int row) const;

    IdentifierStatistics m_statistics;
};

} // namespace zdtui

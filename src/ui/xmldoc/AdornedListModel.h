#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <functional>

namespace zdtui {

// The model of a virtual list: it stores only the row count and the column titles;
// a cell's text is fetched from the document when asked.
class AdornedListModel final : public QAbstractTableModel {
    Q_OBJECT
public:
    using TextSource = std::function<QString(int row, int column)>;

    explicit AdornedListModel(TextSource source, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void setColumnTitles(const QStringList& titles);
    void setRowCountTo(int rows);

private:
    TextSource m_source;
    QStringList m_titles;
    int m_rows = 0;
};

} // namespace zdtui

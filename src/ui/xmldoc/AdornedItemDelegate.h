#pragma once

#include <QStyledItemDelegate>

namespace zdtui {

class AdornedListView;

// Hands every cell to the list, which draws it as its owner-drawn rows are drawn.
class AdornedItemDelegate final : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit AdornedItemDelegate(AdornedListView& view);
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    AdornedListView& m_view;
};

} // namespace zdtui

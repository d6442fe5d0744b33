#include "xmldoc/AdornedItemDelegate.h"

#include "xmldoc/AdornedListView.h"

namespace zdtui {

AdornedItemDelegate::AdornedItemDelegate(AdornedListView& view) : QStyledItemDelegate(&view), m_view(view) {}

void AdornedItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    m_view.drawCell(painter, option, index);
}

} // namespace zdtui

#include "app/PlaceholderView.h"

#include "app/PlaceholderDocument.h"

namespace zdtui {

PlaceholderView::PlaceholderView(const PlaceholderDocument& document, StatusSink* status, QWidget* parent)
    : QLabel(parent), m_document(document), m_status(status) {
    setText(QStringLiteral("%1 files cannot be shown yet.").arg(document.kindName()));
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
    setMargin(8);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
}

void PlaceholderView::activateView() {
    if (m_status != nullptr)
        m_status->SetStatusDocument(m_document.pathName(), 0);
}

} // namespace zdtui

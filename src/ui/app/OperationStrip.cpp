#include "app/OperationStrip.h"

#include "app/BackgroundOperation.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace zdtui {

OperationStrip::OperationStrip(QWidget* parent)
    : QWidget(parent), m_label(new QLabel(this)), m_bar(new QProgressBar(this)),
      m_cancel(new QPushButton(QStringLiteral("Cancel"), this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 2, 4, 2);
    m_label->setTextFormat(Qt::PlainText);
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_bar->setRange(0, 1000);
    m_bar->setTextVisible(false);
    m_bar->setMaximumWidth(240);
    layout->addWidget(m_label, 1);
    layout->addWidget(m_bar);
    layout->addWidget(m_cancel);
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        if (m_operation != nullptr)
            m_operation->cancel();
        m_cancel->setEnabled(false);
    });
    hide();
}

void OperationStrip::follow(BackgroundOperation* operation) {
    if (m_operation != nullptr)
        disconnect(m_operation, nullptr, this, nullptr);
    m_operation = operation;
    if (operation == nullptr || !operation->isRunning()) {
        stop();
        return;
    }
    connect(operation, &BackgroundOperation::updated, this, &OperationStrip::refresh);
    connect(operation, &BackgroundOperation::finished, this, &OperationStrip::stop);
    connect(operation, &QObject::destroyed, this, &OperationStrip::stop);
    m_label->setText(operation->label());
    m_cancel->setEnabled(true);
    m_cancel->setVisible(operation->isCancellable());
    refresh();
    show();
}

void OperationStrip::refresh() {
    if (m_operation == nullptr)
        return;
    // Busy indication until the work knows its total.
    const int permille = m_operation->permille();
    if (permille == 0)
        m_bar->setRange(0, 0);
    else {
        m_bar->setRange(0, 1000);
        m_bar->setValue(permille);
    }
}

void OperationStrip::stop() {
    m_operation = nullptr;
    hide();
}

} // namespace zdtui

#include "filter/snp/SnpFilterDlg.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace zdtui::SNP {

namespace Logic = ZDTAnalyzer::Filter::SNP;

SnpFilterDlg::SnpFilterDlg(const std::set<std::string>& names, QWidget* parent)
    : QDialog(parent), m_ticks(names), m_list(new QListWidget(this)) {
    setWindowTitle(QString::fromUtf8(Logic::DialogTitle));
    m_list->setObjectName(QStringLiteral("services"));
    m_list->setMinimumWidth(280);
    for (std::size_t line = 0; line < m_ticks.names().size(); ++line) {
        auto* item = new QListWidgetItem(QString::fromStdString(m_ticks.names()[line]), m_list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(m_ticks.isTicked(line) ? Qt::Checked : Qt::Unchecked);
    }
    // A tick the user sets goes into the ticks at once, so "&Toggle" inverts what is shown.
    connect(m_list, &QListWidget::itemChanged, this, [this](QListWidgetItem* item) {
        m_ticks.setTicked(static_cast<std::size_t>(m_list->row(item)), item->checkState() == Qt::Checked);
    });

    auto* label = new QLabel(QString::fromUtf8(Logic::ListLabel), this);
    label->setBuddy(m_list);
    auto* apply = new QPushButton(QString::fromUtf8(Logic::ApplyLabel), this);
    auto* close = new QPushButton(QString::fromUtf8(Logic::CloseLabel), this);
    auto* toggle = new QPushButton(QString::fromUtf8(Logic::ToggleLabel), this);
    apply->setDefault(true);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(apply);
    buttons->addWidget(close);
    buttons->addStretch();
    buttons->addWidget(toggle);
    auto* left = new QVBoxLayout;
    left->addWidget(label);
    left->addWidget(m_list, 1);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);

    connect(apply, &QPushButton::clicked, this, &SnpFilterDlg::apply);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(toggle, &QPushButton::clicked, this, &SnpFilterDlg::toggle);
}

void SnpFilterDlg::toggle() {
    m_ticks.toggle();
    const QSignalBlocker quiet(m_list);
    for (int line = 0; line < m_list->count(); ++line)
        m_list->item(line)->setCheckState(m_ticks.isTicked(static_cast<std::size_t>(line)) ? Qt::Checked
                                                                                           : Qt::Unchecked);
}

void SnpFilterDlg::apply() {
    m_chosen = m_ticks.tickedNames();
    accept();
}

} // namespace zdtui::SNP

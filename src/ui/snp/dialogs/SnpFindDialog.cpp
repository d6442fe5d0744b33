#include "snp/dialogs/SnpFindDialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace zdtui {

using ZDTAnalyzer::Find::SNP::FindField;
using ZDTAnalyzer::Find::SNP::FindFieldCount;

namespace {

struct RadioRow {
    const char* label;
    int value;
};

// The radio groups in their order, each with the boxes it owns.
constexpr RadioRow Radios[] = {
    {"Snapshot", ZDTAnalyzer::Find::SNP::RadioSnapShot}, {"LogicalLink", ZDTAnalyzer::Find::SNP::RadioLogicalLink},
    {"Service", ZDTAnalyzer::Find::SNP::RadioService},   {"ComPrimitive", ZDTAnalyzer::Find::SNP::RadioComPrimitive},
    {"DTC", ZDTAnalyzer::Find::SNP::RadioDtc},           {"ProcessValue", ZDTAnalyzer::Find::SNP::RadioProcessValue},
};

constexpr const char* CheckBoxLabels[FindFieldCount] = {
    "ShortName", "LongName", "Created", "Name", "Name", "Name", "Value", "Name", "Unit", "Value",
};

constexpr const char* FieldKeys[FindFieldCount] = {
    "shortName",        "longName", "created",   "linkName",  "serviceName",
    "comPrimitiveName", "dtcValue", "valueName", "valueUnit", "valueText",
};

std::size_t indexOf(FindField field) {
    return static_cast<std::size_t>(field);
}

} // namespace

QString SnpFindDialog::checkBoxName(FindField field) {
    return QString::fromLatin1(FieldKeys[indexOf(field)]) + "Check";
}

QString SnpFindDialog::editName(FindField field) {
    return QString::fromLatin1(FieldKeys[indexOf(field)]) + "Edit";
}

SnpFindDialog::SnpFindDialog(QWidget* parent, ZDTAnalyzer::SnpFindCriteria& criteria)
    : QDialog(parent), m_criteria(criteria) {
    setWindowTitle("Snp Find");
    buildControls();
    m_radios->button(m_controls.radio)->setChecked(true);
    updateEnabling();
}

void SnpFindDialog::buildControls() {
    auto* grid = new QGridLayout;
    m_radios = new QButtonGroup(this);
    int line = 0;
    for (const RadioRow& radio : Radios) {
        auto* button = new QRadioButton(radio.label, this);
        m_radios->addButton(button, radio.value);
        grid->addWidget(button, line, 0);
        for (std::size_t index = 0; index < FindFieldCount; ++index) {
            if (ZDTAnalyzer::Find::SNP::radioOf(static_cast<FindField>(index)) != radio.value)
                continue;
            auto* box = new QCheckBox(CheckBoxLabels[index], this);
            box->setObjectName(checkBoxName(static_cast<FindField>(index)));
            auto* edit = new QLineEdit(this);
            edit->setObjectName(editName(static_cast<FindField>(index)));
            grid->addWidget(box, line, 1);
            grid->addWidget(edit, line, 2);
            m_checkBoxes[index] = box;
            m_edits[index] = edit;
            connect(box, &QCheckBox::toggled, this, &SnpFindDialog::updateEnabling);
            ++line;
        }
    }
    grid->setColumnStretch(2, 1);
    connect(m_radios, &QButtonGroup::idToggled, this, [this](int, bool checked) {
        if (checked)
            updateEnabling();
    });

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* find = buttons->addButton("Find", QDialogButtonBox::AcceptRole);
    buttons->addButton("Close", QDialogButtonBox::RejectRole);
    find->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &SnpFindDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SnpFindDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(grid);
    layout->addWidget(buttons);
}

void SnpFindDialog::readControls() {
    m_controls.radio = m_radios->checkedId();
    for (std::size_t index = 0; index < FindFieldCount; ++index) {
        m_controls.checked[index] = m_checkBoxes[index]->isChecked();
        m_controls.texts[index] = m_edits[index]->text().toStdString();
    }
}

void SnpFindDialog::updateEnabling() {
    readControls();
    const ZDTAnalyzer::Find::SNP::FindDialogEnabling enabling = ZDTAnalyzer::Find::SNP::enablingOf(m_controls);
    for (std::size_t index = 0; index < FindFieldCount; ++index) {
        m_checkBoxes[index]->setEnabled(enabling.checkBoxEnabled[index]);
        m_edits[index]->setEnabled(enabling.editEnabled[index]);
    }
}

void SnpFindDialog::accept() {
    readControls();
    ZDTAnalyzer::Find::SNP::fillCriteria(m_controls, m_criteria);
    QDialog::accept();
}

bool RunSnpFindDialog(QWidget* parent, ZDTAnalyzer::SnpFindCriteria& criteria) {
    SnpFindDialog dialog(parent, criteria);
    return dialog.exec() == QDialog::Accepted;
}

} // namespace zdtui

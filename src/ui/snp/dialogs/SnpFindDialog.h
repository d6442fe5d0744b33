#pragma once

#include "snp/SnpFindDialogLogic.h"

#include <QDialog>

#include <array>

class QAbstractButton;
class QButtonGroup;
class QCheckBox;
class QLineEdit;

namespace zdtui {

// "Snp Find": one kind of snapshot row and up to three texts to look for. Starts blank
// every time; "Find" fills the criteria and accepts, "Close" leaves them untouched.
class SnpFindDialog final : public QDialog {
    Q_OBJECT
public:
    SnpFindDialog(QWidget* parent, ZDTAnalyzer::SnpFindCriteria& criteria);

    // Object names of the controls, so that a field can be found although several
    // boxes share the label "Name" or "Value".
    static QString checkBoxName(ZDTAnalyzer::Find::SNP::FindField field);
    static QString editName(ZDTAnalyzer::Find::SNP::FindField field);

public Q_SLOTS:
    // "Find".
    void accept() override;

private:
    void buildControls();
    void readControls();
    void updateEnabling();

    ZDTAnalyzer::SnpFindCriteria& m_criteria;
    ZDTAnalyzer::Find::SNP::FindDialogControls m_controls;
    QButtonGroup* m_radios = nullptr;
    std::array<QCheckBox*, ZDTAnalyzer::Find::SNP::FindFieldCount> m_checkBoxes{};
    std::array<QLineEdit*, ZDTAnalyzer::Find::SNP::FindFieldCount> m_edits{};
};

// Runs the dialog over `criteria`; true when "Find" was pressed and a search is to run.
bool RunSnpFindDialog(QWidget* parent, ZDTAnalyzer::SnpFindCriteria& criteria);

} // namespace zdtui

#pragma once

#include "filter/FilterConditionMap.h"
#include "filter/FilterDialog701Logic.h"

#include <QDialog>
#include <QString>

class QButtonGroup;
class QGridLayout;
class QCheckBox;
class QLineEdit;
class QRadioButton;
class QTreeWidget;

namespace zdtui::XPVT_7_01 {

// Edits one 7.01 filter: conditions are added from the controls into the filter's map and
// listed below; "&OK" writes the map to the filter folder. Rows taken from the list leave
// the map as it is, so a deleted condition is still saved and still filters.
class CXpvtFilterDialog final : public QDialog {
    Q_OBJECT
public:
    enum class Mode { New, Edit };

    // New mode starts from the default conditions; edit mode from `conditions`, showing
    // `fileName` and a row for each condition that is set.
    CXpvtFilterDialog(Mode mode, const ZDTAnalyzer::Filter::XPVT_7_01::FilterConditionMap& conditions,
                      const QString& fileName, const QString& filterDirectory, QWidget* parent = nullptr);

    // The file "&OK" wrote; empty before.
    const QString& savedPath() const { return m_savedPath; }
    const ZDTAnalyzer::Filter::XPVT_7_01::FilterConditionMap& conditions() const { return m_conditions; }
    ZDTAnalyzer::Filter::XPVT_7_01::FilterDialogControls readControls() const;
    QTreeWidget* conditionList() const { return m_list; }

private:
    void buildEventControls(QGridLayout* grid);
    QRadioButton* addRadio(QButtonGroup* group, int id, const char* text, const char* name);
    QLineEdit* addEdit(const char* name);
    void eventChosen(int eventGroup);
    void appendRow(const ZDTAnalyzer::Filter::XPVT_7_01::ConditionRow& row);
    void onAdd();
    void onDelete();
    void onDeleteAll();
    void onOk();

    ZDTAnalyzer::Filter::XPVT_7_01::FilterConditionMap m_conditions;
    Mode m_mode;
    QString m_filterDirectory;
    QString m_savedPath;

    QButtonGroup* m_event;
    QButtonGroup* m_traceItem;
    QButtonGroup* m_comPrimitiveBy;
    QButtonGroup* m_resultItem;
    QButtonGroup* m_parameterBy;
    QButtonGroup* m_errorBy;
    QButtonGroup* m_mode701;
    QCheckBox* m_request = nullptr;
    QCheckBox* m_response = nullptr;
    QCheckBox* m_complete = nullptr;
    QLineEdit* m_logicalLink = nullptr;
    QLineEdit* m_comPrimitiveName = nullptr;
    QLineEdit* m_comPrimitiveId = nullptr;
    QLineEdit* m_pdu = nullptr;
    QLineEdit* m_parameterName = nullptr;
    QLineEdit* m_parameterType = nullptr;
    QLineEdit* m_parameterValue = nullptr;
    QLineEdit* m_errorCode = nullptr;
    QLineEdit* m_errorSeverity = nullptr;
    QLineEdit* m_fileName = nullptr;
    QTreeWidget* m_list = nullptr;
    // The controls under each event, enabled together.
    QList<QWidget*> m_traceControls;
    QList<QWidget*> m_resultControls;
};

} // namespace zdtui::XPVT_7_01

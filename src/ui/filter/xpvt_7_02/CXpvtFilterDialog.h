#pragma once

#include "filter/FilterCondition702.h"
#include "filter/FilterDialog702Logic.h"

#include <QDialog>
#include <QString>

#include <vector>

class QCheckBox;
class QGridLayout;
class QLineEdit;

namespace zdtui::XPVT_7_02 {

namespace FilterLogic = ZDTAnalyzer::Filter::XPVT_7_02;

// Edits one 7.02 filter record: a check, a "Not" and a text for each row under three
// group checks. Every change of a check recomputes which controls may be used. "OK" only
// checks the name; the list dialog writes the record.
class CXpvtFilterDialog final : public QDialog {
    Q_OBJECT
public:
    enum class Mode { New, Edit };

    // Edit mode shows `fileName` in a disabled "Filter file:".
    CXpvtFilterDialog(Mode mode, const FilterLogic::FilterCondition702& record, const QString& fileName,
                      const QString& filterDirectory, QWidget* parent = nullptr);

    // The record as the controls show it.
    FilterLogic::FilterCondition702 record() const;
    QString fileName() const;

private:
    using TextField = FilterLogic::TextCondition FilterLogic::FilterCondition702::*;
    using FlagField = bool FilterLogic::FilterCondition702::*;
    struct TextRow {
        TextField field;
        FilterLogic::RowEnabled FilterLogic::FilterDialogEnabled::*enabled;
        QCheckBox* check;
        QCheckBox* negate;
        QLineEdit* edit;
    };
    struct FlagCheck {
        FlagField field;
        // Null for the three group checks, which stay enabled.
        bool FilterLogic::FilterDialogEnabled::*enabled;
        QCheckBox* check;
    };

    QCheckBox* addFlagCheck(QGridLayout* grid, int indent, FlagField field,
                            bool FilterLogic::FilterDialogEnabled::*enabled, const char* label, const char* name);
    void addTextRow(QGridLayout* grid, int indent, TextField field,
                    FilterLogic::RowEnabled FilterLogic::FilterDialogEnabled::*enabled, const char* label,
                    const char* name);
    void showRecord(const FilterLogic::FilterCondition702& record);
    void updateEnabled();
    void onOk();

    Mode m_mode;
    QString m_filterDirectory;
    std::vector<FlagCheck> m_flags;
    std::vector<TextRow> m_rows;
    QLineEdit* m_fileName = nullptr;
};

} // namespace zdtui::XPVT_7_02

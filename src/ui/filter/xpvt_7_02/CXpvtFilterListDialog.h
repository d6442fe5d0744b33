#pragma once

#include "filter/FilterCondition702.h"
#include "filter/FilterListDialog.h"

namespace zdtui::XPVT_7_02 {

// The list of 7.02 filter files. "&Ok" reads the selected line's file into the caller's
// record; "&New..." and "&Edit..." write the records the filter dialog made.
class CXpvtFilterListDialog final : public FilterListDialog {
    Q_OBJECT
public:
    CXpvtFilterListDialog(ZDTAnalyzer::Filter::XPVT_7_02::FilterCondition702& record, const QString& filterDirectory,
                          QWidget* parent = nullptr);

    // True once "&Ok" read the selected filter into the record.
    bool filterChosen() const { return m_chosen; }

protected:
    bool fileCommandsEnabled() const override;
    void onNew() override;
    void onEdit() override;
    void onInfo() override;
    void onOk() override;

private:
    // False, after its box, when the file cannot be written.
    bool save(const QString& name, const ZDTAnalyzer::Filter::XPVT_7_02::FilterCondition702& record);
    void selectName(const QString& name);

    ZDTAnalyzer::Filter::XPVT_7_02::FilterCondition702& m_record;
    bool m_chosen = false;
};

} // namespace zdtui::XPVT_7_02

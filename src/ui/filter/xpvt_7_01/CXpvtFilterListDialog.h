#pragma once

#include "filter/FilterDialog701Logic.h"
#include "filter/FilterListDialog.h"

#include <optional>
#include <string>

namespace zdtui::XPVT_7_01 {

// The list of 7.01 filter files. "&Ok" applies the first file still counted, not the
// selected line; "&Remove" deletes the file and stops its entry from counting.
class CXpvtFilterListDialog final : public FilterListDialog {
    Q_OBJECT
public:
    CXpvtFilterListDialog(ZDTAnalyzer::Filter::XPVT_7_01::FilterFileList& files, const QString& filterDirectory,
                          QWidget* parent = nullptr);

    // After "&Ok": the filter file to run, none when no entry counts any more.
    const std::optional<std::string>& chosenFilter() const { return m_chosen; }

protected:
    bool fileCommandsEnabled() const override;
    void onNew() override;
    void onEdit() override;
    void onInfo() override;
    void onOk() override;
    void nameAdded(const QString& name) override;
    void nameRemoved(const QString& name) override;

private:
    ZDTAnalyzer::Filter::XPVT_7_01::FilterFileList& m_files;
    std::optional<std::string> m_chosen;
};

} // namespace zdtui::XPVT_7_01

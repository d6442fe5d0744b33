#pragma once

#include "filter/SnpFilterDlgLogic.h"

#include <QDialog>

#include <set>
#include <string>
#include <vector>

class QListWidget;
class QPushButton;

namespace zdtui::SNP {

// "Snp Filter": the services of a snapshot file, each with a tick, all ticked at first.
// "&Apply" closes with the ticked names, "&Close" with none chosen, "&Toggle" inverts
// every tick.
class SnpFilterDlg final : public QDialog {
    Q_OBJECT
public:
    SnpFilterDlg(const std::set<std::string>& names, QWidget* parent = nullptr);

    // After "&Apply": the ticked names in list order.
    const std::vector<std::string>& chosenNames() const { return m_chosen; }
    QListWidget* serviceList() const { return m_list; }

private:
    void toggle();
    void apply();

    ZDTAnalyzer::Filter::SNP::SnpFilterTicks m_ticks;
    QListWidget* m_list;
    std::vector<std::string> m_chosen;
};

} // namespace zdtui::SNP

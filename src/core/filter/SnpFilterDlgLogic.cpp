#include "filter/SnpFilterDlgLogic.h"

namespace ZDTAnalyzer::Filter::SNP {

SnpFilterTicks::SnpFilterTicks(const std::set<std::string>& names)
    : m_names(names.begin(), names.end()), m_ticked(names.size(), true) {}

void SnpFilterTicks::toggle() {
    m_ticked.flip();
}

std::vector<std::string> SnpFilterTicks::tickedNames() const {
    std::vector<std::string> ticked;
    for (std::size_t i = 0; i < m_names.size(); ++i)
        if (m_ticked[i])
            ticked.push_back(m_names[i]);
    return ticked;
}

} // namespace ZDTAnalyzer::Filter::SNP

#pragma once

#include <set>
#include <string>
#include <vector>

// The ticks of the snapshot filter dialog: every listed service starts ticked, "&Toggle"
// inverts each tick, "&Apply" takes the ticked names in list order.
namespace ZDTAnalyzer::Filter::SNP {

inline constexpr const char* DialogTitle = "Snp Filter";
inline constexpr const char* ListLabel = "Services:";
inline constexpr const char* ApplyLabel = "&Apply";
inline constexpr const char* CloseLabel = "&Close";
inline constexpr const char* ToggleLabel = "&Toggle";
inline constexpr const char* NotCreatedTitle = "E009_002 [Filter.]";
inline constexpr const char* NotCreatedText = "SnpFilterDlg could not be created.";

class SnpFilterTicks {
public:
    explicit SnpFilterTicks(const std::set<std::string>& names);

    const std::vector<std::string>& names() const { return m_names; }
    bool isTicked(std::size_t line) const { return m_ticked.at(line); }
    void setTicked(std::size_t line, bool ticked) { m_ticked.at(line) = ticked; }
    void toggle();
    std::vector<std::string> tickedNames() const;

private:
    std::vector<std::string> m_names;
    std::vector<bool> m_ticked;
};

} // namespace ZDTAnalyzer::Filter::SNP

#pragma once

#include <string_view>
#include <vector>

namespace ZDTAnalyzer {

// The widths of the 7.02 list as the user keeps them in the settings ("ColumnSettings"
// of section "XPVT"): numbers joined by "/", twelve of them, the last one unused.
class XpvtColumnSettings {
public:
    static constexpr const char* DefaultText = "35/30/150/160/160/40/110/200/200/40/120/50";
    static constexpr int ExpectedCount = 12;

    // Reads every part that begins with a digit as the number its leading digits form;
    // a part beginning with anything else adds nothing.
    static std::vector<int> parse(std::string_view text);

    // The widths to use: those of `text` when it holds exactly twelve numbers, else
    // those of the default text.
    static std::vector<int> widths(std::string_view text);
};

} // namespace ZDTAnalyzer

#pragma once

#include <string>

namespace zdtui {

// The export formats in the order of the Save As filters (index 1 to 4).
struct SaveAsFilter {
    const char* description;
    const char* pattern;
    const char* extension;
};
inline constexpr SaveAsFilter SaveAsFilters[] = {
    {"HTML (.html)", "*.html", "html"},
    {"Rich Text Format(.rtf)", "*.rtf", "rtf"},
    {"Adobe Acrobat (.pdf)", "*.pdf", "pdf"},
    {"MS Excel (.csv)", "*.csv", "csv"},
};
inline constexpr int SaveAsFilterCount = 4;

// The trace's path cut at its last dot, when that dot is past the first character.
std::string ProposedSaveAsName(const std::string& pathName);

// `name` with ".<extension>" of filter `filterIndex` (1 to 4) added unless it already
// ends so, in exactly that case.
std::string SaveAsNameWithExtension(const std::string& name, int filterIndex);

}  // namespace zdtui

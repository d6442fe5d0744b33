#pragma once

#include "xmldoc/AdornedListView.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <string>

class QFileDialog;

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

// The filters as a file dialog takes them, "<description> (<pattern>)", in index order.
QStringList SaveAsNameFilters();

// Title, save mode and filters of the Save As dialog. Each description already names its
// type, so the dialog shows the descriptions alone instead of repeating the pattern.
void PrepareSaveAsDialog(QFileDialog& dialog, const QString& proposedName);

// The index (1 to 4) of the filter a dialog reports as chosen, whether it reports the
// whole filter or only its description; 0 for anything else.
int SaveAsFilterIndex(const QString& selectedNameFilter);

// Runs the Save As dialog; empty unless the user chose a name.
std::optional<AdornedListView::SaveAsChoice> RunSaveAsDialog(QWidget* parent, const QString& proposedName);

} // namespace zdtui

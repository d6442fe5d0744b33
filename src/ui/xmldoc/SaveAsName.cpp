#include "xmldoc/SaveAsName.h"

#include <QFileDialog>

namespace zdtui {

std::string ProposedSaveAsName(const std::string& pathName) {
    const std::string::size_type dot = pathName.rfind('.');
    if (dot == std::string::npos || dot == 0)
        return pathName;
    return pathName.substr(0, dot);
}

std::string SaveAsNameWithExtension(const std::string& name, int filterIndex) {
    if (filterIndex < 1 || filterIndex > SaveAsFilterCount)
        return name;
    const std::string suffix = std::string(".") + SaveAsFilters[filterIndex - 1].extension;
    const bool present =
        name.size() >= suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    return present ? name : name + suffix;
}

QStringList SaveAsNameFilters() {
    QStringList filters;
    for (const SaveAsFilter& filter : SaveAsFilters)
        filters << QStringLiteral("%1 (%2)").arg(QString::fromUtf8(filter.description),
                                                 QString::fromUtf8(filter.pattern));
    return filters;
}

void PrepareSaveAsDialog(QFileDialog& dialog, const QString& proposedName) {
    dialog.setWindowTitle(QString::fromUtf8(AdornedListView::SaveAsTitle));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::HideNameFilterDetails, true);
    dialog.setNameFilters(SaveAsNameFilters());
    dialog.selectFile(proposedName);
}

int SaveAsFilterIndex(const QString& selectedNameFilter) {
    const QStringList filters = SaveAsNameFilters();
    const QString chosen = selectedNameFilter.trimmed();
    for (int i = 0; i < SaveAsFilterCount; ++i) {
        if (chosen == filters[i] || chosen == QString::fromUtf8(SaveAsFilters[i].description))
            return i + 1;
    }
    return 0;
}

std::optional<AdornedListView::SaveAsChoice> RunSaveAsDialog(QWidget* parent, const QString& proposedName) {
    QFileDialog dialog(parent);
    PrepareSaveAsDialog(dialog, proposedName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return AdornedListView::SaveAsChoice{dialog.selectedFiles().first(),
                                         SaveAsFilterIndex(dialog.selectedNameFilter())};
}

} // namespace zdtui

#include "filter/xpvt_7_01/CXpvtFilterListDialog.h"

#include "app/Boxes.h"
#include "filter/FilterRun.h"
#include "filter/FilterRunner.h"
#include "filter/PvfltFile.h"
#include "filter/xpvt_7_01/CXpvtFilterDialog.h"

#include <QFileInfo>
#include <QListWidget>

namespace zdtui::XPVT_7_01 {

namespace Logic = ZDTAnalyzer::Filter::XPVT_7_01;

namespace {

FilterFileChoice AddChoice() {
    // The file dialog's form of "Xpvt Filter Files (*.pvflt)|*.pvflt||".
    return {QString::fromUtf8(Logic::AddFileDialogTitle), QStringLiteral("Xpvt Filter Files (*.pvflt)"),
            QStringLiteral("*.pvflt"), QStringLiteral("pvflt"), QString()};
}

void ShowError(QWidget* parent, const char* title, const std::string& text) {
    Boxes::instance().show(parent, QString::fromUtf8(title),
                           QString::fromStdString(Logic::formatMessage(Logic::ErrorOccuredFormat, text)),
                           QMessageBox::Critical);
}

QString RowText(const Logic::ConditionRow& row) {
    QStringList cells;
    for (const std::string* cell : {&row.event, &row.item, &row.by})
        if (!cell->empty())
            cells << QString::fromStdString(*cell);
    if (row.event == "Result")
        cells << QStringLiteral("request %1, response %2, complete %3")
                     .arg(QString::fromStdString(row.request), QString::fromStdString(row.response),
                          QString::fromStdString(row.complete));
    QString text = cells.join(QLatin1Char(' '));
    if (!row.by.empty())
        text += QStringLiteral(": \"%1\"").arg(QString::fromStdString(row.value));
    return text;
}

} // namespace

CXpvtFilterListDialog::CXpvtFilterListDialog(Logic::FilterFileList& files, const QString& filterDirectory,
                                             QWidget* parent)
    : FilterListDialog(filterDirectory, AddChoice(), parent), m_files(files) {
    updateButtons();
}

bool CXpvtFilterListDialog::fileCommandsEnabled() const {
    return fileList()->count() > 0;
}

void CXpvtFilterListDialog::nameAdded(const QString& name) {
    m_files.names.push_back(LocalFilePath(name));
    m_files.counted.push_back(true);
}

void CXpvtFilterListDialog::nameRemoved(const QString& name) {
    Logic::stopCounting(m_files, LocalFilePath(name));
}

void CXpvtFilterListDialog::onNew() {
    CXpvtFilterDialog dialog(CXpvtFilterDialog::Mode::New, {}, QString(), filterDirectory(), this);
    if (dialog.exec() == QDialog::Accepted)
        addListedName(QFileInfo(dialog.savedPath()).fileName());
}

void CXpvtFilterListDialog::onEdit() {
    const QString name = selectedName();
    if (name.isEmpty())
        return;
    Logic::FilterConditionMap conditions;
    std::string errorText;
    if (!Logic::readFilterFileForEdit(LocalFilePath(pathOf(name)), conditions, errorText)) {
        ShowError(this, Logic::EditFailedTitle, errorText);
        return;
    }
    CXpvtFilterDialog dialog(CXpvtFilterDialog::Mode::Edit, conditions, name, filterDirectory(), this);
    if (dialog.exec() == QDialog::Accepted)
        addListedName(QFileInfo(dialog.savedPath()).fileName());
}

// What the selected filter holds, as the filter dialog would list it.
void CXpvtFilterListDialog::onInfo() {
    const QString name = selectedName();
    if (name.isEmpty())
        return;
    const std::string path = LocalFilePath(pathOf(name));
    Logic::FilterConditionMap conditions;
    if (!Logic::readFilterFileForRun(path, conditions)) {
        ShowError(this, Logic::EditFailedTitle, ZDTAnalyzer::Filter::couldNotLoadFilterText(path));
        return;
    }
    QStringList lines{name, QString()};
    for (const Logic::ConditionRow& row : Logic::conditionRows(conditions))
        lines << RowText(row);
    const bool exclude = conditions[std::string(Logic::ExcludeItemsKey)] == "1";
    lines << QString()
          << (exclude ? QStringLiteral("Exclude XML -PVTrace Items") : QStringLiteral("Include XML -PVTrace Items"));
    Boxes::instance().show(this, QString::fromUtf8(Title), lines.join(QLatin1Char('\n')), QMessageBox::Information);
}

void CXpvtFilterListDialog::onOk() {
    m_chosen = Logic::filterFileToApply(m_files);
    accept();
}

} // namespace zdtui::XPVT_7_01

#include "filter/xpvt_7_02/CXpvtFilterListDialog.h"

#include "app/Boxes.h"
#include "filter/FilterDialog701Logic.h"
#include "filter/FilterDialog702Logic.h"
#include "filter/FilterRun.h"
#include "filter/FilterRunner.h"
#include "filter/xpvt_7_02/CXpvtFilterDialog.h"

#include <QDir>
#include <QListWidget>

namespace zdtui::XPVT_7_02 {

namespace Logic = ZDTAnalyzer::Filter::XPVT_7_02;
namespace Logic701 = ZDTAnalyzer::Filter::XPVT_7_01;
using ZDTAnalyzer::Filter::couldNotLoadFilterText;

namespace {

FilterFileChoice AddChoice() {
    // The file dialog's form of "Xpvt 7.02 Filter Files (*.pvflt2)|*.pvflt2||".
    return {QString::fromUtf8(Logic::AddFileDialogTitle), QStringLiteral("Xpvt 7.02 Filter Files (*.pvflt2)"),
            QStringLiteral("*.pvflt2"), QString::fromUtf8(Logic::AddFileDefaultExtension), QString()};
}

void ShowBox(QWidget* parent, const char* title, const char* format, const std::string& text) {
    Boxes::instance().show(parent, QString::fromUtf8(title),
                           QString::fromStdString(Logic701::formatMessage(format, text)), QMessageBox::Critical);
}

// One line per row that takes part, as the filter dialog labels it.
QStringList RowLines(const Logic::FilterCondition702& r) {
    struct Line {
        const char* label;
        const Logic::TextCondition* condition;
        bool groupsOn;
    };
    const Line lines[] = {
        {"Logical Link", &r.logicalLink, r.includeOpenCloseLogicalLinks},
        {"Access Key Of Location", &r.accessKeyOfLocation, r.includeOpenCloseLogicalLinks},
        {"Logical Link", &r.primitiveLogicalLink, r.includeStartFinishPrimitives},
        {"Access Key Of Location", &r.primitiveAccessKeyOfLocation, r.includeStartFinishPrimitives},
        {"Parent Diagcom Primitive", &r.parentDiagComPrimitive, r.includeStartFinishPrimitives},
        {"Diagcom Primitive Shortname", &r.primitiveShortName, r.includeResults},
        {"Diagcom Primitive ID", &r.primitiveId, r.includeResults},
        {"Request Shortname", &r.requestShortName, r.includeResults},
        {"Request Message", &r.requestMessage, r.includeResults},
        {"Request Parameter Shortname", &r.requestParameterShortName, r.includeResults && r.requestParameterFilter},
        {"Request Parameter Value", &r.requestParameterValue, r.includeResults && r.requestParameterFilter},
        {"Response Shortname", &r.responseShortName, r.includeResults},
        {"Response Message", &r.responseMessage, r.includeResults},
        {"Response Parameter Shortname", &r.responseParameterShortName, r.includeResults && r.responseParameterFilter},
        {"Response Parameter Value", &r.responseParameterValue, r.includeResults && r.responseParameterFilter},
    };
    QStringList text;
    const auto group = [&text](const char* label, bool on) {
        text << QStringLiteral("%1: %2").arg(QString::fromUtf8(label),
                                             on ? QStringLiteral("yes") : QStringLiteral("no"));
    };
    group("Open|Close Logical Links", r.includeOpenCloseLogicalLinks);
    group("Start|Finish Diagcom Primitives", r.includeStartFinishPrimitives);
    group("Responses", r.includeResults);
    for (const Line& line : lines) {
        if (!line.groupsOn || !line.condition->enabled)
            continue;
        text << QStringLiteral("  %1%2 \"%3\"")
                    .arg(QString::fromUtf8(line.label), line.condition->negate ? QStringLiteral(" not") : QString(),
                         QString::fromStdString(line.condition->text));
    }
    return text;
}

} // namespace

CXpvtFilterListDialog::CXpvtFilterListDialog(Logic::FilterCondition702& record, const QString& filterDirectory,
                                             QWidget* parent)
    : FilterListDialog(filterDirectory, AddChoice(), parent), m_record(record) {
    updateButtons();
}

bool CXpvtFilterListDialog::fileCommandsEnabled() const {
    return !fileList()->selectedItems().isEmpty();
}

bool CXpvtFilterListDialog::save(const QString& name, const Logic::FilterCondition702& record) {
    const std::string path = LocalFilePath(pathOf(name));
    if (QDir().mkpath(filterDirectory()) && Logic::saveFilter702(path, record))
        return true;
    ShowBox(this, Logic701::CannotOpenFileTitle, Logic701::CannotOpenFileFormat, path);
    return false;
}

void CXpvtFilterListDialog::selectName(const QString& name) {
    const QList<QListWidgetItem*> found = fileList()->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (!found.isEmpty())
        fileList()->setCurrentItem(found.first());
}

void CXpvtFilterListDialog::onNew() {
    CXpvtFilterDialog dialog(CXpvtFilterDialog::Mode::New, {}, QString(), filterDirectory(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    // The extension goes on without a look at the name, so a typed one is doubled.
    const QString name = QString::fromStdString(Logic::newFilterFileName(dialog.fileName().toStdString()));
    if (!save(name, dialog.record()))
        return;
    addListedName(name);
    selectName(name);
}

void CXpvtFilterListDialog::onEdit() {
    const QString name = selectedName();
    if (name.isEmpty())
        return;
    Logic::FilterCondition702 record;
    if (!Logic::loadFilter702(LocalFilePath(pathOf(name)), record)) {
        ShowBox(this, Logic701::EditFailedTitle, Logic701::ErrorOccuredFormat,
                couldNotLoadFilterText(LocalFilePath(pathOf(name))));
        return;
    }
    CXpvtFilterDialog dialog(CXpvtFilterDialog::Mode::Edit, record, name, filterDirectory(), this);
    if (dialog.exec() == QDialog::Accepted)
        save(name, dialog.record());
}

// What the selected filter holds, as the filter dialog labels it.
void CXpvtFilterListDialog::onInfo() {
    const QString name = selectedName();
    if (name.isEmpty())
        return;
    Logic::FilterCondition702 record;
    if (!Logic::loadFilter702(LocalFilePath(pathOf(name)), record)) {
        ShowBox(this, Logic701::EditFailedTitle, Logic701::ErrorOccuredFormat,
                couldNotLoadFilterText(LocalFilePath(pathOf(name))));
        return;
    }
    Boxes::instance().show(this, QString::fromUtf8(Title), (QStringList{name, QString()} + RowLines(record)).join('\n'),
                           QMessageBox::Information);
}

void CXpvtFilterListDialog::onOk() {
    const QString name = selectedName();
    if (!name.isEmpty()) {
        const std::string path = LocalFilePath(pathOf(name));
        Logic::FilterCondition702 record;
        if (Logic::loadFilter702(path, record)) {
            m_record = record;
            m_chosen = true;
        } else {
            ShowBox(this, Logic::FilterErrorTitle, Logic::FilterErrorFormat, couldNotLoadFilterText(path));
        }
    }
    accept();
}

} // namespace zdtui::XPVT_7_02

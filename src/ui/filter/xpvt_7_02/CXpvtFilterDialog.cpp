#include "filter/xpvt_7_02/CXpvtFilterDialog.h"

#include "app/Boxes.h"
#include "filter/FilterRunner.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zdtui::XPVT_7_02 {

namespace {

using Record = FilterLogic::FilterCondition702;
using Enabled = FilterLogic::FilterDialogEnabled;

// Columns: two of indentation (a group's rows stand under it, a parameter's under its
// parameter check), the row's check, "Not", the text.
constexpr int IndentStep = 20;
constexpr int NotColumn = 3;
constexpr int EditColumn = 4;

void Indent(QGridLayout* grid) {
    grid->setColumnMinimumWidth(0, IndentStep);
    grid->setColumnMinimumWidth(1, IndentStep);
    grid->setColumnStretch(EditColumn, 1);
}

} // namespace

CXpvtFilterDialog::CXpvtFilterDialog(Mode mode, const Record& record, const QString& fileName,
                                     const QString& filterDirectory, QWidget* parent)
    : QDialog(parent), m_mode(mode), m_filterDirectory(filterDirectory) {
    setWindowTitle(QString::fromUtf8(FilterLogic::NewFilterTitle));

    auto* links = new QGridLayout;
    Indent(links);
    addFlagCheck(links, 0, &Record::includeOpenCloseLogicalLinks, nullptr, "Open|Close Logical Links",
                 "includeOpenCloseLogicalLinks");
    addTextRow(links, 1, &Record::logicalLink, &Enabled::logicalLink, "Logical Link", "logicalLink");
    addTextRow(links, 1, &Record::accessKeyOfLocation, &Enabled::accessKeyOfLocation, "Access Key Of Location",
               "accessKeyOfLocation");
    links->setRowMinimumHeight(links->rowCount(), 12);
    addFlagCheck(links, 0, &Record::includeStartFinishPrimitives, nullptr, "Start|Finish Diagcom Primitives",
                 "includeStartFinishPrimitives");
    addTextRow(links, 1, &Record::primitiveLogicalLink, &Enabled::primitiveLogicalLink, "Logical Link",
               "primitiveLogicalLink");
    addTextRow(links, 1, &Record::primitiveAccessKeyOfLocation, &Enabled::primitiveAccessKeyOfLocation,
               "Access Key Of Location", "primitiveAccessKeyOfLocation");
    addTextRow(links, 1, &Record::parentDiagComPrimitive, &Enabled::parentDiagComPrimitive, "Parent Diagcom Primitive",
               "parentDiagComPrimitive");
    links->setRowStretch(links->rowCount(), 1);

    auto* results = new QGridLayout;
    Indent(results);
    addFlagCheck(results, 0, &Record::includeResults, nullptr, "Responses", "includeResults");
    addTextRow(results, 1, &Record::primitiveShortName, &Enabled::primitiveShortName, "Diagcom Primitive Shortname",
               "primitiveShortName");
    addTextRow(results, 1, &Record::primitiveId, &Enabled::primitiveId, "Diagcom Primitive ID", "primitiveId");
    addTextRow(results, 1, &Record::requestShortName, &Enabled::requestShortName, "Request Shortname",
               "requestShortName");
    addTextRow(results, 1, &Record::requestMessage, &Enabled::requestMessage, "Request Message", "requestMessage");
    addFlagCheck(results, 1, &Record::requestParameterFilter, &Enabled::requestParameterFilter, "Request Parameter",
                 "requestParameterFilter");
    addTextRow(results, 2, &Record::requestParameterShortName, &Enabled::requestParameterShortName,
               "Request Parameter Shortname", "requestParameterShortName");
    addTextRow(results, 2, &Record::requestParameterValue, &Enabled::requestParameterValue, "Request Parameter Value",
               "requestParameterValue");
    addTextRow(results, 1, &Record::responseShortName, &Enabled::responseShortName, "Response Shortname",
               "responseShortName");
    addTextRow(results, 1, &Record::responseMessage, &Enabled::responseMessage, "Response Message", "responseMessage");
    addFlagCheck(results, 1, &Record::responseParameterFilter, &Enabled::responseParameterFilter, "Response Parameter",
                 "responseParameterFilter");
    addTextRow(results, 2, &Record::responseParameterShortName, &Enabled::responseParameterShortName,
               "Response Parameter Shortname", "responseParameterShortName");
    addTextRow(results, 2, &Record::responseParameterValue, &Enabled::responseParameterValue,
               "Response Parameter Value", "responseParameterValue");

    auto* columns = new QHBoxLayout;
    columns->addLayout(links, 1);
    columns->addSpacing(24);
    columns->addLayout(results, 1);

    m_fileName = new QLineEdit(fileName, this);
    m_fileName->setObjectName(QStringLiteral("fileName"));
    auto* fileLabel = new QLabel(QStringLiteral("Filter file:"), this);
    fileLabel->setBuddy(m_fileName);
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(fileLabel);
    fileRow->addWidget(m_fileName, 1);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("ok"));
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("cancel"));
    // "OK" decides itself whether the dialog may close.
    connect(ok, &QPushButton::clicked, this, &CXpvtFilterDialog::onOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(columns);
    layout->addSpacing(8);
    layout->addLayout(fileRow);
    layout->addWidget(buttons);

    showRecord(record);
    updateEnabled();
}

QCheckBox* CXpvtFilterDialog::addFlagCheck(QGridLayout* grid, int indent, FlagField field, bool Enabled::*enabled,
                                           const char* label, const char* name) {
    auto* check = new QCheckBox(QString::fromUtf8(label), this);
    check->setObjectName(QString::fromUtf8(name));
    grid->addWidget(check, grid->rowCount(), indent, 1, EditColumn + 1 - indent);
    m_flags.push_back({field, enabled, check});
    connect(check, &QCheckBox::toggled, this, &CXpvtFilterDialog::updateEnabled);
    return check;
}

void CXpvtFilterDialog::addTextRow(QGridLayout* grid, int indent, TextField field,
                                   FilterLogic::RowEnabled Enabled::*enabled, const char* label, const char* name) {
    const QString base = QString::fromUtf8(name);
    auto* check = new QCheckBox(QString::fromUtf8(label), this);
    check->setObjectName(base);
    auto* negate = new QCheckBox(QStringLiteral("Not"), this);
    negate->setObjectName(base + QStringLiteral("Not"));
    auto* edit = new QLineEdit(this);
    edit->setObjectName(base + QStringLiteral("Edit"));
    edit->setMinimumWidth(160);
    const int row = grid->rowCount();
    grid->addWidget(check, row, indent, 1, NotColumn - indent);
    grid->addWidget(negate, row, NotColumn);
    grid->addWidget(edit, row, EditColumn);
    m_rows.push_back({field, enabled, check, negate, edit});
    connect(check, &QCheckBox::toggled, this, &CXpvtFilterDialog::updateEnabled);
}

void CXpvtFilterDialog::showRecord(const Record& record) {
    for (const FlagCheck& flag : m_flags)
        flag.check->setChecked(record.*flag.field);
    for (const TextRow& row : m_rows) {
        const FilterLogic::TextCondition& condition = record.*row.field;
        row.check->setChecked(condition.enabled);
        row.negate->setChecked(condition.negate);
        row.edit->setText(QString::fromStdString(condition.text));
    }
}

Record CXpvtFilterDialog::record() const {
    Record record;
    for (const FlagCheck& flag : m_flags)
        record.*flag.field = flag.check->isChecked();
    for (const TextRow& row : m_rows) {
        FilterLogic::TextCondition& condition = record.*row.field;
        condition.enabled = row.check->isChecked();
        condition.negate = row.negate->isChecked();
        condition.text = row.edit->text().toStdString();
    }
    return record;
}

QString CXpvtFilterDialog::fileName() const {
    return m_fileName->text();
}

void CXpvtFilterDialog::updateEnabled() {
    const Enabled enabled = FilterLogic::filterDialogEnabled(record(), m_mode == Mode::Edit);
    for (const FlagCheck& flag : m_flags) {
        if (flag.enabled != nullptr)
            flag.check->setEnabled(enabled.*flag.enabled);
    }
    for (const TextRow& row : m_rows) {
        const FilterLogic::RowEnabled& state = enabled.*row.enabled;
        row.check->setEnabled(state.check);
        row.negate->setEnabled(state.notAndEdit);
        row.edit->setEnabled(state.notAndEdit);
    }
    m_fileName->setEnabled(enabled.fileName);
}

void CXpvtFilterDialog::onOk() {
    const FilterLogic::CheckedName checked = FilterLogic::checkFilterName(
        LocalFilePath(fileName()), m_mode == Mode::New, LocalFilePath(m_filterDirectory),
        [](const std::string& path) { return QFile::exists(QFile::decodeName(path.c_str())); });
    if (checked.box) {
        Boxes::instance().show(this, QString::fromStdString(checked.box->title),
                               QString::fromStdString(checked.box->text), ToQtIcon(checked.box->icon));
        return;
    }
    accept();
}

} // namespace zdtui::XPVT_7_02

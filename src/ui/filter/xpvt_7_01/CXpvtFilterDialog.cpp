#include "filter/xpvt_7_01/CXpvtFilterDialog.h"

#include "app/Boxes.h"
#include "filter/FilterRunner.h"
#include "filter/PvfltFile.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace zdtui::XPVT_7_01 {

namespace Logic = ZDTAnalyzer::Filter::XPVT_7_01;

namespace {

void ShowBox(QWidget* parent, const zdt::UserMessage& box) {
    Boxes::instance().show(parent, QString::fromStdString(box.title), QString::fromStdString(box.text),
                           ToQtIcon(box.icon));
}

// A radio group with nothing chosen; an exclusive group would keep one checked.
void ClearGroup(QButtonGroup* group) {
    group->setExclusive(false);
    for (QAbstractButton* button : group->buttons())
        button->setChecked(false);
    group->setExclusive(true);
}

std::string Text(const QLineEdit* edit) {
    return edit->text().toStdString();
}

} // namespace

CXpvtFilterDialog::CXpvtFilterDialog(Mode mode, const Logic::FilterConditionMap& conditions, const QString& fileName,
                                     const QString& filterDirectory, QWidget* parent)
    : QDialog(parent), m_conditions(mode == Mode::New ? Logic::defaultFilterConditionMap() : conditions), m_mode(mode),
      m_filterDirectory(filterDirectory), m_event(new QButtonGroup(this)), m_traceItem(new QButtonGroup(this)),
      m_comPrimitiveBy(new QButtonGroup(this)), m_resultItem(new QButtonGroup(this)),
      m_parameterBy(new QButtonGroup(this)), m_errorBy(new QButtonGroup(this)), m_mode701(new QButtonGroup(this)) {
    setWindowTitle(QString::fromUtf8(mode == Mode::New ? Logic::NewFilterTitle : Logic::EditFilterTitle));

    auto* events = new QGridLayout;
    buildEventControls(events);
    auto* add = new QPushButton(QStringLiteral("&Add"), this);
    add->setObjectName(QStringLiteral("add"));
    add->setAutoDefault(false);
    auto* addRow = new QHBoxLayout;
    addRow->addStretch();
    addRow->addWidget(add);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("conditionList"));
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    QStringList titles;
    for (const Logic::ColumnHeader& column : Logic::ConditionColumns)
        titles << QString::fromUtf8(column.title);
    m_list->setHeaderLabels(titles);
    for (int i = 0; i < titles.size(); ++i)
        m_list->header()->resizeSection(i, Logic::ConditionColumns[i].width);
    m_list->setMinimumWidth(600);

    auto* remove = new QPushButton(QStringLiteral("&Delete"), this);
    remove->setObjectName(QStringLiteral("delete"));
    auto* removeAll = new QPushButton(QStringLiteral("De&lete All"), this);
    removeAll->setObjectName(QStringLiteral("deleteAll"));
    for (QPushButton* button : {remove, removeAll})
        button->setAutoDefault(false);
    auto* listButtons = new QHBoxLayout;
    listButtons->addWidget(remove);
    listButtons->addWidget(removeAll);
    listButtons->addStretch();

    auto* modes = new QHBoxLayout;
    modes->addWidget(addRadio(m_mode701, 0, "&Include XML -PVTrace Items", "include"));
    modes->addWidget(addRadio(m_mode701, 1, "&Exclude XML -PVTrace Items", "exclude"));
    modes->addStretch();

    m_fileName = addEdit("fileName");
    auto* fileRow = new QHBoxLayout;
    auto* fileLabel = new QLabel(QStringLiteral("Filter file name:"), this);
    fileLabel->setBuddy(m_fileName);
    fileRow->addWidget(fileLabel);
    fileRow->addWidget(m_fileName, 1);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("&OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("ok"));
    buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole)->setObjectName(QStringLiteral("cancel"));

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(events);
    layout->addLayout(addRow);
    layout->addWidget(m_list, 1);
    layout->addLayout(listButtons);
    layout->addLayout(modes);
    layout->addLayout(fileRow);
    layout->addWidget(buttons);

    connect(m_event, &QButtonGroup::idClicked, this, &CXpvtFilterDialog::eventChosen);
    connect(add, &QPushButton::clicked, this, &CXpvtFilterDialog::onAdd);
    connect(remove, &QPushButton::clicked, this, &CXpvtFilterDialog::onDelete);
    connect(removeAll, &QPushButton::clicked, this, &CXpvtFilterDialog::onDeleteAll);
    // "&OK" decides itself whether the dialog may close.
    connect(ok, &QPushButton::clicked, this, &CXpvtFilterDialog::onOk);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    // Nothing is chosen yet, so nothing under the events can be used.
    const Logic::EventControlsEnabled none = Logic::eventControlsEnabled(-1);
    for (QWidget* control : m_traceControls)
        control->setEnabled(none.traceControls);
    for (QWidget* control : m_resultControls)
        control->setEnabled(none.resultControls);

    const bool exclude = mode == Mode::Edit && m_conditions[std::string(Logic::ExcludeItemsKey)] == "1";
    m_mode701->button(exclude ? 1 : 0)->setChecked(true);
    if (mode == Mode::Edit) {
        m_fileName->setText(fileName);
        for (const Logic::ConditionRow& row : Logic::conditionRows(m_conditions))
            appendRow(row);
    }
}

QRadioButton* CXpvtFilterDialog::addRadio(QButtonGroup* group, int id, const char* text, const char* name) {
    auto* radio = new QRadioButton(QString::fromUtf8(text), this);
    radio->setObjectName(QString::fromUtf8(name));
    group->addButton(radio, id);
    return radio;
}

QLineEdit* CXpvtFilterDialog::addEdit(const char* name) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QString::fromUtf8(name));
    return edit;
}

void CXpvtFilterDialog::buildEventControls(QGridLayout* grid) {
    // Columns: the event, the item, how the item is chosen, the text.
    grid->setColumnMinimumWidth(0, 16);
    grid->setColumnStretch(3, 1);
    grid->addWidget(addRadio(m_event, 0, "Trace or Primitive events", "traceEvents"), 0, 0, 1, 4);
    QRadioButton* startStop = addRadio(m_traceItem, 0, "Start / Stop &Trace", "startStopTrace");
    QRadioButton* logicalLink = addRadio(m_traceItem, 1, "Open/Close &LogicalLink by Name:", "logicalLinkByName");
    QRadioButton* comPrimitive = addRadio(m_traceItem, 2, "Open/Close &ComPrimitive", "comPrimitive");
    QRadioButton* byName = addRadio(m_comPrimitiveBy, 0, "by Na&me", "comPrimitiveByName");
    QRadioButton* byId = addRadio(m_comPrimitiveBy, 1, "by &ID", "comPrimitiveById");
    m_logicalLink = addEdit("logicalLinkName");
    m_comPrimitiveName = addEdit("comPrimitiveName");
    m_comPrimitiveId = addEdit("comPrimitiveId");
    grid->addWidget(startStop, 1, 1, 1, 2);
    grid->addWidget(logicalLink, 2, 1, 1, 2);
    grid->addWidget(m_logicalLink, 2, 3);
    grid->addWidget(comPrimitive, 3, 1);
    grid->addWidget(byName, 3, 2);
    grid->addWidget(m_comPrimitiveName, 3, 3);
    grid->addWidget(byId, 4, 2);
    grid->addWidget(m_comPrimitiveId, 4, 3);
    m_traceControls = {startStop, logicalLink,   comPrimitive,       byName,
                       byId,      m_logicalLink, m_comPrimitiveName, m_comPrimitiveId};

    grid->setRowMinimumHeight(5, 8);
    grid->addWidget(addRadio(m_event, 1, "&Result events", "resultEvents"), 6, 0, 1, 4);
    m_request = new QCheckBox(QStringLiteral("Req&uest"), this);
    m_request->setObjectName(QStringLiteral("request"));
    m_response = new QCheckBox(QStringLiteral("Resp&onse"), this);
    m_response->setObjectName(QStringLiteral("response"));
    m_complete = new QCheckBox(QStringLiteral("Include / E&xclude complete result structure"), this);
    m_complete->setObjectName(QStringLiteral("complete"));
    auto* sides = new QHBoxLayout;
    sides->addWidget(m_request);
    sides->addWidget(m_response);
    sides->addSpacing(24);
    sides->addWidget(m_complete);
    sides->addStretch();
    grid->addLayout(sides, 7, 1, 1, 3);

    QRadioButton* pdu = addRadio(m_resultItem, 0, "PDU &by byte pattern (HEX):", "pdu");
    QRadioButton* parameter = addRadio(m_resultItem, 1, "&Parameter", "parameter");
    QRadioButton* error = addRadio(m_resultItem, 2, "&Error", "error");
    QRadioButton* byParameterName = addRadio(m_parameterBy, 0, "by &Name:", "parameterByName");
    QRadioButton* byType = addRadio(m_parameterBy, 1, "by &Type:", "parameterByType");
    QRadioButton* byValue = addRadio(m_parameterBy, 2, "by &Value:", "parameterByValue");
    QRadioButton* byCode = addRadio(m_errorBy, 0, "by &Code:", "errorByCode");
    QRadioButton* bySeverity = addRadio(m_errorBy, 1, "by &Severity:", "errorBySeverity");
    m_pdu = addEdit("pduPattern");
    m_parameterName = addEdit("parameterName");
    m_parameterType = addEdit("parameterType");
    m_parameterValue = addEdit("parameterValue");
    m_errorCode = addEdit("errorCode");
    m_errorSeverity = addEdit("errorSeverity");
    grid->addWidget(pdu, 8, 1, 1, 2);
    grid->addWidget(m_pdu, 8, 3);
    grid->addWidget(parameter, 9, 1);
    grid->addWidget(byParameterName, 9, 2);
    grid->addWidget(m_parameterName, 9, 3);
    grid->addWidget(byType, 10, 2);
    grid->addWidget(m_parameterType, 10, 3);
    grid->addWidget(byValue, 11, 2);
    grid->addWidget(m_parameterValue, 11, 3);
    grid->addWidget(error, 12, 1);
    grid->addWidget(byCode, 12, 2);
    grid->addWidget(m_errorCode, 12, 3);
    grid->addWidget(bySeverity, 13, 2);
    grid->addWidget(m_errorSeverity, 13, 3);
    m_resultControls = {
        m_request,        m_response,  m_complete,     pdu,        parameter, byParameterName, byType,
        byValue,          error,       byCode,         bySeverity, m_pdu,     m_parameterName, m_parameterType,
        m_parameterValue, m_errorCode, m_errorSeverity};
}

void CXpvtFilterDialog::eventChosen(int eventGroup) {
    for (QButtonGroup* group : {m_traceItem, m_comPrimitiveBy, m_resultItem, m_parameterBy, m_errorBy})
        ClearGroup(group);
    for (QWidget* control : m_traceControls + m_resultControls)
        control->setEnabled(false);
    const Logic::EventControlsEnabled enabled = Logic::eventControlsEnabled(eventGroup);
    for (QWidget* control : m_traceControls)
        control->setEnabled(enabled.traceControls);
    for (QWidget* control : m_resultControls)
        control->setEnabled(enabled.resultControls);
}

Logic::FilterDialogControls CXpvtFilterDialog::readControls() const {
    Logic::FilterDialogControls c;
    c.eventGroup = m_event->checkedId();
    c.traceItem = m_traceItem->checkedId();
    c.comPrimitiveBy = m_comPrimitiveBy->checkedId();
    c.request = m_request->isChecked();
    c.response = m_response->isChecked();
    c.complete = m_complete->isChecked();
    c.resultItem = m_resultItem->checkedId();
    c.parameterBy = m_parameterBy->checkedId();
    c.errorBy = m_errorBy->checkedId();
    c.mode = m_mode701->checkedId() == 1 ? 1 : 0;
    c.logicalLinkName = Text(m_logicalLink);
    c.comPrimitiveName = Text(m_comPrimitiveName);
    c.comPrimitiveId = Text(m_comPrimitiveId);
    c.pduPattern = Text(m_pdu);
    c.parameterName = Text(m_parameterName);
    c.parameterType = Text(m_parameterType);
    c.parameterValue = Text(m_parameterValue);
    c.errorCode = Text(m_errorCode);
    c.errorSeverity = Text(m_errorSeverity);
    c.fileName = Text(m_fileName);
    return c;
}

void CXpvtFilterDialog::appendRow(const Logic::ConditionRow& row) {
    const QStringList cells = {QString::fromStdString(row.event),   QString::fromStdString(row.complete),
                               QString::fromStdString(row.request), QString::fromStdString(row.response),
                               QString::fromStdString(row.item),    QString::fromStdString(row.by),
                               QString::fromStdString(row.value)};
    m_list->addTopLevelItem(new QTreeWidgetItem(cells));
}

void CXpvtFilterDialog::onAdd() {
    const Logic::AddConditionOutcome outcome = Logic::addCondition(readControls(), m_conditions);
    if (outcome.box)
        ShowBox(this, *outcome.box);
    else if (outcome.row)
        appendRow(*outcome.row);
}

void CXpvtFilterDialog::onDelete() {
    QTreeWidgetItem* current = m_list->selectedItems().isEmpty() ? nullptr : m_list->selectedItems().first();
    const int row = current == nullptr ? -1 : m_list->indexOfTopLevelItem(current);
    if (const auto box = Logic::deleteRowBox(row)) {
        ShowBox(this, *box);
        return;
    }
    delete m_list->takeTopLevelItem(row);
}

void CXpvtFilterDialog::onDeleteAll() {
    if (const auto box = Logic::deleteAllBox(static_cast<std::size_t>(m_list->topLevelItemCount()))) {
        ShowBox(this, *box);
        return;
    }
    m_list->clear();
}

void CXpvtFilterDialog::onOk() {
    const Logic::SaveTarget target =
        Logic::saveTarget(readControls(), m_mode == Mode::New, LocalFilePath(m_filterDirectory), m_conditions,
                          [](const std::string& path) { return QFileInfo::exists(QFile::decodeName(path.c_str())); });
    if (target.box) {
        ShowBox(this, *target.box);
        return;
    }
    const QString path = QFile::decodeName(QByteArray::fromStdString(target.path));
    const zdt::UserMessage cannotOpen{Logic::CannotOpenFileTitle,
                                      Logic::formatMessage(Logic::CannotOpenFileFormat, target.path),
                                      zdt::MessageIcon::Error};
    // The filter folder is made by whoever writes into it first.
    if (!QDir().mkpath(QFileInfo(path).absolutePath()) || !Logic::writeFilterFile(target.path, m_conditions)) {
        ShowBox(this, cannotOpen);
        return;
    }
    m_savedPath = path;
    accept();
}

} // namespace zdtui::XPVT_7_01

#include "find/FindSheet702.h"

#include "xpvt/FindSheet702Logic.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace zdtui {

namespace Logic = ZDTAnalyzer::Find::XPVT_7_02;
using Criteria = ZDTAnalyzer::XpvtFindCriteria702;

namespace {

QString fromBytes(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

std::string toBytes(const QLineEdit* edit) {
    return edit->text().toUtf8().toStdString();
}

} // namespace

QString FindSheet702::objectNameOf(int page, const QString& role) {
    return QStringLiteral("page%1").arg(page) + role;
}

FindSheet702::FindSheet702(QWidget* parent, Criteria& criteria) : QDialog(parent), m_criteria(criteria) {
    setWindowTitle("Find...");
    Logic::beginRun(m_criteria);
    m_tabs = new QTabWidget(this);
    // Six long titles: the sheet grows to show them all rather than scroll them.
    m_tabs->setUsesScrollButtons(false);
    buildPages();
    // The sheet has no buttons of its own: only the pages' "Find" and "Close".
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    for (int index = 0; index < Logic::PageCount; ++index)
        load(index);
    m_tabs->setCurrentIndex(Logic::openingPage(m_criteria));
}

void FindSheet702::buildPages() {
    Criteria& c = m_criteria;

    auto& link = c.logicalLinkSection;
    Page& linkPage = beginPage(Criteria::LogicalLinkPage, "Open Close Logical Link", &link.all, &link.findPressed);
    addText(linkPage, "Minimum Timestamp:", &link.minTime);
    addText(linkPage, "Maximum Timestamp:", &link.maxTime);
    addText(linkPage, "Logical Link:", &link.link);
    addText(linkPage, "Location:", &link.location);
    addRadios(linkPage, {{"Open", &link.open}, {"Close", &link.close}, {"Open and Close", &link.openAndClose}});
    finishPage(Criteria::LogicalLinkPage);

    auto& request = c.requestSection;
    Page& requestPage = beginPage(Criteria::RequestPage, "Request", &request.all, &request.findPressed);
    addText(requestPage, "Name:", &request.name);
    addText(requestPage, "Message(PDU):", &request.message);
    addText(requestPage, "Minimum Timestamp:", &request.minTime);
    addText(requestPage, "Maximum Timestamp:", &request.maxTime);
    addParameterPart(requestPage, &request.parameterEnabled, &request.paramName, &request.dataType, &request.value,
                     &request.range);
    finishPage(Criteria::RequestPage);

    auto& response = c.responseSection;
    Page& responsePage = beginPage(Criteria::ResponsePage, "Response", &response.all, &response.findPressed);
    addText(responsePage, "Name:", &response.name);
    addText(responsePage, "Location address (ID):", &response.address);
    addText(responsePage, "Access Key Of Location (Location):", &response.location);
    addText(responsePage, "Message (PDU):", &response.message);
    addText(responsePage, "Minimum Timestamp:", &response.minTime);
    addText(responsePage, "Maximum Timestamp:", &response.maxTime);
    addParameterPart(responsePage, &response.parameterEnabled, &response.paramName, &response.dataType, &response.value,
                     &response.range);
    finishPage(Criteria::ResponsePage);

    auto& primitive = c.primitiveSection;
    Page& primitivePage =
        beginPage(Criteria::PrimitivePage, "Start Stop Diagcom Primitive", &primitive.all, &primitive.findPressed);
    addText(primitivePage, "Logical Link:", &primitive.link);
    addText(primitivePage, "Location:", &primitive.location);
    addText(primitivePage, "Parent:", &primitive.parent);
    addText(primitivePage, "Name:", &primitive.name);
    addText(primitivePage, "Primitive Type:", &primitive.primitiveType);
    addText(primitivePage, "Id:", &primitive.id);
    addText(primitivePage, "Minimum Timestamp:", &primitive.minTime);
    addText(primitivePage, "Maximum Timestamp:", &primitive.maxTime);
    addRadios(
        primitivePage,
        {{"Start", &primitive.start}, {"Finish", &primitive.finish}, {"Start or Finish", &primitive.startOrFinish}});
    finishPage(Criteria::PrimitivePage);

    auto& result = c.resultSection;
    Page& resultPage = beginPage(Criteria::ResultPage, "Result", &result.all, &result.findPressed);
    addText(resultPage, "Diagcom Primitive Type:", &result.primitiveType);
    addText(resultPage, "Diagcom Primitive Id:", &result.primitiveId);
    addText(resultPage, "Logical Link:", &result.link);
    addText(resultPage, "Parent Diagcom Primitive:", &result.parent);
    finishPage(Criteria::ResultPage);

    // The Parameter page's edits are stored by its own collect, not by plain bindings.
    auto& parameter = c.parameterSection;
    Page& parameterPage = beginPage(Criteria::ParameterPage, "Parameter", &parameter.all, &parameter.findPressed);
    m_parameterPageEdits = {addText(parameterPage, "Name(description):", nullptr),
                            addText(parameterPage, "Data Type:", nullptr), addText(parameterPage, "Value:", nullptr),
                            addText(parameterPage, "Range:", nullptr)};
    addRadios(parameterPage, {{"Request", &parameter.request},
                              {"Response", &parameter.response},
                              {"Request or Response", &parameter.requestOrResponse}});
    finishPage(Criteria::ParameterPage);
}

FindSheet702::Page& FindSheet702::beginPage(int index, const char* title, bool* all, bool* findPressed) {
    Page& page = m_pages[static_cast<std::size_t>(index)];
    page.widget = new QWidget(m_tabs);
    page.allValue = all;
    page.findPressed = findPressed;
    page.all = new QCheckBox("All", page.widget);
    page.all->setObjectName(objectNameOf(index, "All"));
    connect(page.all, &QCheckBox::toggled, this, [this, index] { updateEnabling(index); });
    m_form = new QFormLayout;
    m_form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_form->addRow(page.all);
    m_tabs->addTab(page.widget, title);
    return page;
}

QLineEdit* FindSheet702::addText(Page& page, const char* label, std::string* text) {
    auto* edit = new QLineEdit(page.widget);
    const int index = m_tabs->indexOf(page.widget);
    edit->setObjectName(objectNameOf(index, QStringLiteral("Edit%1").arg(page.texts.size())));
    m_form->addRow(label, edit);
    page.texts.push_back({edit, text});
    return edit;
}

void FindSheet702::addRadios(Page& page, std::initializer_list<std::pair<const char*, bool*>> radios) {
    auto* group = new QButtonGroup(page.widget);
    auto* row = new QHBoxLayout;
    const int index = m_tabs->indexOf(page.widget);
    for (const auto& [label, value] : radios) {
        auto* radio = new QRadioButton(label, page.widget);
        radio->setObjectName(objectNameOf(index, QStringLiteral("Radio%1").arg(page.radios.size())));
        group->addButton(radio);
        row->addWidget(radio);
        page.radios.push_back({radio, value});
    }
    row->addStretch();
    m_form->addRow(row);
}

void FindSheet702::addParameterPart(Page& page, bool* enabled, std::string* name, std::string* dataType,
                                    std::string* value, std::string* range) {
    const int index = m_tabs->indexOf(page.widget);
    page.parameter = new QCheckBox("Parameter:", page.widget);
    page.parameter->setObjectName(objectNameOf(index, "Parameter"));
    page.parameterValue = enabled;
    connect(page.parameter, &QCheckBox::toggled, this, [this, index] { updateEnabling(index); });
    m_form->addRow(page.parameter);
    page.parameterEdits = {addText(page, "Name(description):", name), addText(page, "Data Type:", dataType),
                           addText(page, "Value:", value), addText(page, "Range:", range)};
}

void FindSheet702::finishPage(int index) {
    Page& page = m_pages[static_cast<std::size_t>(index)];
    auto* find = new QPushButton("Find", page.widget);
    find->setObjectName(objectNameOf(index, "Find"));
    auto* close = new QPushButton("Close", page.widget);
    close->setObjectName(objectNameOf(index, "Close"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(find);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(page.widget);
    layout->addLayout(m_form);
    layout->addStretch();
    layout->addLayout(buttons);
    connect(find, &QPushButton::clicked, this, [this, index] { pagePressed(index, true); });
    connect(close, &QPushButton::clicked, this, [this, index] { pagePressed(index, false); });
}

void FindSheet702::load(int index) {
    Page& page = m_pages[static_cast<std::size_t>(index)];
    page.all->setChecked(*page.allValue);
    for (const TextBinding& binding : page.texts)
        if (binding.text)
            binding.edit->setText(fromBytes(*binding.text));
    for (const RadioBinding& binding : page.radios)
        if (*binding.value)
            binding.radio->setChecked(true);
    if (page.parameter)
        page.parameter->setChecked(*page.parameterValue);
    if (index == Criteria::ParameterPage) {
        const Logic::ParameterPageTexts shown = Logic::showParameterPage(m_criteria.parameterSection);
        m_parameterPageEdits[0]->setText(fromBytes(shown.name));
        m_parameterPageEdits[1]->setText(fromBytes(shown.dataType));
        m_parameterPageEdits[2]->setText(fromBytes(shown.value));
        m_parameterPageEdits[3]->setText(fromBytes(shown.range));
    }
    updateEnabling(index);
}

void FindSheet702::store(int index) {
    Page& page = m_pages[static_cast<std::size_t>(index)];
    *page.allValue = page.all->isChecked();
    for (const TextBinding& binding : page.texts)
        if (binding.text)
            *binding.text = toBytes(binding.edit);
    for (const RadioBinding& binding : page.radios)
        *binding.value = binding.radio->isChecked();
    if (page.parameter)
        *page.parameterValue = page.parameter->isChecked();
    if (index == Criteria::ParameterPage)
        Logic::collectParameterPage({toBytes(m_parameterPageEdits[0]), toBytes(m_parameterPageEdits[1]),
                                     toBytes(m_parameterPageEdits[2]), toBytes(m_parameterPageEdits[3])},
                                    m_criteria.parameterSection);
}

void FindSheet702::updateEnabling(int index) {
    Page& page = m_pages[static_cast<std::size_t>(index)];
    const bool all = page.all->isChecked();
    const bool enabled = Logic::criteriaEnabled(all);
    for (const TextBinding& binding : page.texts)
        binding.edit->setEnabled(enabled);
    for (const RadioBinding& binding : page.radios)
        binding.radio->setEnabled(enabled);
    if (page.parameter) {
        const bool parameterEdits = Logic::parameterEditsEnabled(all, page.parameter->isChecked());
        for (QLineEdit* edit : page.parameterEdits)
            edit->setEnabled(parameterEdits);
    }
}

void FindSheet702::pagePressed(int index, bool find) {
    store(index);
    if (find) {
        *m_pages[static_cast<std::size_t>(index)].findPressed = true;
        accept();
    } else {
        reject();
    }
}

void FindSheet702::done(int result) {
    QDialog::done(result);
    Logic::endRun(m_criteria);
}

bool runFindSheet702(QWidget* parent, Criteria& criteria) {
    try {
        FindSheet702 sheet(parent, criteria);
        sheet.exec();
        return true;
    } catch (...) {
        Logic::endRun(criteria);
        return false;
    }
}

} // namespace zdtui

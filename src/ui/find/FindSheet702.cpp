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
    addPage(Criteria::LogicalLinkPage, "Open Close Logical Link", link,
            {{"Minimum Timestamp:", &link.minTime},
             {"Maximum Timestamp:", &link.maxTime},
             {"Logical Link:", &link.link},
             {"Location:", &link.location}},
            {{"Open", &link.open}, {"Close", &link.close}, {"Open and Close", &link.openAndClose}});
    auto& request = c.requestSection;
    addPage(Criteria::RequestPage, "Request", request,
            {{"Name:", &request.name},
             {"Message(PDU):", &request.message},
             {"Minimum Timestamp:", &request.minTime},
             {"Maximum Timestamp:", &request.maxTime}});
    auto& response = c.responseSection;
    addPage(Criteria::ResponsePage, "Response", response,
            {{"Name:", &response.name},
             {"Location address (ID):", &response.address},
             {"Access Key Of Location (Location):", &response.location},
             {"Message (PDU):", &response.message},
             {"Minimum Timestamp:", &response.minTime},
             {"Maximum Timestamp:", &response.maxTime}});
    auto& primitive = c.primitiveSection;
    addPage(
        Criteria::PrimitivePage, "Start Stop Diagcom Primitive", primitive,
        {{"Logical Link:", &primitive.link},
         {"Location:", &primitive.location},
         {"Parent:", &primitive.parent},
         {"Name:", &primitive.name},
         {"Primitive Type:", &primitive.primitiveType},
         {"Id:", &primitive.id},
         {"Minimum Timestamp:", &primitive.minTime},
         {"Maximum Timestamp:", &primitive.maxTime}},
        {{"Start", &primitive.start}, {"Finish", &primitive.finish}, {"Start or Finish", &primitive.startOrFinish}});
    auto& result = c.resultSection;
    addPage(Criteria::ResultPage, "Result", result,
            {{"Diagcom Primitive Type:", &result.primitiveType},
             {"Diagcom Primitive Id:", &result.primitiveId},
             {"Logical Link:", &result.link},
             {"Parent Diagcom Primitive:", &result.parent}});
    // The Parameter page's edits are stored by its own collect, not by plain bindings.
    auto& parameter = c.parameterSection;
    addPage(Criteria::ParameterPage, "Parameter", parameter,
            {{"Name(description):", nullptr}, {"Data Type:", nullptr}, {"Value:", nullptr}, {"Range:", nullptr}},
            {{"Request", &parameter.request},
             {"Response", &parameter.response},
             {"Request or Response", &parameter.requestOrResponse}});
    const Page& parameterPage = m_pages[static_cast<std::size_t>(Criteria::ParameterPage)];
    for (std::size_t i = 0; i < m_parameterPageEdits.size(); ++i)
        m_parameterPageEdits[i] = parameterPage.texts[i].edit;
}

template <typename Section>
void FindSheet702::addPage(int index, const char* title, Section& section, TextRows texts, RadioRows radios) {
    Page& page = beginPage(index, title, &section.all, &section.findPressed);
    for (const auto& [label, text] : texts)
        addText(page, label, text);
    // Only the request and response sections carry a parameter part of their own.
    if constexpr (requires { section.paramName; })
        addParameterPart(page, &section.parameterEnabled, &section.paramName, &section.dataType, &section.value,
                         &section.range);
    if (radios.size() > 0)
        addRadios(page, radios);
    finishPage(index);
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

void FindSheet702::addRadios(Page& page, RadioRows radios) {
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

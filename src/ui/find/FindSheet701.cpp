#include "find/FindSheet701.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace zdtui {

namespace Logic = ZDTAnalyzer::Find::XPVT_7_01;

namespace {

constexpr const char* PagePrefixes[] = {"comPrimitive", "request", "response", "result"};
constexpr const char* PageTitles[] = {"ComPrimitive", "Request", "Response", "Result"};

QCheckBox* checkBox(QWidget* parent, const QString& text, const QString& name) {
    auto* box = new QCheckBox(text, parent);
    box->setObjectName(name);
    return box;
}

QLineEdit* lineEdit(QWidget* parent, const QString& name) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    return edit;
}

void setChecked(QCheckBox* box, bool checked) {
    if (box)
        box->setChecked(checked);
}

} // namespace

QString FindSheet701::objectNameOf(PageIndex page, const char* role) {
    return QString::fromLatin1(PagePrefixes[page]) + QString::fromLatin1(role);
}

FindSheet701::FindSheet701(QWidget* parent) : QDialog(parent) {
    setWindowTitle("Find...");
    m_tabs = new QTabWidget(this);
    m_tabs->addTab(buildComPrimitivePage(), PageTitles[ComPrimitivePage]);
    m_tabs->addTab(buildSidePage(RequestPage, m_request), PageTitles[RequestPage]);
    m_tabs->addTab(buildSidePage(ResponsePage, m_response), PageTitles[ResponsePage]);
    m_tabs->addTab(buildSidePage(ResultPage, m_result), PageTitles[ResultPage]);
    // The sheet has no buttons of its own: only the pages' "Find" and "Close".
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    connect(m_tabs, &QTabWidget::currentChanged, this, &FindSheet701::pageActivated);

    showComPrimitive({});
    Logic::RequestPage request;
    Logic::settlePairs(request);
    showSide(m_request, request, Logic::enablingOf(request));
    Logic::settlePairs(m_responseState);
    showSide(m_response, m_responseState, Logic::enablingOf(m_responseState));
    Logic::ResultPage result;
    Logic::settlePairs(result);
    showResult(result);
}

QWidget* FindSheet701::buildComPrimitivePage() {
    auto* page = new QWidget(m_tabs);
    m_comPrimitiveAll = checkBox(page, "All", objectNameOf(ComPrimitivePage, "All"));
    m_comPrimitiveName = lineEdit(page, objectNameOf(ComPrimitivePage, "NameEdit"));
    auto* grid = new QGridLayout;
    grid->addWidget(m_comPrimitiveAll, 0, 0, 1, 2);
    grid->addWidget(new QLabel("Name:", page), 1, 0);
    grid->addWidget(m_comPrimitiveName, 1, 1);
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(grid);
    layout->addStretch();
    addButtons(layout, ComPrimitivePage);
    connect(m_comPrimitiveAll, &QCheckBox::clicked, this, [this] { showComPrimitive(readComPrimitive()); });
    return page;
}

QWidget* FindSheet701::buildSidePage(PageIndex index, SideControls& c) {
    auto* page = new QWidget(m_tabs);
    const auto name = [index](const char* role) { return objectNameOf(index, role); };
    c.all = checkBox(page, "All", name("All"));
    c.pdu = checkBox(page, "PDU", name("Pdu"));
    c.pduEdit = lineEdit(page, name("PduEdit"));
    c.parameter = checkBox(page, "Parameter", name("Parameter"));
    c.byName = checkBox(page, "Name", name("ByName"));
    c.nameEdit = lineEdit(page, name("NameEdit"));
    c.byValue = checkBox(page, "Value", name("ByValue"));
    c.valueEdit = lineEdit(page, name("ValueEdit"));
    auto* grid = new QGridLayout;
    grid->addWidget(c.all, 0, 0, 1, 3);
    grid->addWidget(c.pdu, 1, 0);
    grid->addWidget(c.pduEdit, 1, 1, 1, 2);
    grid->addWidget(c.parameter, 2, 0);
    grid->addWidget(c.byName, 2, 1);
    grid->addWidget(c.nameEdit, 2, 2);
    grid->addWidget(c.byValue, 3, 1);
    grid->addWidget(c.valueEdit, 3, 2);
    QList<QCheckBox*> boxes = {c.all, c.byName, c.byValue};
    if (index == ResultPage) {
        c.error = checkBox(page, "Error", name("Error"));
        c.byCode = checkBox(page, "Code", name("ByCode"));
        c.codeEdit = lineEdit(page, name("CodeEdit"));
        c.bySeverity = checkBox(page, "Severity", name("BySeverity"));
        c.severityEdit = lineEdit(page, name("SeverityEdit"));
        grid->addWidget(c.error, 4, 0);
        grid->addWidget(c.byCode, 4, 1);
        grid->addWidget(c.codeEdit, 4, 2);
        grid->addWidget(c.bySeverity, 5, 1);
        grid->addWidget(c.severityEdit, 5, 2);
        boxes << c.byCode << c.bySeverity;
        using Box = Logic::ResultGroupBox;
        connect(c.pdu, &QCheckBox::clicked, this, [this] { resultGroupClicked(Box::Pdu); });
        connect(c.parameter, &QCheckBox::clicked, this, [this] { resultGroupClicked(Box::Parameter); });
        connect(c.error, &QCheckBox::clicked, this, [this] { resultGroupClicked(Box::Error); });
    } else {
        boxes << c.pdu << c.parameter;
    }
    grid->setColumnStretch(2, 1);
    for (QCheckBox* box : boxes)
        connect(box, &QCheckBox::clicked, this, [this, index] { sideClicked(index); });
    auto* layout = new QVBoxLayout(page);
    layout->addLayout(grid);
    layout->addStretch();
    addButtons(layout, index);
    return page;
}

void FindSheet701::addButtons(QVBoxLayout* layout, PageIndex index) {
    auto* find = new QPushButton("Find", m_tabs);
    find->setObjectName(objectNameOf(index, "Find"));
    auto* close = new QPushButton("Close", m_tabs);
    close->setObjectName(objectNameOf(index, "Close"));
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(find);
    row->addWidget(close);
    layout->addLayout(row);
    connect(find, &QPushButton::clicked, this, [this, index] { findPressed(index); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
}

void FindSheet701::pageActivated(int index) {
    if (index != ResponsePage || !m_responseState.firstActivation)
        return;
    readSide(m_response, m_responseState);
    Logic::activate(m_responseState);
    showSide(m_response, m_responseState, Logic::enablingOf(m_responseState));
}

Logic::ComPrimitivePage FindSheet701::readComPrimitive() const {
    Logic::ComPrimitivePage page;
    page.all = m_comPrimitiveAll->isChecked();
    page.name = m_comPrimitiveName->text().toStdString();
    return page;
}

void FindSheet701::showComPrimitive(const Logic::ComPrimitivePage& page) {
    m_comPrimitiveAll->setChecked(page.all);
    m_comPrimitiveName->setEnabled(Logic::enablingOf(page).nameEdit);
}

void FindSheet701::readSide(const SideControls& c, Logic::RequestPage& page) {
    page.all = c.all->isChecked();
    page.pduOn = c.pdu->isChecked();
    page.pdu = c.pduEdit->text().toStdString();
    page.parameterOn = c.parameter->isChecked();
    page.byName = c.byName->isChecked();
    page.parameterName = c.nameEdit->text().toStdString();
    page.byValue = c.byValue->isChecked();
    page.parameterValue = c.valueEdit->text().toStdString();
}

void FindSheet701::readResult(const SideControls& c, Logic::ResultPage& page) {
    readSide(c, page);
    page.errorOn = c.error->isChecked();
    page.byCode = c.byCode->isChecked();
    page.code = c.codeEdit->text().toStdString();
    page.bySeverity = c.bySeverity->isChecked();
    page.severity = c.severityEdit->text().toStdString();
}

void FindSheet701::showSide(SideControls& c, const Logic::RequestPage& page, const Logic::RequestEnabling& e) {
    c.all->setChecked(page.all);
    c.pdu->setChecked(page.pduOn);
    c.parameter->setChecked(page.parameterOn);
    c.byName->setChecked(page.byName);
    c.byValue->setChecked(page.byValue);
    c.pdu->setEnabled(e.pdu);
    c.pduEdit->setEnabled(e.pduEdit);
    c.parameter->setEnabled(e.parameter);
    c.byName->setEnabled(e.byName);
    c.nameEdit->setEnabled(e.parameterNameEdit);
    c.byValue->setEnabled(e.byValue);
    c.valueEdit->setEnabled(e.parameterValueEdit);
}

void FindSheet701::showResult(const Logic::ResultPage& page) {
    const Logic::ResultEnabling e = Logic::enablingOf(page);
    showSide(m_result, page, e);
    setChecked(m_result.error, page.errorOn);
    setChecked(m_result.byCode, page.byCode);
    setChecked(m_result.bySeverity, page.bySeverity);
    m_result.error->setEnabled(e.error);
    m_result.byCode->setEnabled(e.byCode);
    m_result.codeEdit->setEnabled(e.codeEdit);
    m_result.bySeverity->setEnabled(e.bySeverity);
    m_result.severityEdit->setEnabled(e.severityEdit);
}

void FindSheet701::sideClicked(PageIndex index) {
    if (index == ResultPage) {
        Logic::ResultPage page;
        readResult(m_result, page);
        Logic::settlePairs(page);
        showResult(page);
        return;
    }
    SideControls& controls = index == RequestPage ? m_request : m_response;
    Logic::RequestPage page;
    readSide(controls, page);
    Logic::settlePairs(page);
    showSide(controls, page, Logic::enablingOf(page));
}

void FindSheet701::resultGroupClicked(Logic::ResultGroupBox box) {
    Logic::ResultPage page;
    readResult(m_result, page);
    Logic::clickGroupBox(page, box);
    showResult(page);
}

void FindSheet701::findPressed(PageIndex index) {
    switch (index) {
    case ComPrimitivePage:
        m_pages.comPrimitive = readComPrimitive();
        Logic::collect(m_pages.comPrimitive);
        break;
    case RequestPage:
        readSide(m_request, m_pages.request);
        m_pages.request.findPressed = true;
        break;
    case ResponsePage:
        readSide(m_response, m_pages.response);
        m_pages.response.findPressed = true;
        break;
    case ResultPage:
        readResult(m_result, m_pages.result);
        m_pages.result.findPressed = true;
        break;
    case PageCount:
        return;
    }
    accept();
}

bool FindSheet701::writeCriteria(ZDTAnalyzer::XpvtFindCriteria701& criteria) const {
    return Logic::writeCriteria(m_pages, criteria);
}

bool runFindSheet701(QWidget* parent, ZDTAnalyzer::XpvtFindCriteria701& criteria) {
    FindSheet701 sheet(parent);
    sheet.exec();
    return sheet.writeCriteria(criteria);
}

} // namespace zdtui

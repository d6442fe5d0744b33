#pragma once

#include "xpvt/FindSheet701Logic.h"

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QVBoxLayout;

namespace zdtui {

// "Find..." for 7.01 traces: four pages, each with its own "Find" and "Close". The
// pages start blank every time; after the sheet closes, the page whose "Find" was
// pressed writes the document's criteria.
class FindSheet701 final : public QDialog {
    Q_OBJECT
public:
    enum PageIndex { ComPrimitivePage, RequestPage, ResponsePage, ResultPage, PageCount };

    explicit FindSheet701(QWidget* parent = nullptr);

    // What "Find" collected; untouched pages stay blank.
    const ZDTAnalyzer::Find::XPVT_7_01::FindSheetPages& pages() const { return m_pages; }
    // False when no page's "Find" was pressed: the record stays as it was.
    bool writeCriteria(ZDTAnalyzer::XpvtFindCriteria701& criteria) const;

    QTabWidget* tabs() const { return m_tabs; }
    // Every control has an object name of its page's prefix ("comPrimitive", "request",
    // "response", "result") and its role ("All", "Pdu", "PduEdit", "Parameter", "ByName",
    // "NameEdit", "ByValue", "ValueEdit", "Error", "ByCode", "CodeEdit", "BySeverity",
    // "SeverityEdit", "Find", "Close").
    static QString objectNameOf(PageIndex page, const char* role);

private:
    // The controls of the request-side pages; the error part only on the Result page.
    struct SideControls {
        QCheckBox* all = nullptr;
        QCheckBox* pdu = nullptr;
        QLineEdit* pduEdit = nullptr;
        QCheckBox* parameter = nullptr;
        QCheckBox* byName = nullptr;
        QLineEdit* nameEdit = nullptr;
        QCheckBox* byValue = nullptr;
        QLineEdit* valueEdit = nullptr;
        QCheckBox* error = nullptr;
        QCheckBox* byCode = nullptr;
        QLineEdit* codeEdit = nullptr;
        QCheckBox* bySeverity = nullptr;
        QLineEdit* severityEdit = nullptr;
    };

    QWidget* buildComPrimitivePage();
    QWidget* buildSidePage(PageIndex page, SideControls& controls);
    void addButtons(QVBoxLayout* layout, PageIndex index);
    void pageActivated(int index);

    ZDTAnalyzer::Find::XPVT_7_01::ComPrimitivePage readComPrimitive() const;
    void showComPrimitive(const ZDTAnalyzer::Find::XPVT_7_01::ComPrimitivePage& page);
    static void readSide(const SideControls& controls, ZDTAnalyzer::Find::XPVT_7_01::RequestPage& page);
    static void readResult(const SideControls& controls, ZDTAnalyzer::Find::XPVT_7_01::ResultPage& page);
    static void showSide(SideControls& controls, const ZDTAnalyzer::Find::XPVT_7_01::RequestPage& page,
                         const ZDTAnalyzer::Find::XPVT_7_01::RequestEnabling& enabling);
    void showResult(const ZDTAnalyzer::Find::XPVT_7_01::ResultPage& page);

    void sideClicked(PageIndex page);
    void resultGroupClicked(ZDTAnalyzer::Find::XPVT_7_01::ResultGroupBox box);
    void findPressed(PageIndex page);

    QTabWidget* m_tabs = nullptr;
    QCheckBox* m_comPrimitiveAll = nullptr;
    QLineEdit* m_comPrimitiveName = nullptr;
    SideControls m_request;
    SideControls m_response;
    SideControls m_result;
    // The Response page's first activation has happened once this is false.
    ZDTAnalyzer::Find::XPVT_7_01::ResponsePage m_responseState;
    ZDTAnalyzer::Find::XPVT_7_01::FindSheetPages m_pages;
};

// Shows the sheet over `criteria`; true when a page's "Find" wrote the record.
bool runFindSheet701(QWidget* parent, ZDTAnalyzer::XpvtFindCriteria701& criteria);

} // namespace zdtui

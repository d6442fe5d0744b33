#include "find/FindSheet701.h"
#include "find/FindSheet702.h"

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTimer>
#include <QtTest>

using ZDTAnalyzer::XpvtFindCriteria701;
using ZDTAnalyzer::XpvtFindCriteria702;
using zdtui::FindSheet701;
using zdtui::FindSheet702;

namespace {

template <typename Widget> Widget* child(QWidget* sheet, const QString& name) {
    auto* widget = sheet->findChild<Widget*>(name);
    if (!widget)
        qFatal("no control %s", qPrintable(name));
    return widget;
}

QCheckBox* box701(FindSheet701& sheet, FindSheet701::PageIndex page, const char* role) {
    return child<QCheckBox>(&sheet, FindSheet701::objectNameOf(page, role));
}

QLineEdit* edit701(FindSheet701& sheet, FindSheet701::PageIndex page, const char* role) {
    return child<QLineEdit>(&sheet, FindSheet701::objectNameOf(page, role));
}

QPushButton* button701(FindSheet701& sheet, FindSheet701::PageIndex page, const char* role) {
    return child<QPushButton>(&sheet, FindSheet701::objectNameOf(page, role));
}

QLineEdit* edit702(FindSheet702& sheet, int page, int edit) {
    return child<QLineEdit>(&sheet, FindSheet702::objectNameOf(page, QStringLiteral("Edit%1").arg(edit)));
}

QPushButton* button702(FindSheet702& sheet, int page, const char* role) {
    return child<QPushButton>(&sheet, FindSheet702::objectNameOf(page, role));
}

// Presses a button of the modal sheet once it shows.
void pressWhenShown(const QString& buttonName) {
    QTimer::singleShot(0, [buttonName] {
        QWidget* modal = QApplication::activeModalWidget();
        QVERIFY(modal);
        child<QPushButton>(modal, buttonName)->click();
    });
}

} // namespace

class FindSheetsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    // A parameter search by name on the Request page, set through the controls as a
    // user would: the pairs and the enabling follow the clicks.
    void requestPageFindWritesTheRecord() {
        FindSheet701 sheet;
        QCOMPARE(sheet.windowTitle(), QString("Find..."));
        QCOMPARE(sheet.tabs()->count(), 4);
        QCOMPARE(sheet.tabs()->tabText(3), QString("Result"));
        using P = FindSheet701::PageIndex;
        QVERIFY(box701(sheet, P::RequestPage, "Pdu")->isChecked()); // one of the pair is always set
        QVERIFY(!edit701(sheet, P::RequestPage, "NameEdit")->isEnabled());

        box701(sheet, P::RequestPage, "Parameter")->click();
        box701(sheet, P::RequestPage, "Pdu")->click();
        QVERIFY(!box701(sheet, P::RequestPage, "Pdu")->isChecked());
        QVERIFY(box701(sheet, P::RequestPage, "ByName")->isChecked());
        QVERIFY(edit701(sheet, P::RequestPage, "NameEdit")->isEnabled());
        QVERIFY(!edit701(sheet, P::RequestPage, "ValueEdit")->isEnabled());
        edit701(sheet, P::RequestPage, "NameEdit")->setText("Speed");
        box701(sheet, P::RequestPage, "Parameter")->click(); // the last of the pair: "PDU" comes back
        QVERIFY(box701(sheet, P::RequestPage, "Pdu")->isChecked());
        box701(sheet, P::RequestPage, "Parameter")->click();
        box701(sheet, P::RequestPage, "Pdu")->click();

        button701(sheet, P::RequestPage, "Find")->click();
        QCOMPARE(sheet.result(), int(QDialog::Accepted));
        XpvtFindCriteria701 criteria;
        criteria.searchPrimitives = true; // an earlier search's flag stays
        QVERIFY(sheet.writeCriteria(criteria));
        QVERIFY(criteria.searchPrimitives && criteria.searchRequests && criteria.parameterEnabled &&
                criteria.matchByName);
        QVERIFY(!criteria.pduEnabled && !criteria.parameterValueEnabled);
        QCOMPARE(criteria.nameText, std::string("Speed"));
    }

    void closeChangesNothingAndTheResponsePageStartsOnPdu() {
        FindSheet701 sheet;
        using P = FindSheet701::PageIndex;
        box701(sheet, P::ResponsePage, "All")->setChecked(true);
        box701(sheet, P::ResponsePage, "ByValue")->setChecked(true);
        sheet.tabs()->setCurrentIndex(P::ResponsePage); // first activation
        QVERIFY(!box701(sheet, P::ResponsePage, "All")->isChecked());
        QVERIFY(!box701(sheet, P::ResponsePage, "ByValue")->isChecked());
        QVERIFY(box701(sheet, P::ResponsePage, "Pdu")->isChecked());
        QVERIFY(edit701(sheet, P::ResponsePage, "PduEdit")->isEnabled());

        box701(sheet, P::ResponsePage, "All")->click();
        QVERIFY(!box701(sheet, P::ResponsePage, "Pdu")->isEnabled());
        QVERIFY(!edit701(sheet, P::ResponsePage, "PduEdit")->isEnabled());

        button701(sheet, P::ResponsePage, "Close")->click();
        QCOMPARE(sheet.result(), int(QDialog::Rejected));
        XpvtFindCriteria701 criteria;
        QVERIFY(!sheet.writeCriteria(criteria));
        QVERIFY(!criteria.searchResponses && !criteria.matchAll);
    }

    // The Result page's group of three, then a parameter search whose "Value" text is unused.
    void resultPageThroughTheModalRun() {
        XpvtFindCriteria701 criteria;
        QTimer::singleShot(0, [] {
            auto* sheet = qobject_cast<FindSheet701*>(QApplication::activeModalWidget());
            QVERIFY(sheet);
            using P = FindSheet701::PageIndex;
            box701(*sheet, P::ResultPage, "Error")->click();
            QVERIFY(!box701(*sheet, P::ResultPage, "Pdu")->isChecked());
            QVERIFY(edit701(*sheet, P::ResultPage, "CodeEdit")->isEnabled());
            box701(*sheet, P::ResultPage, "Parameter")->click();
            QVERIFY(!box701(*sheet, P::ResultPage, "Error")->isChecked());
            QVERIFY(!edit701(*sheet, P::ResultPage, "CodeEdit")->isEnabled());
            box701(*sheet, P::ResultPage, "ByValue")->click();
            box701(*sheet, P::ResultPage, "ByName")->click();
            edit701(*sheet, P::ResultPage, "NameEdit")->setText("Rpm");
            edit701(*sheet, P::ResultPage, "ValueEdit")->setText("900");
            button701(*sheet, P::ResultPage, "Find")->click();
        });
        QVERIFY(zdtui::runFindSheet701(nullptr, criteria));
        QVERIFY(criteria.searchBothSides && criteria.parameterEnabled && criteria.parameterValueEnabled);
        QVERIFY(!criteria.matchByName);
        QCOMPARE(criteria.parameterText, std::string("Rpm"));

        pressWhenShown(FindSheet701::objectNameOf(FindSheet701::ComPrimitivePage, "Close"));
        QVERIFY(!zdtui::runFindSheet701(nullptr, criteria));
    }

    // "Find" on a page stores it and the next run opens there with the texts kept;
    // "Close" stores too, still searches, and sends the next run to the first page.
    void sheet702KeepsTextsAndReopensOnTheLastPage() {
        XpvtFindCriteria702 criteria;
        {
            FindSheet702 sheet(nullptr, criteria);
            QCOMPARE(sheet.tabs()->count(), 6);
            QCOMPARE(sheet.tabs()->tabText(3), QString("Start Stop Diagcom Primitive"));
            QCOMPARE(sheet.tabs()->currentIndex(), 0);
            auto* start = child<QRadioButton>(&sheet, FindSheet702::objectNameOf(3, "Radio0"));
            QVERIFY(child<QRadioButton>(&sheet, FindSheet702::objectNameOf(3, "Radio2"))->isChecked());
            start->setChecked(true);
            edit702(sheet, 3, 3)->setText("ReadDTC"); // "Name:"
            child<QCheckBox>(&sheet, FindSheet702::objectNameOf(3, "All"))->setChecked(true);
            QVERIFY(!edit702(sheet, 3, 3)->isEnabled());
            QVERIFY(!start->isEnabled());
            button702(sheet, 3, "Find")->click();
        }
        QCOMPARE(criteria.activePage, 3);
        QVERIFY(criteria.primitiveSection.findPressed && criteria.primitiveSection.start);
        QVERIFY(!criteria.primitiveSection.startOrFinish && criteria.primitiveSection.all);
        QCOMPARE(criteria.primitiveSection.name, std::string("ReadDTC"));

        QTimer::singleShot(0, [] {
            auto* sheet = qobject_cast<FindSheet702*>(QApplication::activeModalWidget());
            QVERIFY(sheet);
            QCOMPARE(sheet->tabs()->currentIndex(), 3);
            QCOMPARE(edit702(*sheet, 3, 3)->text(), QString("ReadDTC"));
            sheet->tabs()->setCurrentIndex(5);
            edit702(*sheet, 5, 1)->setText("A_UINT32"); // "Data Type:" is lost on collecting
            edit702(*sheet, 5, 2)->setText("120");
            button702(*sheet, 5, "Close")->click();
        });
        QVERIFY(zdtui::runFindSheet702(nullptr, criteria));
        QCOMPARE(criteria.activePage, 0);
        QVERIFY(!criteria.primitiveSection.findPressed && !criteria.parameterSection.findPressed);
        QCOMPARE(criteria.parameterSection.dataType, std::string("120"));
        QCOMPARE(criteria.parameterSection.value, std::string());

        FindSheet702 again(nullptr, criteria);
        QCOMPARE(edit702(again, 5, 1)->text(), QString("120"));
        QCOMPARE(edit702(again, 5, 2)->text(), QString("120"));
    }

    void requestParameterEditsFollowTheirBox() {
        XpvtFindCriteria702 criteria;
        FindSheet702 sheet(nullptr, criteria);
        auto* parameter = child<QCheckBox>(&sheet, FindSheet702::objectNameOf(1, "Parameter"));
        QVERIFY(edit702(sheet, 1, 0)->isEnabled());
        QVERIFY(!edit702(sheet, 1, 4)->isEnabled());
        parameter->setChecked(true);
        QVERIFY(edit702(sheet, 1, 4)->isEnabled());
        child<QCheckBox>(&sheet, FindSheet702::objectNameOf(1, "All"))->setChecked(true);
        QVERIFY(!edit702(sheet, 1, 4)->isEnabled());
        QVERIFY(!edit702(sheet, 1, 0)->isEnabled());
    }
};

QTEST_MAIN(FindSheetsTest)
#include "FindSheetsTest.moc"

#include "classic/StyleDialogs.h"
#include "classic/CSettingsInfo.h"
#include "classic/CStyleCan.h"
#include "classic/CStyleDiagnostic.h"
#include "ui/RecordingBoxes.h"
#include "ui/classic/DialogDriver.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QtTest>

using dialog_driver::ChildWithText;
using dialog_driver::WhenModal;
using zdtui::CStyleCan;
using zdtui::CStyleDiagnostic;

namespace {

void Click(QWidget* dialog, const QString& text) {
    QAbstractButton* button = ChildWithText(dialog, text);
    if (button == nullptr)
        QFAIL(qPrintable("no control " + text));
    else
        button->click();
}

bool Checked(QWidget* dialog, const QString& text) {
    QAbstractButton* button = ChildWithText(dialog, text);
    return button != nullptr && button->isChecked();
}

QGroupBox* ByteTimeGroup(QWidget* dialog) {
    for (QGroupBox* group : dialog->findChildren<QGroupBox*>()) {
        if (group->title() == "Byte Time Calculation")
            return group;
    }
    return nullptr;
}

} // namespace

class StyleDialogsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void canStyleReturnsTheChosenMode() {
        TimeMode mode = TimeMode::Relative;
        QString title;
        WhenModal<CStyleCan>([&](CStyleCan* dialog) {
            title = dialog->windowTitle();
            Click(dialog, "Relative &Channel");
            dialog->accept();
        });
        QVERIFY(zdtui::RunStyleCan(nullptr, mode, false));
        QCOMPARE(title, QString("Style CAN Link"));
        QCOMPARE(mode, TimeMode::RelativeChannel);

        // Without a channel column the channel mode cannot be chosen; Cancel keeps the mode.
        bool channelEnabled = true;
        bool absoluteChecked = false;
        WhenModal<CStyleCan>([&](CStyleCan* dialog) {
            channelEnabled = ChildWithText(dialog, "Relative &Channel")->isEnabled();
            Click(dialog, "&Absolute");
            absoluteChecked = Checked(dialog, "&Absolute") && !Checked(dialog, "&Relative");
            dialog->reject();
        });
        QVERIFY(!zdtui::RunStyleCan(nullptr, mode, true));
        QVERIFY(!channelEnabled);
        QVERIFY(absoluteChecked);
        QCOMPARE(mode, TimeMode::RelativeChannel);
    }

    // One sequence: the line settings carry over from run to run.
    void diagnosticStyleComputesTheByteTime() {
        RecordingBoxes boxes;
        TimeMode mode = TimeMode::Relative;
        std::uint32_t byteTime = 1;

        bool disabledWhileRelative = false;
        bool enabledForInterByte = false;
        QString title;
        WhenModal<CStyleDiagnostic>([&](CStyleDiagnostic* dialog) {
            title = dialog->windowTitle();
            disabledWhileRelative = !ByteTimeGroup(dialog)->isEnabled();
            Click(dialog, "Inter&byte");
            enabledForInterByte = ByteTimeGroup(dialog)->isEnabled();
            Click(dialog, "Even"); // parity does not count
            dialog->accept();
        });
        QVERIFY(zdtui::RunStyleDiagnostic(nullptr, mode, byteTime));
        QCOMPARE(title, QString("Style KLine Link"));
        QVERIFY(disabledWhileRelative);
        QVERIFY(enabledForInterByte);
        QCOMPARE(mode, TimeMode::InterByte);
        QCOMPARE(byteTime, 961u);

        // "9 Bit" after "7 Bit" keeps seven data bits: 9 bits a byte.
        bool baudKept = false;
        WhenModal<CStyleDiagnostic>([&](CStyleDiagnostic* dialog) {
            baudKept = dialog->findChild<QLineEdit*>("baudrate")->text() == "10400" && Checked(dialog, "Even");
            Click(dialog, "7 Bit");
            Click(dialog, "9 Bit");
            dialog->accept();
        });
        QVERIFY(zdtui::RunStyleDiagnostic(nullptr, mode, byteTime));
        QVERIFY(baudKept);
        QCOMPARE(byteTime, 865u);

        // A baud rate of 0 is refused with a box while inter-byte is chosen.
        bool stayedOpen = false;
        bool sevenKept = false;
        WhenModal<CStyleDiagnostic>([&](CStyleDiagnostic* dialog) {
            sevenKept = Checked(dialog, "7 Bit");
            dialog->findChild<QLineEdit*>("baudrate")->setText("0");
            dialog->accept();
            stayedOpen = dialog->result() != QDialog::Accepted && dialog->isVisible();
            dialog->findChild<QLineEdit*>("baudrate")->setText("9600");
            Click(dialog, "2 Bits");
            dialog->accept();
        });
        QVERIFY(zdtui::RunStyleDiagnostic(nullptr, mode, byteTime));
        QVERIFY(sevenKept);
        QVERIFY(stayedOpen);
        QCOMPARE(boxes.boxes.size(), 1);
        QCOMPARE(byteTime, 1041u); // 10 bits at 9,600 Bit/s

        // Outside the inter-byte mode the byte time is not touched, and 0 does no harm.
        WhenModal<CStyleDiagnostic>([&](CStyleDiagnostic* dialog) {
            Click(dialog, "&Absolute");
            dialog->findChild<QLineEdit*>("baudrate")->setText("0");
            dialog->accept();
        });
        QVERIFY(zdtui::RunStyleDiagnostic(nullptr, mode, byteTime));
        QCOMPARE(mode, TimeMode::Absolute);
        QCOMPARE(byteTime, 1041u);
        QCOMPARE(boxes.boxes.size(), 1);

        // An empty baud rate cannot be read: refused, then cancelled.
        bool refusedEmpty = false;
        WhenModal<CStyleDiagnostic>([&](CStyleDiagnostic* dialog) {
            dialog->findChild<QLineEdit*>("baudrate")->clear();
            dialog->accept();
            refusedEmpty = dialog->isVisible();
            dialog->reject();
        });
        QVERIFY(!zdtui::RunStyleDiagnostic(nullptr, mode, byteTime));
        QVERIFY(refusedEmpty);
        QCOMPARE(boxes.boxes.size(), 2);
        QCOMPARE(boxes.boxes[1].text, QString("Please enter an integer between 0 and 16777215."));
    }

    void sessionInfoShowsTheFieldsInOrder() {
        const std::vector<std::pair<std::string, std::string>> fields = {
            {"Title:", "ZDT Trace File"},     {"Product Version:", "7.1.2"}, {"Interface Board:", "VCI-4"},
            {"Date:", "21.11.2026"},          {"Time:", "14:05:09"},         {"No.Items:", "3"},
            {"Last CANFilter:", "engine.flt"}};
        zdtui::CSettingsInfo dialog(nullptr, fields);
        QCOMPARE(dialog.windowTitle(), QString("Session Info"));
        auto* form = dialog.findChild<QFormLayout*>();
        QVERIFY(form != nullptr);
        QCOMPARE(form->rowCount(), 7);
        for (int row = 0; row < form->rowCount(); ++row) {
            auto* label = qobject_cast<QLabel*>(form->itemAt(row, QFormLayout::LabelRole)->widget());
            auto* value = qobject_cast<QLineEdit*>(form->itemAt(row, QFormLayout::FieldRole)->widget());
            QVERIFY(label != nullptr && value != nullptr);
            QCOMPARE(label->text(), QString::fromStdString(fields[row].first));
            QCOMPARE(value->text(), QString::fromStdString(fields[row].second));
            QVERIFY(value->isReadOnly());
        }
    }
};

QTEST_MAIN(StyleDialogsTest)
#include "StyleDialogsTest.moc"

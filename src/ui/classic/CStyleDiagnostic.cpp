#include "classic/CStyleDiagnostic.h"

#include "app/Boxes.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace zdtui {
namespace {

QGroupBox* RadioGroup(const QString& title, QWidget* parent) {
    auto* group = new QGroupBox(title, parent);
    new QVBoxLayout(group);
    return group;
}

QRadioButton* AddRadio(QGroupBox* group, const QString& text) {
    auto* radio = new QRadioButton(text, group);
    group->layout()->addWidget(radio);
    return radio;
}

// A radio that stores `value` into `field` when chosen.
void AddValueRadio(QGroupBox* group, const QString& text, std::uint32_t& field, std::uint32_t value) {
    QRadioButton* radio = AddRadio(group, text);
    radio->setChecked(field == value);
    QObject::connect(radio, &QRadioButton::clicked, group, [&field, value] { field = value; });
}

} // namespace

CStyleDiagnostic::CStyleDiagnostic(QWidget* parent, TimeMode mode, const KLineByteSettings& settings)
    : QDialog(parent), m_settings(settings) {
    setWindowTitle(tr("Style KLine Link"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CStyleDiagnostic::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CStyleDiagnostic::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(buildTimestampGroup(mode));
    layout->addWidget(buildByteTimeGroup());
    layout->addWidget(buttons);
    showByteTimeEnabled();
}

QGroupBox* CStyleDiagnostic::buildTimestampGroup(TimeMode mode) {
    QGroupBox* group = RadioGroup(tr("Timestamp Format"), this);
    m_absolute = AddRadio(group, tr("&Absolute"));
    m_relative = AddRadio(group, tr("&Relative"));
    m_interByte = AddRadio(group, tr("Inter&byte"));
    switch (mode) {
    case TimeMode::Absolute:
        m_absolute->setChecked(true);
        break;
    case TimeMode::InterByte:
        m_interByte->setChecked(true);
        break;
    case TimeMode::Relative:
    case TimeMode::RelativeChannel:
        m_relative->setChecked(true);
        break;
    }
    for (QRadioButton* radio : {m_absolute, m_relative, m_interByte})
        connect(radio, &QRadioButton::toggled, this, &CStyleDiagnostic::showByteTimeEnabled);
    return group;
}

QGroupBox* CStyleDiagnostic::buildByteTimeGroup() {
    m_byteTimeGroup = new QGroupBox(tr("Byte Time Calculation"), this);

    m_baudrateEdit = new QLineEdit(QString::number(m_settings.baudrate), m_byteTimeGroup);
    m_baudrateEdit->setObjectName("baudrate");
    m_baudrateEdit->setValidator(new QIntValidator(0, KLineByteSettings::MaxBaudrate, m_baudrateEdit));
    auto* baudLabel = new QLabel(tr("&Baudrate:"), m_byteTimeGroup);
    baudLabel->setBuddy(m_baudrateEdit);
    auto* baudRow = new QHBoxLayout;
    baudRow->addWidget(baudLabel);
    baudRow->addWidget(m_baudrateEdit);
    baudRow->addWidget(new QLabel(tr("Bit/s"), m_byteTimeGroup));

    QGroupBox* lengthGroup = RadioGroup(tr("Byte Lenght"), m_byteTimeGroup);
    for (std::uint32_t bits : {9u, 8u, 7u}) {
        QRadioButton* radio = AddRadio(lengthGroup, tr("%1 Bit").arg(bits));
        radio->setChecked(m_settings.dataBits == bits);
        connect(radio, &QRadioButton::clicked, this, [this, bits] { ChooseByteLength(m_settings, bits); });
    }
    QGroupBox* parityGroup = RadioGroup(tr("&Parity"), m_byteTimeGroup);
    AddValueRadio(parityGroup, tr("None"), m_settings.parity, KLineByteSettings::None);
    AddValueRadio(parityGroup, tr("Even"), m_settings.parity, KLineByteSettings::Even);
    AddValueRadio(parityGroup, tr("Odd"), m_settings.parity, KLineByteSettings::Odd);
    QGroupBox* stopGroup = RadioGroup(tr("&Stopbits"), m_byteTimeGroup);
    AddValueRadio(stopGroup, tr("1 Bit"), m_settings.stopBits, 1);
    AddValueRadio(stopGroup, tr("2 Bits"), m_settings.stopBits, 2);

    auto* groups = new QHBoxLayout;
    groups->addWidget(lengthGroup);
    groups->addWidget(parityGroup);
    groups->addWidget(stopGroup);
    auto* layout = new QVBoxLayout(m_byteTimeGroup);
    layout->addLayout(baudRow);
    layout->addLayout(groups);
    return m_byteTimeGroup;
}

void CStyleDiagnostic::showByteTimeEnabled() {
    m_byteTimeGroup->setEnabled(m_interByte->isChecked());
}

TimeMode CStyleDiagnostic::mode() const {
    if (m_absolute->isChecked())
        return TimeMode::Absolute;
    if (m_interByte->isChecked())
        return TimeMode::InterByte;
    return TimeMode::Relative;
}

void CStyleDiagnostic::accept() {
    const std::optional<std::uint32_t> baudrate = ParseBaudrate(m_baudrateEdit->text().toStdString());
    if (!baudrate) {
        const zdt::UserMessage message = BaudrateRangeMessage();
        Boxes::instance().show(this, QString::fromStdString(message.title), QString::fromStdString(message.text),
                               ToQtIcon(message.icon));
        return;
    }
    m_settings.baudrate = *baudrate;
    if (mode() == TimeMode::InterByte) {
        const std::optional<std::uint32_t> byteTime = KLineByteTime(m_settings);
        if (!byteTime) {
            const zdt::UserMessage message = BaudrateZeroMessage();
            Boxes::instance().show(this, QString::fromStdString(message.title), QString::fromStdString(message.text),
                                   ToQtIcon(message.icon));
            m_baudrateEdit->setFocus();
            return;
        }
        m_byteTime = *byteTime;
    }
    QDialog::accept();
}

} // namespace zdtui

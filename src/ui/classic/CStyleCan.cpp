#include "classic/CStyleCan.h"

#include <QDialogButtonBox>
#include <QGroupBox>
#include <QRadioButton>
#include <QVBoxLayout>

namespace zdtui {

CStyleCan::CStyleCan(QWidget* parent, TimeMode mode, bool relativeChannelDisabled) : QDialog(parent) {
    setWindowTitle(tr("Style CAN Link"));
    auto* group = new QGroupBox(tr("Timestamp Format"), this);
    m_absolute = new QRadioButton(tr("&Absolute"), group);
    m_relative = new QRadioButton(tr("&Relative"), group);
    m_relativeChannel = new QRadioButton(tr("Relative &Channel"), group);
    m_relativeChannel->setEnabled(!relativeChannelDisabled);
    auto* groupLayout = new QVBoxLayout(group);
    groupLayout->addWidget(m_absolute);
    groupLayout->addWidget(m_relative);
    groupLayout->addWidget(m_relativeChannel);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CStyleCan::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CStyleCan::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(group);
    layout->addWidget(buttons);
    setMode(mode);
}

void CStyleCan::setMode(TimeMode mode) {
    switch (mode) {
    case TimeMode::Absolute:
        m_absolute->setChecked(true);
        break;
    case TimeMode::RelativeChannel:
        m_relativeChannel->setChecked(true);
        break;
    case TimeMode::Relative:
    case TimeMode::InterByte:
        m_relative->setChecked(true);
        break;
    }
}

TimeMode CStyleCan::mode() const {
    if (m_absolute->isChecked())
        return TimeMode::Absolute;
    if (m_relativeChannel->isChecked())
        return TimeMode::RelativeChannel;
    return TimeMode::Relative;
}

} // namespace zdtui

#pragma once

#include "classic/CAnalyzerDoc.h"

#include <QDialog>

class QRadioButton;

namespace zdtui {

// "Style CAN Link" (dialog resource 146): how the times of a CAN trace are shown.
class CStyleCan final : public QDialog {
    Q_OBJECT
public:
    // The inter-byte mode has no place here and shows as relative.
    CStyleCan(QWidget* parent, TimeMode mode, bool relativeChannelDisabled);

    TimeMode mode() const;
    void setMode(TimeMode mode);

private:
    QRadioButton* m_absolute = nullptr;
    QRadioButton* m_relative = nullptr;
    QRadioButton* m_relativeChannel = nullptr;
};

} // namespace zdtui

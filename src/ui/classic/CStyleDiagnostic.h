#pragma once

#include "classic/CAnalyzerDoc.h"
#include "classic/KLineByteTime.h"

#include <QDialog>

#include <cstdint>

class QGroupBox;
class QLineEdit;
class QRadioButton;

namespace zdtui {

// "Style KLine Link" (dialog resource 515): how the times of a K-line trace are shown,
// and for the inter-byte mode the line settings that give the time of one byte.
class CStyleDiagnostic final : public QDialog {
    Q_OBJECT
public:
    // The relative-channel mode has no place here and shows as relative.
    CStyleDiagnostic(QWidget* parent, TimeMode mode, const KLineByteSettings& settings);

    TimeMode mode() const;
    const KLineByteSettings& settings() const { return m_settings; }
    // The whole microseconds of one byte, known after OK in the inter-byte mode.
    std::uint32_t byteTime() const { return m_byteTime; }

    // Reads the baud rate; refuses an unreadable one, and 0 where it would be divided by.
    void accept() override;

private:
    QGroupBox* buildTimestampGroup(TimeMode mode);
    QGroupBox* buildByteTimeGroup();
    void showByteTimeEnabled();

    KLineByteSettings m_settings;
    std::uint32_t m_byteTime = 0;

    QRadioButton* m_absolute = nullptr;
    QRadioButton* m_relative = nullptr;
    QRadioButton* m_interByte = nullptr;
    QGroupBox* m_byteTimeGroup = nullptr;
    QLineEdit* m_baudrateEdit = nullptr;
};

} // namespace zdtui

#pragma once

#include "classic/ClassicSearch.h"

#include <QDialog>

#include <array>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace zdtui {

// The find dialog of classic traces. Controls carry their resource ids as object names.
// It keeps the values of its last OK from one search to the next.
class CFindDlg final : public QDialog {
    Q_OBJECT
public:
    static constexpr int IdTimeCheck = 12020;
    static constexpr int IdMinTime = 1052;
    static constexpr int IdMaxTime = 1053;
    static constexpr int IdDataCheck = 1021;
    static constexpr int IdData = 1054;
    static constexpr int IdIdentifierCheck = 1002;
    static constexpr int IdIdentifier = 1055;
    static constexpr int IdBoundsLabel = 1025;
    static constexpr int IdUnitLabel = 1026;
    static constexpr int IdErrorPassive = 1029;
    static constexpr int IdWarning96 = 12033;
    static constexpr int IdErrorActive = 11030;
    static constexpr int IdReceivedCorruptedBytes = 1031;
    static constexpr int IdBusOff = 11032;
    static constexpr int IdBufferOverflow = 11036;
    static constexpr int IdErrorFrame = 12034;
    static constexpr int IdTimerOverflow = 15035;

    explicit CFindDlg(QWidget* parent = nullptr);

    // Before each showing: what the trace enables, and the time bound texts of its mode.
    // The controls get the values of the last OK.
    void prepare(const FindDialogEnabling& enabling, const QString& boundsText, const QString& unitText);

    // The values of the last OK and what that OK decided.
    const ClassicFindCriteria& criteria() const { return m_criteria; }
    bool hasCriteria() const { return m_hasCriteria; }
    bool markAll() const { return m_markAll; }

    // OK: closes only with bounds in order; a bad data text closes with "Nothing Found!".
    void accept() override;
    // Mark All: OK for a search that bookmarks every hit.
    void markAllAndAccept();

private:
    struct EventCheck {
        QCheckBox* box;
        bool ClassicFindCriteria::*field;
        bool FindDialogEnabling::*enabled;
    };

    QCheckBox* addCheck(const char* text, int id);
    QLineEdit* addEdit(int id, int maxLength);
    ClassicFindCriteria readControls() const;
    void writeControls(const ClassicFindCriteria& criteria);
    void updateEnabling();
    void checkHexInput(QLineEdit* edit, bool identifierEdit);

    QCheckBox* m_timeCheck;
    QLineEdit* m_minTime;
    QLineEdit* m_maxTime;
    QCheckBox* m_dataCheck;
    QLineEdit* m_data;
    QCheckBox* m_identifierCheck;
    QLineEdit* m_identifier;
    QLabel* m_boundsLabel;
    QLabel* m_unitLabel;
    std::array<EventCheck, 8> m_events{};

    ClassicFindCriteria m_criteria;
    FindDialogEnabling m_enabling;
    bool m_hasCriteria = false;
    bool m_markAll = false;
};

} // namespace zdtui

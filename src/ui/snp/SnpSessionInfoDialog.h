#pragma once

#include "snp/SnpDoc.h"

#include <QDialog>

class QLabel;

namespace zdtui {

// The session information of a snapshot file: file name, date, time and the fixed
// author, with an OK button only.
class SnpSessionInfoDialog final : public QDialog {
    Q_OBJECT
public:
    SnpSessionInfoDialog(const ZDTAnalyzer::SnpDoc::SessionInformationDialog& information, QWidget* parent = nullptr);

    QString fileNameText() const;
    QString dateText() const;
    QString timeText() const;
    QString authorText() const;

private:
    QLabel* m_fileName;
    QLabel* m_date;
    QLabel* m_time;
    QLabel* m_author;
};

} // namespace zdtui

#include "snp/SnpSessionInfoDialog.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace zdtui {

using Information = ZDTAnalyzer::SnpDoc::SessionInformationDialog;

SnpSessionInfoDialog::SnpSessionInfoDialog(const Information& information, QWidget* parent)
    : QDialog(parent), m_fileName(new QLabel(QFile::decodeName(information.fileName.c_str()), this)),
      m_date(new QLabel(QString::fromStdString(information.date), this)),
      m_time(new QLabel(QString::fromStdString(information.time), this)),
      m_author(new QLabel(QString::fromUtf8(Information::Author), this)) {
    setWindowTitle(tr("Session Information"));
    auto* form = new QFormLayout;
    form->addRow(QString::fromUtf8(Information::FileNameLabel), m_fileName);
    form->addRow(QString::fromUtf8(Information::DateLabel), m_date);
    form->addRow(QString::fromUtf8(Information::TimeLabel), m_time);
    form->addRow(QString::fromUtf8(Information::AuthorLabel), m_author);
    m_fileName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

QString SnpSessionInfoDialog::fileNameText() const {
    return m_fileName->text();
}
QString SnpSessionInfoDialog::dateText() const {
    return m_date->text();
}
QString SnpSessionInfoDialog::timeText() const {
    return m_time->text();
}
QString SnpSessionInfoDialog::authorText() const {
    return m_author->text();
}

} // namespace zdtui

#include "classic/CFindDlg.h"

#include "app/Boxes.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>

namespace zdtui {
namespace {

QString Name(int id) {
    return QString::number(id);
}

std::string ToStd(const QString& text) {
    return text.toUtf8().toStdString();
}

} // namespace

QCheckBox* CFindDlg::addCheck(const char* text, int id) {
    auto* box = new QCheckBox(QString::fromLatin1(text), this);
    box->setObjectName(Name(id));
    return box;
}

QLineEdit* CFindDlg::addEdit(int id, int maxLength) {
    auto* edit = new QLineEdit(this);
    edit->setObjectName(Name(id));
    edit->setMaxLength(maxLength);
    // Wide enough for the longest text the edit takes.
    const int textWidth = edit->fontMetrics().horizontalAdvance(QString(maxLength + 1, QLatin1Char('D')));
    edit->setFixedWidth(textWidth + 2 * edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 8);
    return edit;
}

CFindDlg::CFindDlg(QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Find"));

    m_timeCheck = addCheck("&Time", IdTimeCheck);
    m_minTime = addEdit(IdMinTime, static_cast<int>(MaxTimeTextLength));
    m_maxTime = addEdit(IdMaxTime, static_cast<int>(MaxTimeTextLength));
    m_boundsLabel = new QLabel(QStringLiteral("ms < x <"), this);
    m_boundsLabel->setObjectName(Name(IdBoundsLabel));
    m_unitLabel = new QLabel(QStringLiteral("ms"), this);
    m_unitLabel->setObjectName(Name(IdUnitLabel));
    m_dataCheck = addCheck("&Data", IdDataCheck);
    m_data = addEdit(IdData, static_cast<int>(MaxDataTextLength));
    m_identifierCheck = addCheck("&Identifier", IdIdentifierCheck);
    m_identifier = addEdit(IdIdentifier, static_cast<int>(MaxIdentifierTextLength));

    m_events = {{
        {addCheck("Error Passive ", IdErrorPassive), &ClassicFindCriteria::errorPassive,
         &FindDialogEnabling::errorPassive},
        {addCheck("Warning 96", IdWarning96), &ClassicFindCriteria::warning96, &FindDialogEnabling::warning96},
        {addCheck("Error Active ", IdErrorActive), &ClassicFindCriteria::errorActive, &FindDialogEnabling::errorActive},
        {addCheck("Received corrupted Bytes", IdReceivedCorruptedBytes), &ClassicFindCriteria::receivedCorruptedBytes,
         &FindDialogEnabling::receivedCorruptedBytes},
        {addCheck("Bus Off ", IdBusOff), &ClassicFindCriteria::busOff, &FindDialogEnabling::busOff},
        {addCheck("Buffer Overflow", IdBufferOverflow), &ClassicFindCriteria::bufferOverflow,
         &FindDialogEnabling::bufferOverflow},
        {addCheck("Error Frame ", IdErrorFrame), &ClassicFindCriteria::errorFrame, &FindDialogEnabling::errorFrame},
        {addCheck("Timer Overflow ", IdTimerOverflow), &ClassicFindCriteria::timerOverflow,
         &FindDialogEnabling::timerOverflow},
    }};

    auto* timeRow = new QHBoxLayout;
    timeRow->addWidget(m_timeCheck);
    timeRow->addWidget(m_minTime);
    timeRow->addWidget(m_boundsLabel);
    timeRow->addWidget(m_maxTime);
    timeRow->addWidget(m_unitLabel);
    timeRow->addStretch();
    auto* dataRow = new QHBoxLayout;
    dataRow->addWidget(m_dataCheck);
    dataRow->addWidget(m_data);
    dataRow->addWidget(new QLabel(QStringLiteral("hex, separated by ','"), this));
    dataRow->addStretch();
    auto* identifierRow = new QHBoxLayout;
    identifierRow->addWidget(m_identifierCheck);
    identifierRow->addWidget(m_identifier);
    identifierRow->addStretch();
    // The checks share one width, so that the edits line up.
    const int checkWidth = std::max(
        {m_timeCheck->sizeHint().width(), m_dataCheck->sizeHint().width(), m_identifierCheck->sizeHint().width()});
    for (QCheckBox* check : {m_timeCheck, m_dataCheck, m_identifierCheck})
        check->setFixedWidth(checkWidth);

    auto* events = new QGridLayout;
    for (std::size_t i = 0; i < m_events.size(); ++i)
        events->addWidget(m_events[i].box, static_cast<int>(i / 2), static_cast<int>(i % 2));

    auto* fields = new QVBoxLayout;
    fields->addLayout(timeRow);
    fields->addLayout(dataRow);
    fields->addLayout(identifierRow);
    fields->addSpacing(8);
    fields->addLayout(events);
    fields->addStretch();

    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName(QStringLiteral("1"));
    ok->setDefault(true);
    auto* markAll = new QPushButton(tr("Mark All"), this);
    markAll->setObjectName(QStringLiteral("markAll"));
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName(QStringLiteral("2"));
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(ok);
    buttons->addWidget(markAll);
    buttons->addWidget(cancel);
    buttons->addStretch();

    auto* layout = new QHBoxLayout(this);
    layout->addLayout(fields);
    layout->addLayout(buttons);

    connect(ok, &QPushButton::clicked, this, &CFindDlg::accept);
    connect(markAll, &QPushButton::clicked, this, &CFindDlg::markAllAndAccept);
    connect(cancel, &QPushButton::clicked, this, &CFindDlg::reject);
    connect(m_dataCheck, &QCheckBox::toggled, this, &CFindDlg::updateEnabling);
    connect(m_identifierCheck, &QCheckBox::toggled, this, &CFindDlg::updateEnabling);
    connect(m_data, &QLineEdit::textChanged, this, [this] { checkHexInput(m_data, false); });
    connect(m_identifier, &QLineEdit::textChanged, this, [this] { checkHexInput(m_identifier, true); });
    updateEnabling();
}

void CFindDlg::prepare(const FindDialogEnabling& enabling, const QString& boundsText, const QString& unitText) {
    m_enabling = enabling;
    m_markAll = false;
    m_boundsLabel->setText(boundsText);
    m_unitLabel->setText(unitText);
    ClassicFindCriteria criteria = m_criteria;
    ApplyEnabling(criteria, enabling);
    writeControls(criteria);
    updateEnabling();
}

ClassicFindCriteria CFindDlg::readControls() const {
    ClassicFindCriteria c;
    c.useTime = m_timeCheck->isChecked();
    c.minTime = ToStd(m_minTime->text());
    c.maxTime = ToStd(m_maxTime->text());
    c.useData = m_dataCheck->isChecked();
    c.dataText = ToStd(m_data->text());
    c.useIdentifier = m_identifierCheck->isChecked();
    c.identifierText = ToStd(m_identifier->text());
    for (const EventCheck& event : m_events)
        c.*event.field = event.box->isChecked();
    return c;
}

void CFindDlg::writeControls(const ClassicFindCriteria& c) {
    m_timeCheck->setChecked(c.useTime);
    m_minTime->setText(QString::fromUtf8(c.minTime.c_str()));
    m_maxTime->setText(QString::fromUtf8(c.maxTime.c_str()));
    m_dataCheck->setChecked(c.useData);
    m_data->setText(QString::fromUtf8(c.dataText.c_str()));
    m_identifierCheck->setChecked(c.useIdentifier);
    m_identifier->setText(QString::fromUtf8(c.identifierText.c_str()));
    for (const EventCheck& event : m_events)
        event.box->setChecked(c.*event.field);
}

void CFindDlg::updateEnabling() {
    m_timeCheck->setEnabled(m_enabling.time);
    m_minTime->setEnabled(m_enabling.time);
    m_maxTime->setEnabled(m_enabling.time);
    m_data->setEnabled(m_dataCheck->isChecked());
    m_identifier->setEnabled(m_identifierCheck->isChecked());
    for (const EventCheck& event : m_events)
        event.box->setEnabled(m_enabling.*event.enabled);
}

void CFindDlg::checkHexInput(QLineEdit* edit, bool identifierEdit) {
    const QString text = edit->text();
    const std::optional<std::string> refusal = HexInputRefusal(ToStd(text), identifierEdit);
    if (!refusal)
        return;
    Boxes::instance().show(this, QString(), QString::fromUtf8(refusal->c_str()), QMessageBox::Warning);
    // Setting the shorter text checks its new last character in turn.
    edit->setText(text.chopped(1));
    edit->setCursorPosition(static_cast<int>(edit->text().size()));
}

void CFindDlg::accept() {
    const ClassicFindCriteria criteria = readControls();
    const FindOkResult result = ValidateFindCriteria(criteria);
    if (result.staysOpen) {
        Boxes::instance().show(this, QString(), QString::fromUtf8(result.message.c_str()), QMessageBox::Warning);
        m_maxTime->selectAll();
        m_maxTime->setFocus();
        return;
    }
    m_criteria = criteria;
    m_hasCriteria = result.hasCriteria;
    QDialog::accept();
    if (result.badDataForm)
        Boxes::instance().show(parentWidget(), QString(), QString::fromUtf8(result.message.c_str()),
                               QMessageBox::Warning);
}

void CFindDlg::markAllAndAccept() {
    m_markAll = true;
    accept();
}

} // namespace zdtui

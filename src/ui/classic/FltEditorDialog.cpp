#include "classic/FltEditorDialog.h"

#include "app/Boxes.h"
#include "classic/CanFilterDialogLogic.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace zdtui {
namespace {

constexpr const char* kNewTitle = "New CanFilter";

} // namespace

FltEditorDialog::FltEditorDialog(QWidget* parent, const QString& directory)
    : QDialog(parent), m_directory(directory), m_isNew(true) {
    buildControls();
    showIdentifiers(-1);
}

FltEditorDialog::FltEditorDialog(QWidget* parent, const QString& directory, const QString& fileName)
    : QDialog(parent), m_directory(directory), m_fileName(fileName), m_isNew(false),
      m_filter(ReadFltFile(QDir(directory).filePath(fileName).toStdString())) {
    buildControls();
    showIdentifiers(-1);
}

void FltEditorDialog::buildControls() {
    setWindowTitle(tr("CAN Filter"));
    auto* layout = new QVBoxLayout(this);

    if (m_isNew) {
        auto* nameRow = new QFormLayout;
        m_nameEdit = new QLineEdit(this);
        m_nameEdit->setObjectName("fileName");
        nameRow->addRow(tr("File &name:"), m_nameEdit);
        layout->addLayout(nameRow);
    } else {
        layout->addWidget(new QLabel(tr("File: %1").arg(m_fileName), this));
    }
    auto* folder = new QLabel(tr("Folder: %1").arg(m_directory), this);
    folder->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(folder);

    auto* typeGroup = new QGroupBox(tr("Filter Type"), this);
    auto* typeLayout = new QHBoxLayout(typeGroup);
    m_passButton = new QRadioButton(tr("&PassFilter"), typeGroup);
    m_passButton->setToolTip(tr("Shows the listed identifiers, events and records without identifier"));
    m_stopButton = new QRadioButton(tr("&StopFilter"), typeGroup);
    m_stopButton->setToolTip(tr("Hides the listed identifiers and every record without identifier"));
    typeLayout->addWidget(m_passButton);
    typeLayout->addWidget(m_stopButton);
    (m_filter.stopFilter ? m_stopButton : m_passButton)->setChecked(true);
    layout->addWidget(typeGroup);

    auto* idGroup = new QGroupBox(tr("Identifiers"), this);
    auto* idLayout = new QVBoxLayout(idGroup);
    m_identifierList = new QListWidget(idGroup);
    m_identifierList->setObjectName("identifiers");
    idLayout->addWidget(m_identifierList);
    auto* entryRow = new QHBoxLayout;
    m_identifierEdit = new QLineEdit(idGroup);
    m_identifierEdit->setObjectName("identifier");
    m_identifierEdit->setPlaceholderText(tr("hex, e.g. 7DF"));
    m_identifierEdit->setMinimumWidth(120);
    auto* identifierLabel = new QLabel(tr("&Identifier:"), idGroup);
    identifierLabel->setBuddy(m_identifierEdit);
    m_extendedBox = new QCheckBox(tr("E&xtended (29 Bit)"), idGroup);
    m_addButton = new QPushButton(tr("A&dd"), idGroup);
    m_removeButton = new QPushButton(tr("&Delete"), idGroup);
    entryRow->addWidget(identifierLabel);
    entryRow->addWidget(m_identifierEdit, 1);
    entryRow->addWidget(m_extendedBox);
    entryRow->addWidget(m_addButton);
    entryRow->addWidget(m_removeButton);
    idLayout->addLayout(entryRow);
    m_countText = new QLabel(idGroup);
    idLayout->addWidget(m_countText);
    layout->addWidget(idGroup, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    layout->addWidget(buttons);
    resize(480, 420);

    connect(m_stopButton, &QRadioButton::toggled, this, [this](bool on) { m_filter.stopFilter = on; });
    connect(m_addButton, &QPushButton::clicked, this, &FltEditorDialog::addTypedIdentifier);
    connect(m_identifierEdit, &QLineEdit::returnPressed, this, &FltEditorDialog::addTypedIdentifier);
    connect(m_removeButton, &QPushButton::clicked, this, &FltEditorDialog::removeSelectedIdentifier);
    connect(m_identifierList, &QListWidget::currentRowChanged, this,
            [this](int row) { m_removeButton->setEnabled(row >= 0); });
    connect(buttons, &QDialogButtonBox::accepted, this, &FltEditorDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &FltEditorDialog::reject);
}

void FltEditorDialog::showIdentifiers(int select) {
    m_identifierList->clear();
    for (std::uint32_t identifier : m_filter.identifiers)
        m_identifierList->addItem(QString::fromStdString(FormatIdentifierText(identifier)));
    m_identifierList->setCurrentRow(select);
    m_removeButton->setEnabled(select >= 0);
    m_addButton->setEnabled(m_filter.identifiers.size() < FltMaxEntries);
    m_countText->setText(tr("%1 of %2 identifiers").arg(m_filter.identifiers.size()).arg(FltMaxEntries));
}

void FltEditorDialog::setFileName(const QString& name) {
    if (m_nameEdit != nullptr)
        m_nameEdit->setText(name);
}

void FltEditorDialog::setStopFilter(bool stop) {
    (stop ? m_stopButton : m_passButton)->setChecked(true);
}

void FltEditorDialog::addTypedIdentifier() {
    if (addIdentifier(m_identifierEdit->text(), m_extendedBox->isChecked()))
        m_identifierEdit->clear();
    m_identifierEdit->setFocus();
}

bool FltEditorDialog::addIdentifier(const QString& text, bool extended) {
    const std::optional<std::uint32_t> identifier = ParseIdentifierText(text.toStdString(), extended);
    if (!identifier) {
        Boxes::instance().show(this, windowTitle(),
                               tr("Please enter a hexadecimal identifier up to 7FF, or up to 1FFFFFFF for an "
                                  "extended frame."),
                               QMessageBox::Warning);
        return false;
    }
    const auto listed = std::find(m_filter.identifiers.begin(), m_filter.identifiers.end(), *identifier);
    if (listed != m_filter.identifiers.end()) {
        // Already there: show where instead of complaining.
        m_identifierList->setCurrentRow(static_cast<int>(listed - m_filter.identifiers.begin()));
        return false;
    }
    if (!AddFilterIdentifier(m_filter.identifiers, *identifier)) {
        Boxes::instance().show(this, windowTitle(), tr("A filter holds at most %1 identifiers.").arg(FltMaxEntries),
                               QMessageBox::Warning);
        return false;
    }
    showIdentifiers(static_cast<int>(m_filter.identifiers.size()) - 1);
    return true;
}

void FltEditorDialog::removeSelectedIdentifier() {
    const int row = m_identifierList->currentRow();
    if (row < 0 || row >= static_cast<int>(m_filter.identifiers.size()))
        return;
    m_filter.identifiers.erase(m_filter.identifiers.begin() + row);
    showIdentifiers(std::min(row, static_cast<int>(m_filter.identifiers.size()) - 1));
}

bool FltEditorDialog::saveTo(const QString& path) {
    if (WriteFltFile(path.toStdString(), m_filter)) {
        m_savedPath = path;
        return true;
    }
    Boxes::instance().show(this, windowTitle(), tr("The filter file %1 could not be written.").arg(path),
                           QMessageBox::Warning);
    return false;
}

void FltEditorDialog::accept() {
    if (!m_isNew) {
        if (saveTo(QDir(m_directory).filePath(m_fileName)))
            QDialog::accept();
        return;
    }
    const std::optional<std::string> name = NewFltFileName(m_nameEdit->text().toStdString());
    if (!name) {
        Boxes::instance().show(this, QString::fromLatin1(kNewTitle), tr("Please enter a name for the filter file."),
                               QMessageBox::Warning);
        return;
    }
    const QString path = QDir(m_directory).filePath(QString::fromStdString(*name));
    if (QFileInfo::exists(path)) {
        if (!Boxes::instance().askYesNo(this, QString::fromLatin1(kNewTitle),
                                        QString::fromStdString(kCanFilterOverwriteText), QMessageBox::Question))
            return;
        // A new filter starts from an empty file, not from what the old one held.
        RemoveFilterFile(path.toStdString());
    }
    EnsureFilterDirectory(m_directory.toStdString());
    if (saveTo(path))
        QDialog::accept();
}

} // namespace zdtui

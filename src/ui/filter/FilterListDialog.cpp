#include "filter/FilterListDialog.h"

#include "app/Boxes.h"
#include "filter/FilterDialog701Logic.h"
#include "filter/FilterRunner.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace zdtui {

namespace Logic = ZDTAnalyzer::Filter::XPVT_7_01;

namespace {

FilterFileChooser& Chooser() {
    static FilterFileChooser chooser;
    return chooser;
}

QString ChooseWithFileDialog(QWidget* parent, const FilterFileChoice& choice) {
    QFileDialog dialog(parent, choice.title, choice.directory, choice.nameFilter);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(choice.defaultSuffix);
    dialog.selectFile(choice.initialName);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

void ShowBox(QWidget* parent, const char* title, const QString& text) {
    Boxes::instance().show(parent, QString::fromUtf8(title), text, QMessageBox::Critical);
}

QString Formatted(const char* format, const QString& text) {
    return QString::fromStdString(Logic::formatMessage(format, LocalFilePath(text)));
}

} // namespace

void FilterListDialog::setFileChooser(FilterFileChooser chooser) {
    Chooser() = std::move(chooser);
}

FilterListDialog::FilterListDialog(const QString& filterDirectory, FilterFileChoice addChoice, QWidget* parent)
    : QDialog(parent), m_filterDirectory(filterDirectory), m_addChoice(std::move(addChoice)),
      m_list(new QListWidget(this)), m_directory(new QLineEdit(filterDirectory, this)) {
    setWindowTitle(QString::fromUtf8(Title));
    m_addChoice.directory = filterDirectory;
    m_list->setObjectName(QStringLiteral("fileList"));
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_directory->setObjectName(QStringLiteral("filterDirectory"));
    m_directory->setReadOnly(true);
    m_directory->setMinimumWidth(360);

    static constexpr const char* Labels[] = {"&New...", "&Add...", "&Remove", "&Edit...", "Info...", "&Ok"};
    auto* buttons = new QVBoxLayout;
    for (int i = 0; i < 6; ++i) {
        m_buttons[i] = new QPushButton(QString::fromUtf8(Labels[i]), this);
        m_buttons[i]->setAutoDefault(false);
        buttons->addWidget(m_buttons[i]);
        if (i == 4)
            buttons->addStretch();
    }
    button(Button::Ok)->setDefault(true);

    auto* left = new QVBoxLayout;
    auto* listLabel = new QLabel(QString::fromUtf8(ListLabel), this);
    listLabel->setBuddy(m_list);
    left->addWidget(listLabel);
    left->addWidget(m_list, 1);
    left->addWidget(new QLabel(QString::fromUtf8(DirectoryLabel), this));
    left->addWidget(m_directory);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(left, 1);
    layout->addLayout(buttons);

    connect(button(Button::New), &QPushButton::clicked, this, [this] { onNew(); });
    connect(button(Button::Add), &QPushButton::clicked, this, &FilterListDialog::onAdd);
    connect(button(Button::Remove), &QPushButton::clicked, this, &FilterListDialog::onRemove);
    connect(button(Button::Edit), &QPushButton::clicked, this, [this] { onEdit(); });
    connect(button(Button::Info), &QPushButton::clicked, this, [this] { onInfo(); });
    connect(button(Button::Ok), &QPushButton::clicked, this, [this] { onOk(); });
    connect(m_list, &QListWidget::itemSelectionChanged, this, &FilterListDialog::updateButtons);
}

QPushButton* FilterListDialog::button(Button which) const {
    return m_buttons[static_cast<int>(which)];
}

bool FilterListDialog::ensureFilterDirectory() {
    if (QDir().mkpath(m_filterDirectory))
        return true;
    ShowBox(this, Logic::CannotOpenFileTitle, Formatted(Logic::CannotOpenFileFormat, m_filterDirectory));
    return false;
}

QString FilterListDialog::selectedName() const {
    const QList<QListWidgetItem*> selected = m_list->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

bool FilterListDialog::addListedName(const QString& name) {
    if (!m_list->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive).isEmpty())
        return false;
    m_list->addItem(name);
    m_list->setCurrentRow(m_list->count() - 1);
    nameAdded(name);
    updateButtons();
    return true;
}

void FilterListDialog::updateButtons() {
    const bool enabled = fileCommandsEnabled();
    button(Button::Remove)->setEnabled(enabled);
    button(Button::Edit)->setEnabled(enabled);
}

void FilterListDialog::onAdd() {
    const FilterFileChooser& chooser = Chooser();
    const QString chosen = chooser ? chooser(this, m_addChoice) : ChooseWithFileDialog(this, m_addChoice);
    if (chosen.isEmpty())
        return;
    const QString name = QFileInfo(chosen).fileName();
    // A file of the filter folder itself is only listed.
    if (Logic::isInFilterDirectory(LocalFilePath(chosen), LocalFilePath(m_filterDirectory))) {
        addListedName(name);
        return;
    }
    const QString target = pathOf(name);
    bool overwritten = false;
    if (QFileInfo::exists(target)) {
        if (!Boxes::instance().askYesNo(this, QString::fromUtf8(Logic::OverwriteTitle),
                                        QString::fromUtf8(Logic::OverwriteText), QMessageBox::Question))
            return;
        QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        QFile::remove(target);
        overwritten = true;
    }
    if (!ensureFilterDirectory())
        return;
    if (!QFile::copy(chosen, target)) {
        ShowBox(this, Logic::CopyFailedTitle, QString::fromUtf8(Logic::CopyFailedText));
        return;
    }
    // An overwritten file keeps the line it may have; it is not listed again.
    if (!overwritten)
        addListedName(name);
}

void FilterListDialog::onRemove() {
    const int row = m_list->currentRow();
    if (row < 0 || m_list->selectedItems().isEmpty())
        return;
    const QString name = m_list->item(row)->text();
    if (!Boxes::instance().askYesNo(this, QString::fromUtf8(Logic::RemoveTitle), Formatted(Logic::RemoveFormat, name),
                                    QMessageBox::Question))
        return;
    const QString path = pathOf(name);
    QFile::setPermissions(path, QFile::permissions(path) | QFile::WriteOwner);
    QFile::remove(path);
    delete m_list->takeItem(row);
    nameRemoved(name);
    const int next = Logic::selectionAfterRemoval(row, m_list->count());
    if (next >= 0)
        m_list->setCurrentRow(next);
    updateButtons();
}

} // namespace zdtui

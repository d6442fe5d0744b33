#include "classic/CCanFilter.h"

#include "app/Boxes.h"
#include "classic/FilterDirectory.h"
#include "classic/FltEditorDialog.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace zdtui {
namespace {

QString FromStd(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

CCanFilter::CCanFilter(QWidget* parent, CanFilterDialogState& state, const QString& tracePath,
                       const QString& programDir)
    : QDialog(parent), m_state(state), m_tracePath(tracePath), m_programDir(programDir) {
    setWindowTitle(tr("CAN Filter"));
    buildControls();
    refill();
}

void CCanFilter::buildControls() {
    m_list = new QListWidget(this);
    m_list->setObjectName("filterList");
    m_list->setSelectionMode(QAbstractItemView::SingleSelection);
    m_directoryText = new QLabel(this);
    m_directoryText->setObjectName("filterDirectory");
    m_directoryText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_activateBox = new QCheckBox(tr("Activate &Filter"), this);
    m_activateBox->setObjectName("activateFilter");

    m_okButton = new QPushButton(tr("&Ok"), this);
    m_okButton->setObjectName("okButton");
    m_okButton->setDefault(true);
    m_newButton = new QPushButton(tr("&New..."), this);
    m_newButton->setObjectName("newButton");
    m_addButton = new QPushButton(tr("&Add..."), this);
    m_addButton->setObjectName("addButton");
    m_removeButton = new QPushButton(tr("&Remove"), this);
    m_removeButton->setObjectName("removeButton");
    m_editButton = new QPushButton(tr("&Edit..."), this);
    m_editButton->setObjectName("editButton");

    auto* buttons = new QVBoxLayout;
    for (QPushButton* button : {m_okButton, m_newButton, m_addButton, m_removeButton, m_editButton})
        buttons->addWidget(button);
    buttons->addStretch();

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_list, 0, 0);
    layout->addLayout(buttons, 0, 1);
    layout->addWidget(m_directoryText, 1, 0, 1, 2);
    layout->addWidget(m_activateBox, 2, 0, 1, 2);
    resize(460, 300);

    connect(m_okButton, &QPushButton::clicked, this, &CCanFilter::accept);
    connect(m_newButton, &QPushButton::clicked, this, &CCanFilter::createNew);
    connect(m_addButton, &QPushButton::clicked, this, &CCanFilter::chooseFileToAdd);
    connect(m_removeButton, &QPushButton::clicked, this, &CCanFilter::removeSelected);
    connect(m_editButton, &QPushButton::clicked, this, &CCanFilter::editSelected);
    connect(m_activateBox, &QCheckBox::clicked, this, &CCanFilter::activateClicked);
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) { m_state.selection = row; });
    connect(m_list, &QListWidget::itemDoubleClicked, this, &CCanFilter::editSelected);
}

// The directory is worked out anew each time: the settings or the project may have changed.
void CCanFilter::refill() {
    m_filterDir = FromStd(zdt::FindFilterDirectory(m_programDir.toStdString(), m_tracePath.toStdString()));
    RefillCanFilterList(m_state, ListFltFiles(m_filterDir.toStdString()));
    showState();
}

void CCanFilter::showState() {
    const QSignalBlocker blockList(m_list);
    m_list->clear();
    for (const std::string& name : m_state.names)
        m_list->addItem(FromStd(name));
    m_list->setCurrentRow(m_state.selection);
    m_directoryText->setText(m_filterDir);
    m_activateBox->setChecked(m_state.activate);
    const bool entries = CanFilterEntryButtonsEnabled(m_state);
    m_editButton->setEnabled(entries);
    m_removeButton->setEnabled(entries);
}

std::string CCanFilter::filterPath(const std::string& name) const {
    return m_filterDir.toStdString() + name;
}

void CCanFilter::activateClicked() {
    ToggleCanFilterActivate(m_state);
    m_activateBox->setChecked(m_state.activate);
}

void CCanFilter::chooseFileToAdd() {
    const QString source = QFileDialog::getOpenFileName(this, tr("Add CanFilter"), QFileInfo(m_tracePath).path(),
                                                        FromStd(kCanFilterFileDialogFilter));
    if (!source.isEmpty())
        addFile(source);
}

void CCanFilter::addFile(const QString& sourcePath) {
    const std::string source = sourcePath.toStdString();
    const std::string name = QFileInfo(sourcePath).fileName().toStdString();
    const std::string target = filterPath(name);
    switch (DecideCanFilterAdd(source, target)) {
    case CanFilterAddStep::SameFile:
        Boxes::instance().show(this, QString(), FromStd(kCanFilterSameFileText), QMessageBox::Warning);
        return;
    case CanFilterAddStep::AskOverwrite:
        if (!Boxes::instance().askYesNo(this, FromStd(kCanFilterOverwriteTitle), FromStd(kCanFilterOverwriteText),
                                        QMessageBox::Question))
            return;
        // A target that refuses to go makes the copy below fail with its own box.
        RemoveFilterFile(target);
        break;
    case CanFilterAddStep::Copy:
        break;
    }
    EnsureFilterDirectory(m_filterDir.toStdString());
    if (!CopyFilterFile(source, target)) {
        Boxes::instance().show(this, QString(), FromStd(kCanFilterCopyFailedText), QMessageBox::Warning);
        return;
    }
    AddCanFilterToList(m_state, name);
    showState();
}

void CCanFilter::removeSelected() {
    const std::string* selected = SelectedCanFilter(m_state);
    if (selected == nullptr)
        return;
    const std::string path = filterPath(*selected);
    if (!Boxes::instance().askYesNo(this, FromStd(kCanFilterDeleteTitle), FromStd(CanFilterDeleteQuestion(path)),
                                    QMessageBox::Question))
        return;
    if (!RemoveFilterFile(path)) {
        Boxes::instance().show(this, QString(), tr("The file %1 could not be deleted.").arg(FromStd(path)),
                               QMessageBox::Warning);
        return;
    }
    RemoveSelectedCanFilter(m_state);
    showState();
}

void CCanFilter::createNew() {
    FltEditorDialog editor(this, m_filterDir);
    editor.exec();
    refill();
}

void CCanFilter::editSelected() {
    const std::string* selected = SelectedCanFilter(m_state);
    if (selected == nullptr)
        return;
    const std::string name = *selected;
    FltEditorDialog editor(this, m_filterDir, FromStd(name));
    editor.exec();
    // Whatever the editor did, the file may have changed: apply it again on OK.
    AfterCanFilterEdit(m_state, ListFltFiles(m_filterDir.toStdString()), name);
    showState();
}

void CCanFilter::accept() {
    AcceptCanFilter(m_state);
    showState();
    QDialog::accept();
}

} // namespace zdtui

#include "xmldoc/dialogs/BookmarkListDlg.h"

#include "app/Boxes.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zdtui {

using ZDTAnalyzer::BookmarkListLogic::AskYesNo;
namespace Logic = ZDTAnalyzer::BookmarkListLogic;

BookmarkListDlg::BookmarkListDlg(QWidget* parent, ZDTAnalyzer::ProxyBookmarkArray& bookmarks,
                                 const std::string& fileName)
    : QDialog(parent), m_bookmarks(bookmarks), m_state(Logic::start(bookmarks, fileName)) {
    setWindowTitle("Bookmark");
    buildControls();
    showState();
}

void BookmarkListDlg::buildControls() {
    m_names = new QListWidget(this);
    m_names->setObjectName("names");
    m_description = new QPlainTextEdit(this);
    m_description->setObjectName("description");
    m_fileName = new QLineEdit(this);
    m_fileName->setObjectName("fileName");
    m_fileName->setReadOnly(true);
    m_line = new QLineEdit(this);
    m_line->setObjectName("line");
    m_line->setReadOnly(true);

    m_save = new QPushButton("Save", this);
    m_delete = new QPushButton("&Delete", this);
    m_goTo = new QPushButton("&Go to", this);
    m_close = new QPushButton("Close", this);
    m_goTo->setDefault(true);

    connect(m_names, &QListWidget::currentRowChanged, this, &BookmarkListDlg::selectionChanged);
    connect(m_description, &QPlainTextEdit::textChanged, this, &BookmarkListDlg::descriptionEdited);
    connect(m_save, &QPushButton::clicked, this, &BookmarkListDlg::saveClicked);
    connect(m_delete, &QPushButton::clicked, this, &BookmarkListDlg::deleteClicked);
    connect(m_goTo, &QPushButton::clicked, this, &BookmarkListDlg::goToClicked);
    connect(m_close, &QPushButton::clicked, this, &BookmarkListDlg::reject);

    auto* details = new QFormLayout;
    details->addRow("File:", m_fileName);
    details->addRow("Line:", m_line);
    details->addRow("Description:", m_description);

    auto* buttons = new QVBoxLayout;
    buttons->addWidget(m_save);
    buttons->addWidget(m_delete);
    buttons->addWidget(m_goTo);
    buttons->addStretch();
    buttons->addWidget(m_close);

    auto* layout = new QHBoxLayout(this);
    layout->addWidget(m_names);
    layout->addLayout(details, 1);
    layout->addLayout(buttons);
}

void BookmarkListDlg::showState() {
    m_showing = true;
    if (m_names->count() != static_cast<int>(m_state.items.size())) {
        m_names->clear();
        for (int item : m_state.items)
            m_names->addItem(QString::fromStdString(m_bookmarks.name(item)));
    }
    m_names->setCurrentRow(m_state.selected);
    const QString description = QString::fromStdString(m_state.description);
    if (m_description->toPlainText() != description)
        m_description->setPlainText(description);
    m_fileName->setText(QString::fromStdString(m_state.fileName));
    m_line->setText(QString::fromStdString(m_state.lineText));
    m_save->setEnabled(m_state.saveEnabled);
    m_delete->setEnabled(m_state.deleteEnabled);
    m_goTo->setEnabled(m_state.goToEnabled);
    m_description->setEnabled(m_state.descriptionEnabled);
    m_showing = false;
}

void BookmarkListDlg::selectionChanged(int position) {
    if (m_showing || position == m_state.selected)
        return;
    const AskYesNo ask = [this](const std::string& caption, const std::string& text) {
        return Boxes::instance().askYesNo(this, QString::fromStdString(caption), QString::fromStdString(text),
                                          QMessageBox::Question);
    };
    Logic::changeSelection(m_state, m_bookmarks, position, ask);
    showState();
}

void BookmarkListDlg::descriptionEdited() {
    if (m_showing)
        return;
    Logic::editDescription(m_state, m_description->toPlainText().toStdString());
    m_save->setEnabled(m_state.saveEnabled);
}

void BookmarkListDlg::saveClicked() {
    Logic::save(m_state, m_bookmarks);
    showState();
}

void BookmarkListDlg::deleteClicked() {
    Logic::deleteSelected(m_state, m_bookmarks);
    showState();
}

void BookmarkListDlg::goToClicked() {
    Logic::goTo(m_state);
    accept();
}

} // namespace zdtui

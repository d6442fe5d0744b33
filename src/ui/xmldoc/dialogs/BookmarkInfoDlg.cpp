#include "xmldoc/dialogs/BookmarkInfoDlg.h"

#include "app/Boxes.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QVBoxLayout>

namespace zdtui {

BookmarkInfoDlg::BookmarkInfoDlg(QWidget* parent, const std::string& name, const std::string& description)
    : QDialog(parent) {
    setWindowTitle("Bookmark Informations");
    m_name = new QLineEdit(this);
    m_name->setObjectName("name");
    m_name->setMaxLength(NameLimit);
    m_name->setText(QString::fromStdString(name));
    m_description = new QPlainTextEdit(this);
    m_description->setObjectName("description");
    m_description->setPlainText(QString::fromStdString(description));
    limitDescription();
    connect(m_description, &QPlainTextEdit::textChanged, this, &BookmarkInfoDlg::limitDescription);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &BookmarkInfoDlg::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &BookmarkInfoDlg::reject);

    auto* form = new QFormLayout;
    form->addRow("Name:", m_name);
    form->addRow("Description:", m_description);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

std::string BookmarkInfoDlg::name() const {
    return m_name->text().trimmed().toStdString();
}

std::string BookmarkInfoDlg::description() const {
    return m_description->toPlainText().toStdString();
}

// A plain text edit has no length limit of its own: text beyond the limit, typed or
// pasted, is cut off at once.
void BookmarkInfoDlg::limitDescription() {
    const QString text = m_description->toPlainText();
    if (text.size() <= DescriptionLimit)
        return;
    const QSignalBlocker blocker(m_description);
    m_description->setPlainText(text.left(DescriptionLimit));
    m_description->moveCursor(QTextCursor::End);
}

void BookmarkInfoDlg::accept() {
    m_name->setText(m_name->text().trimmed());
    if (m_name->text().isEmpty()) {
        Boxes::instance().show(this, "E002_001 [Bookmark state.]", "Bookmark should have a name.",
                               QMessageBox::Warning);
        return;
    }
    QDialog::accept();
}

} // namespace zdtui

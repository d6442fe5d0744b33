#include "classic/CSettingsInfo.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace zdtui {

CSettingsInfo::CSettingsInfo(QWidget* parent, const std::vector<std::pair<std::string, std::string>>& fields)
    : QDialog(parent) {
    setWindowTitle(tr("Session Info"));
    auto* form = new QFormLayout;
    for (const auto& [label, value] : fields) {
        // Read-only edits rather than labels: the values can be selected and copied.
        auto* edit = new QLineEdit(QString::fromUtf8(value.c_str()), this);
        edit->setReadOnly(true);
        edit->setCursorPosition(0);
        form->addRow(QString::fromUtf8(label.c_str()), edit);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &CSettingsInfo::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    setMinimumWidth(420);
}

void RunSessionInfo(QWidget* parent, const std::vector<std::pair<std::string, std::string>>& fields) {
    CSettingsInfo dialog(parent, fields);
    dialog.exec();
}

} // namespace zdtui

#include "xpvt/XpvtSessionInfoDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace zdtui {
namespace {

using Description = ZDTAnalyzer::XpvtDoc::Description;
using Field = XpvtSessionInfoDialog::Field;

struct FieldRow {
    const char* heading; // a line of its own above the row, or null
    const char* label;
    const std::string Description::*value;
};

// The project and the vehicle information table each show their short name under a
// heading; the box labelled "LogicalLink:" shows the database access key, as it always has.
const FieldRow Rows[] = {
    {nullptr, "Title:", &Description::Title},
    {nullptr, "Schema:", &Description::Schema},
    {nullptr, "Product version:", &Description::ProductVersion},
    {nullptr, "Date:", &Description::Date},
    {nullptr, "Time:", &Description::Time},
    {nullptr, "Author:", &Description::Author},
    {nullptr, "Comment:", &Description::Comment},
    {"Project:", "Shortname:", &Description::Project},
    {"Vehicle information table:", "Shortname:", &Description::VehicleInformationTable},
    {nullptr, "LogicalLink:", &Description::DatabaseAccessKey},
};
static_assert(std::size(Rows) == static_cast<std::size_t>(Field::Count));

} // namespace

XpvtSessionInfoDialog::XpvtSessionInfoDialog(const Description& description, QWidget* parent) : QDialog(parent) {
    setWindowTitle(QStringLiteral("Session Information"));
    auto* layout = new QVBoxLayout(this);
    QFormLayout* form = nullptr;
    for (std::size_t i = 0; i < std::size(Rows); ++i) {
        const FieldRow& row = Rows[i];
        if (row.heading != nullptr || form == nullptr) {
            if (row.heading != nullptr) {
                m_headings[i] = new QLabel(QString::fromUtf8(row.heading), this);
                layout->addWidget(m_headings[i]);
            }
            form = new QFormLayout;
            layout->addLayout(form);
        }
        auto* box = new QLineEdit(QString::fromStdString(description.*row.value), this);
        box->setReadOnly(true);
        box->setCursorPosition(0);
        box->setMinimumWidth(280);
        m_labels[i] = new QLabel(QString::fromUtf8(row.label), this);
        form->addRow(m_labels[i], box);
        m_boxes[i] = box;
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
}

QString XpvtSessionInfoDialog::fieldText(Field field) const {
    return m_boxes[static_cast<std::size_t>(field)]->text();
}

QString XpvtSessionInfoDialog::fieldLabel(Field field) const {
    return m_labels[static_cast<std::size_t>(field)]->text();
}

QString XpvtSessionInfoDialog::fieldHeading(Field field) const {
    const QLabel* heading = m_headings[static_cast<std::size_t>(field)];
    return heading == nullptr ? QString() : heading->text();
}

} // namespace zdtui

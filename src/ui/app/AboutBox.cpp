#include "app/AboutBox.h"

#include "app/BrandEdition.h"
#include "app/CommandIcons.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace zdtui {
namespace {

QString Text(std::string_view text) {
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

} // namespace

AboutBox::AboutBox(const zdt::EditionInfo& edition, const QString& version, QWidget* parent) : QDialog(parent) {
    setWindowTitle(Text(edition.aboutTitle));

    auto* icon = new QLabel;
    icon->setPixmap(ProgramIcon(edition.aboutIconId).pixmap(64, 64));
    icon->setAlignment(Qt::AlignTop);

    auto* texts = new QVBoxLayout;
    auto addLine = [&](const QString& text, bool bold) {
        auto* label = new QLabel(text);
        if (bold) {
            QFont font = label->font();
            font.setBold(true);
            font.setPointSizeF(font.pointSizeF() * 1.3);
            label->setFont(font);
        }
        texts->addWidget(label);
        m_lines << label;
    };
    addLine(Text(edition.aboutName), true);
    if (edition.partnerAboutBox)
        addLine(Text(edition.aboutExtraLine), false);
    addLine(QStringLiteral("Version %1").arg(version), false);
    texts->addStretch();

    auto* body = new QHBoxLayout;
    body->addWidget(icon);
    body->addSpacing(12);
    body->addLayout(texts, 1);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QStringList AboutBox::lines() const {
    QStringList texts;
    for (const QLabel* label : m_lines)
        texts << label->text();
    return texts;
}

} // namespace zdtui

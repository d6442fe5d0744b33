#include "app/Boxes.h"

#include <QApplication>

namespace zdtui {
namespace {

QString TitleOrApplication(const QString& title) {
    return title.isEmpty() ? QApplication::applicationDisplayName() : title;
}

class RealBoxes final : public Boxes {
public:
    void show(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        QMessageBox box(icon, TitleOrApplication(title), text, QMessageBox::Ok, parent);
        box.exec();
    }
    bool askYesNo(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) override {
        QMessageBox box(icon, TitleOrApplication(title), text, QMessageBox::Yes | QMessageBox::No, parent);
        return box.exec() == QMessageBox::Yes;
    }
};

RealBoxes g_realBoxes;
Boxes* g_boxes = nullptr;

} // namespace

Boxes& Boxes::instance() {
    return g_boxes != nullptr ? *g_boxes : g_realBoxes;
}

void Boxes::install(Boxes* boxes) {
    g_boxes = boxes;
}

QMessageBox::Icon ToQtIcon(zdt::MessageIcon icon) {
    switch (icon) {
    case zdt::MessageIcon::Error:
        return QMessageBox::Critical;
    case zdt::MessageIcon::Warning:
        return QMessageBox::Warning;
    case zdt::MessageIcon::Information:
        return QMessageBox::Information;
    case zdt::MessageIcon::Question:
        return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

void BoxMessageSink::showMessage(const zdt::UserMessage& message) {
    Boxes::instance().show(m_parent, QString::fromStdString(message.title), QString::fromUtf8(message.text.c_str()),
                           ToQtIcon(message.icon));
}

bool BoxMessageSink::askYesNo(const zdt::UserMessage& question) {
    return Boxes::instance().askYesNo(m_parent, QString::fromStdString(question.title),
                                      QString::fromUtf8(question.text.c_str()), ToQtIcon(question.icon));
}

} // namespace zdtui

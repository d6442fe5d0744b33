#pragma once

#include "common/UserMessage.h"

#include <QMessageBox>
#include <QString>

class QWidget;

namespace zdtui {

// Every message box of the application passes here, so that tests can see and answer
// them instead of a person. An empty title stands for the application's title.
class Boxes {
public:
    virtual ~Boxes() = default;
    virtual void show(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) = 0;
    // A Yes/No question; true means Yes.
    virtual bool askYesNo(QWidget* parent, const QString& title, const QString& text, QMessageBox::Icon icon) = 0;

    // The boxes in use: real message boxes unless a test installed others.
    static Boxes& instance();
    // Installs `boxes` (not owned; null restores the real ones).
    static void install(Boxes* boxes);
};

QMessageBox::Icon ToQtIcon(zdt::MessageIcon icon);

// Core operations report through this: their boxes become Boxes on `parent`.
class BoxMessageSink final : public zdt::MessageSink {
public:
    explicit BoxMessageSink(QWidget* parent) : m_parent(parent) {}
    void showMessage(const zdt::UserMessage& message) override;
    bool askYesNo(const zdt::UserMessage& question) override;

private:
    QWidget* m_parent;
};

} // namespace zdtui

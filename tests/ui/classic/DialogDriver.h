#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QTimer>
#include <QWidget>

#include <functional>

// Modal dialogs block in exec(); these helpers act on them from the event loop.
namespace dialog_driver {

// Calls `act` with the modal dialog of type T as soon as it is the active modal
// widget. Gives up after a few seconds, so that a dialog that never comes fails the
// test instead of hanging it.
template <class T> void WhenModal(std::function<void(T*)> act) {
    auto* timer = new QTimer;
    const QDeadlineTimer deadline(5000);
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, act, deadline] {
        T* dialog = qobject_cast<T*>(QApplication::activeModalWidget());
        if (dialog == nullptr && !deadline.hasExpired())
            return;
        timer->stop();
        timer->deleteLater();
        if (dialog != nullptr)
            act(dialog);
    });
    timer->start();
}

// The child button or other widget of `parent` with exactly this text.
template <class W = QAbstractButton> W* ChildWithText(const QWidget* parent, const QString& text) {
    for (W* child : parent->findChildren<W*>()) {
        if (child->text() == text)
            return child;
    }
    return nullptr;
}

} // namespace dialog_driver

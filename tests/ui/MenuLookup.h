#pragma once

#include <QAction>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QString>

// The item of a main window's menu by popup title and item text, or null. An item whose
// text names its keys after a tab is found by the text before it as well.
inline QAction* MenuItem(QMainWindow& window, const QString& popup, const QString& text) {
    for (QAction* popupAction : window.menuBar()->actions()) {
        if (popupAction->text() != popup || popupAction->menu() == nullptr)
            continue;
        for (QAction* action : popupAction->menu()->actions()) {
            if (action->text() == text || action->text().section(QLatin1Char('\t'), 0, 0) == text)
                return action;
        }
    }
    return nullptr;
}

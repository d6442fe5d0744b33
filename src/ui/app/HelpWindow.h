#pragma once

#include <QTextBrowser>

namespace zdtui {

// The window in which the bundled help page is read.
class HelpWindow final : public QTextBrowser {
    Q_OBJECT
public:
    explicit HelpWindow(QWidget* parent = nullptr);

    // Loads the page at `path` and takes its title as the window's caption.
    void showPage(const QString& path);
};

} // namespace zdtui

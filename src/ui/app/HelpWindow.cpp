#include "app/HelpWindow.h"

#include <QUrl>

namespace zdtui {

HelpWindow::HelpWindow(QWidget* parent) : QTextBrowser(parent) {
    // A window of its own, yet closed with the main frame rather than keeping the program alive.
    setWindowFlag(Qt::Window);
    setOpenExternalLinks(true);
    resize(640, 560);
}

void HelpWindow::showPage(const QString& path) {
    setSource(QUrl::fromLocalFile(path));
    setWindowTitle(documentTitle());
}

} // namespace zdtui

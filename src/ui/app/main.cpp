// zdt-analyzer: the desktop application.
#include "app/CAnalyzerApp.h"

#include <QApplication>

#include <cstdio>

namespace {

// Without a display Qt would abort with a message about platform plugins that tells a
// user nothing about what to do.
bool HasDisplay() {
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

} // namespace

int main(int argc, char* argv[]) {
    if (!HasDisplay()) {
        std::fputs("zdt-analyzer needs a graphical display. Set DISPLAY, or run it under xvfb-run (for example: "
                   "xvfb-run -a build/zdt-analyzer samples/can_bus_601.trc).\n",
                   stderr);
        return 1;
    }
    QApplication application(argc, argv);
    zdtui::CAnalyzerApp analyzer;
    if (!analyzer.InitInstance(QApplication::arguments().mid(1)))
        return 1;
    return application.exec();
}

#include "app/framora_App.h"
#include "platform/desktop/SingleInstance.h"

#include <QApplication>
#include <QStandardPaths>
#include <cstdio>

namespace {

/// The program speaks X11: in a session of the other kind it does so through that session's X server.
bool chooseDisplay() {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            return false;
        qputenv("QT_QPA_PLATFORM", "xcb");
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (!chooseDisplay()) {
        std::fputs("framora: there is no X display to work on (DISPLAY is not set)\n", stderr);
        return 1;
    }
    QCoreApplication::setApplicationName(QStringLiteral("framora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.framora.Framora"));
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);

    framora::SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
                                     qEnvironmentVariable("DISPLAY"));
    if (!instance.acquire())
        return 0;

    framora::framora_App app;
    instance.onSecondStart([&app] { app.raiseWindows(); });
    app.launch();
    return QApplication::exec();
}

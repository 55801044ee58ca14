#include "app/WindowSession.h"
#include "app/framora_App.h"
#include "platform/desktop/SingleInstance.h"

#include <QApplication>
#include <QStandardPaths>
#include <cstdio>

int main(int argc, char** argv) {
    framora::WindowSession session;
    if (!session.exists()) {
        std::fputs("framora: there is no display to work on (no compositor answers at WAYLAND_DISPLAY, and "
                   "DISPLAY is not set)\n",
                   stderr);
        return 1;
    }
    session.choosePlatform();
    QCoreApplication::setApplicationName(QStringLiteral("framora"));
    QGuiApplication::setDesktopFileName(QStringLiteral("framora"));
    QApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);

    framora::SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
                                     session.name());
    if (!instance.acquire())
        return 0;

    framora::framora_App app([&session](const framora::WindowSystem::Services& services) {
        return session.makeWindowSystem(services);
    });
    instance.onSecondStart([&app] { app.raiseWindows(); });
    app.launch();
    return QApplication::exec();
}

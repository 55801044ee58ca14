#include "app/CommandLine.h"
#include "app/WindowSession.h"
#include "app/framora_App.h"
#include "platform/ApplicationId.h"
#include "platform/ProgramVersion.h"
#include "platform/PromptFrames.h"
#include "platform/desktop/BusApplication.h"
#include "platform/desktop/SingleInstance.h"
#include "platform/desktop/ThreadBackgroundQueue.h"

#include <QApplication>
#include <QStandardPaths>
#include <cstdio>
#include <cstdlib>

namespace {

using framora::CommandLine;
using framora::CommandMessage;

constexpr int wrongUsage = 2;

/// The exit status of a start that only has something to say; negative when the program is to run.
int answer(const CommandLine& line) {
    switch (line.kind) {
    case CommandLine::Kind::run:
        return -1;
    case CommandLine::Kind::help:
        std::fputs(CommandLine::helpText().constData(), stdout);
        return 0;
    case CommandLine::Kind::version:
        std::printf("framora %s\n", qPrintable(framora::programVersion()));
        return 0;
    case CommandLine::Kind::wrong:
        break;
    }
    std::fprintf(stderr, "framora: %s (see framora --help)\n", qPrintable(line.complaint));
    return wrongUsage;
}

int run(int argc, char** argv) {
    const CommandLine line = CommandLine::of(argc, argv);
    if (const int status = answer(line); status >= 0)
        return status;
    framora::WindowSession session;
    if (!session.exists()) {
        std::fputs("framora: there is no display to work on (no compositor answers at WAYLAND_DISPLAY, and "
                   "DISPLAY is not set)\n",
                   stderr);
        return 1;
    }
    // Before anything that takes time: whoever presses a key waits for it.
    const CommandMessage message{line.command, CommandMessage::tokenOfEnvironment()};
    framora::SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation),
                                     session.name());
    if (instance.tellRunning(message.encoded()) || line.command == framora::ProgramCommand::quit)
        return 0;

    // It is for this start alone, and nothing that is started from here later.
    qunsetenv("XDG_ACTIVATION_TOKEN");
    session.choosePlatform();
    QCoreApplication::setApplicationName(QStringLiteral("framora"));
    QGuiApplication::setDesktopFileName(QString::fromLatin1(framora::applicationId));
    QApplication application(argc, argv);
    // On X11 Qt has told the desktop of it by now.
    qunsetenv("DESKTOP_STARTUP_ID");
    session.platformIsChosen();
    framora::drawFramesPromptly();
    QGuiApplication::setQuitOnLastWindowClosed(false);
    if (!instance.acquire(message.encoded()))
        return 0;

    framora::framora_App app([&session](const framora::WindowSystem::Services& services) {
        return session.makeWindowSystem(services);
    });
    const auto perform = [&app](framora::ProgramCommand command, const QString& activationToken) {
        app.perform(command, activationToken);
    };
    instance.onSecondStart([&perform](const QByteArray& bytes) {
        const CommandMessage heard = CommandMessage::decoded(bytes);
        perform(heard.command, heard.activationToken);
    });
    const framora::BusApplication onBus(QDBusConnection::sessionBus(), line.startedByBus, perform);
    app.launch();
    if (line.command != framora::ProgramCommand::activate)
        perform(line.command, message.activationToken);
    const int status = QApplication::exec();
    if (app.isToStartAgain())
        framora::framora_App::startAgain();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    const int status = run(argc, argv);
    if (framora::ThreadBackgroundQueue::hasLeftWork()) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
    return status;
}

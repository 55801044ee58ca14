#include "render-cli/RenderCommand.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace {

volatile std::sig_atomic_t interrupted = 0;

void interrupt(int) {
    interrupted = 1;
}

/// The first signal lets what is being written end; a second one kills.
void catchOnce(int signal) {
    struct sigaction action {};
    action.sa_handler = interrupt;
    action.sa_flags = SA_RESETHAND;
    sigaction(signal, &action, nullptr);
}

/// The error stream for the command alone: some decoders write to it by themselves what the command says in
/// one line. A sanitizer's report still needs it.
std::FILE* takeErrorStream() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return stderr;
#else
    const int own = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    std::FILE* const stream = own < 0 ? nullptr : fdopen(own, "w");
    if (!stream || nowhere < 0)
        return stderr;
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
    return stream;
#endif
}

/// Fonts come with a graphical application, which costs start-up time: only where there may be a text to
/// draw, by --text or as a field. It needs no display.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    const bool drawsText = std::any_of(argv, argv + argc, [](const char* argument) {
        const std::string_view word(argument);
        return word.starts_with("--text") || word.find("textOverlays") != word.npos;
    });
    if (!drawsText)
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    catchOnce(SIGINT);
    catchOnce(SIGTERM);
    std::signal(SIGPIPE, SIG_IGN); // a closed output is an error like others
    std::FILE* const messages = takeErrorStream();
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});

    const auto application = makeApplication(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(FRAMORA_VERSION));
    framora::RenderCommand command(QCoreApplication::applicationDirPath(), messages,
                                   [] { return interrupted != 0; });
    return command.run(QCoreApplication::arguments().mid(1));
}

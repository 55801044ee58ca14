#include "app/CommandLine.h"

#include <QList>

namespace framora {

CommandLine CommandLine::of(int argc, const char* const* argv) {
    CommandLine line;
    bool hasCommand = false;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        if (argument == u"--help" || argument == u"-h") {
            line.kind = Kind::help;
            return line;
        }
        if (argument == u"--version") {
            line.kind = Kind::version;
            return line;
        }
        if (argument == u"--started-by-bus") {
            line.startedByBus = true;
            continue;
        }
        const auto command =
            argument.startsWith(QLatin1String("--")) ? commandOfName(argument.mid(2)) : std::nullopt;
        if (!command || command == ProgramCommand::activate) {
            line.kind = Kind::wrong;
            line.complaint = QStringLiteral("unknown option '%1'").arg(argument);
            return line;
        }
        if (hasCommand && *command != line.command) {
            line.kind = Kind::wrong;
            line.complaint = QStringLiteral("one thing at a time");
            return line;
        }
        hasCommand = true;
        line.command = *command;
    }
    return line;
}

QByteArray CommandLine::helpText() {
    return R"(Usage: framora [OPTION]

Takes pictures of the screen and dresses them. Without an option it starts and
waits in the tray; when it runs already, its settings are opened.

  --capture-area     select a part of the screen and take its picture
  --capture-window   choose a window and take its picture
  --settings         open the settings
  --quit             end the program that runs
  --help             show this text
  --version          show the version

Each of them is done by the program that runs, or starts it first. They are what
to put on a key in the keyboard settings of a desktop that keeps keys to itself.
)";
}

QByteArray CommandMessage::encoded() const {
    return QByteArray(commandName(command)) + '\n' + activationToken.toUtf8();
}

CommandMessage CommandMessage::decoded(const QByteArray& bytes) {
    const auto end = bytes.indexOf('\n');
    const auto command = commandOfName(QString::fromUtf8(end < 0 ? bytes : bytes.left(end)));
    return {command.value_or(ProgramCommand::activate),
            end < 0 ? QString() : QString::fromUtf8(bytes.mid(end + 1))};
}

QString CommandMessage::tokenOfEnvironment() {
    return qEnvironmentVariable("XDG_ACTIVATION_TOKEN", qEnvironmentVariable("DESKTOP_STARTUP_ID"));
}

} // namespace framora

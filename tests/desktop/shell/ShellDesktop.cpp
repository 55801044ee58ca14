#include "desktop/shell/ShellDesktop.h"

#include <stdexcept>
#include <sys/stat.h>

namespace framora {

ShellDesktop::ShellDesktop(const DesktopOptions& options) : m_desktop(options) {
    m_desktop.setEnvironmentVariable(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    const QString pipe = m_desktop.scratchPath() + QStringLiteral("/commands");
    if (mkfifo(QFile::encodeName(pipe).constData(), 0600) != 0)
        throw std::runtime_error("no pipe to the shell host");
    m_host = &m_desktop.start(QStringLiteral(FRAMORA_SHELL_HOST), {pipe});
    m_commands.setFileName(pipe);
    if (next(QStringLiteral("ready")).isEmpty())
        throw std::runtime_error("the shell host does not start: " + m_host->output().toStdString());
    if (!m_commands.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw std::runtime_error("the shell host does not listen");
}

void ShellDesktop::tell(const QString& command) {
    m_commands.write(command.toUtf8() + '\n');
}

void ShellDesktop::collect() {
    const QByteArray output = m_host->output();
    for (qsizetype end; (end = output.indexOf('\n', m_taken)) >= 0; m_taken = end + 1)
        m_lines << QString::fromUtf8(output.mid(m_taken, end - m_taken));
}

QString ShellDesktop::next(const QString& prefix, int timeoutMs) {
    QString found;
    VirtualDesktop::waitFor(
        [&] {
            collect();
            while (!m_lines.isEmpty() && found.isEmpty()) {
                const QString line = m_lines.takeFirst();
                if (line.startsWith(prefix))
                    found = line;
            }
            return !found.isEmpty();
        },
        timeoutMs);
    return found;
}

QString ShellDesktop::ask(const QString& command, const QString& prefix, int timeoutMs) {
    tell(command);
    return next(prefix, timeoutMs);
}

QStringList ShellDesktop::unread() {
    QStringList lines;
    tell(QStringLiteral("count"));
    VirtualDesktop::waitFor([&] {
        collect();
        while (!m_lines.isEmpty()) {
            lines << m_lines.takeFirst();
            if (lines.last().startsWith(QStringLiteral("count")))
                return true;
        }
        return false;
    });
    if (!lines.isEmpty())
        lines.removeLast();
    return lines;
}

DesktopWindow ShellDesktop::openTerminal() {
    const QString typed = m_desktop.scratchPath() + QStringLiteral("/typed");
    m_desktop.start(QStringLiteral("xterm"),
                    {QStringLiteral("-xrm"), QStringLiteral("*wmTimeout: 100"), QStringLiteral("-title"),
                     QStringLiteral("Other"), QStringLiteral("-e"), QStringLiteral("sh"),
                     QStringLiteral("-c"),
                     QStringLiteral("stty raw -echo; : > '%1'; exec cat >> '%1'").arg(typed)});
    if (!VirtualDesktop::waitFor([&] {
            const auto window = display().windowTitled(QStringLiteral("Other"));
            return window && QFile::exists(typed) && display().activeWindow() == window->id;
        }))
        throw std::runtime_error("the terminal does not come up");
    return *display().windowTitled(QStringLiteral("Other"));
}

QString ShellDesktop::typedIntoTerminal() {
    QFile file(m_desktop.scratchPath() + QStringLiteral("/typed"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace framora

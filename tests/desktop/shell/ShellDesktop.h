#pragma once

#include "desktop/support/VirtualDesktop.h"

#include <QFile>
#include <QStringList>

namespace framora {

/// A virtual desktop with the program's X11 side on it, which is told what to do line by line.
class ShellDesktop {
public:
    explicit ShellDesktop(const DesktopOptions& options = {});

    VirtualDesktop& desktop() { return m_desktop; }
    DesktopDisplay& display() { return m_desktop.display(); }
    ChildProcess& host() { return *m_host; }

    /// Sends a command and returns the next line that starts with `prefix`; empty when none comes in time.
    QString ask(const QString& command, const QString& prefix, int timeoutMs = 10000);
    void tell(const QString& command);
    /// The next unread line that starts with `prefix`; lines before it are passed over.
    QString next(const QString& prefix, int timeoutMs = 10000);
    /// All lines that came and were not read, after a question that makes sure nothing is under way.
    QStringList unread();

    /// A terminal that has the focus, and what is typed into it.
    DesktopWindow openTerminal();
    QString typedIntoTerminal();

private:
    void collect();

    VirtualDesktop m_desktop;
    ChildProcess* m_host = nullptr;
    QFile m_commands;
    qsizetype m_taken = 0; ///< Bytes of the host's output that are in m_lines.
    QStringList m_lines;
};

} // namespace framora

#include "platform/desktop/ProcessCaptureTool.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>

namespace framora {

namespace {
const QString toolName = QStringLiteral("framora-screencapture");
}

ProcessCaptureTool::ProcessCaptureTool(CommandGate& gate, QString executable)
    : m_gate(gate), m_executable(std::move(executable)) {
    // No pipes: the tool leaves a process behind that serves the clipboard, and would keep them open.
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
}

QString ProcessCaptureTool::defaultExecutable() {
    const QDir own(QCoreApplication::applicationDirPath());
    const QString beside = own.filePath(toolName);
    return QFileInfo::exists(beside)
               ? beside
               : QDir::cleanPath(own.filePath(QStringLiteral("../libexec/framora/") + toolName));
}

bool ProcessCaptureTool::launch(const QStringList& arguments) {
    if (m_process.state() != QProcess::NotRunning)
        return false;
    m_process.start(m_executable, arguments);
    return m_process.waitForStarted();
}

void ProcessCaptureTool::waitUntilExit() {
    const CommandGate::Closing closing(m_gate);
    QEventLoop loop;
    QObject::connect(&m_process, &QProcess::finished, &loop, &QEventLoop::quit);
    // Clipboard requests and the window manager's pings are served here; input waits.
    while (m_process.state() != QProcess::NotRunning)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
}

} // namespace framora

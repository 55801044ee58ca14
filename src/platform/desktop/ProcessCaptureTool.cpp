#include "platform/desktop/ProcessCaptureTool.h"

#include "platform/desktop/Installation.h"

#include <QEventLoop>

namespace framora {

namespace {
const QString toolName = QStringLiteral("framora-screencapture");
constexpr int endingMilliseconds = 1000;
} // namespace

ProcessCaptureTool::ProcessCaptureTool(CommandGate& gate, QString executable,
                                       std::function<void(bool)> onScreenTaken)
    : m_gate(gate), m_executable(std::move(executable)), m_onScreenTaken(std::move(onScreenTaken)) {
    // No pipes: the tool leaves a process behind that serves the clipboard, and would keep them open.
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
}

QString ProcessCaptureTool::defaultExecutable() {
    return privateExecutable(toolName);
}

bool ProcessCaptureTool::launch(const QStringList& arguments) {
    if (m_process.state() != QProcess::NotRunning)
        return false;
    if (m_onScreenTaken)
        m_onScreenTaken(true);
    m_process.start(m_executable, arguments);
    const bool started = m_process.waitForStarted();
    if (!started && m_onScreenTaken)
        m_onScreenTaken(false);
    return started;
}

void ProcessCaptureTool::waitUntilExit() {
    runUntilExit();
    if (m_onScreenTaken)
        m_onScreenTaken(false);
}

void ProcessCaptureTool::runUntilExit() {
    const CommandGate::Closing closing(m_gate);
    QEventLoop loop;
    QObject::connect(&m_process, &QProcess::finished, &loop, &QEventLoop::quit);
    // Clipboard requests and the window manager's pings are served here; input waits.
    if (m_process.state() != QProcess::NotRunning)
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (m_process.state() == QProcess::NotRunning)
        return;
    // The program is told to end: what the tool has on screen goes with it.
    m_process.terminate();
    if (m_process.waitForFinished(endingMilliseconds))
        return;
    m_process.kill();
    m_process.waitForFinished(endingMilliseconds);
}

} // namespace framora

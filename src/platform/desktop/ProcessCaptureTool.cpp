#include "platform/desktop/ProcessCaptureTool.h"

#include "platform/desktop/Installation.h"
#include "platform/desktop/MemoryFile.h"

#include <QEventLoop>
#include <QProcessEnvironment>
#include <QSocketNotifier>
#include <QTimer>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace framora {

namespace {

const QString toolName = QStringLiteral("framora-screencapture");
const QString readyVariable = QStringLiteral("FRAMORA_READY_FD");
const QString tokenVariable = QStringLiteral("XDG_ACTIVATION_TOKEN");
const QString pictureVariable = QStringLiteral("FRAMORA_PICTURE_FD");
constexpr int endingMilliseconds = 1000;
/// The tool's way to say that this desktop offers it none.
constexpr int noRouteExitCode = 3;
/// Larger than any desktop's picture.
constexpr qint64 largestPicture = qint64(512) << 20;

} // namespace

/// What one run of the tool inherits. The gate is closed for as long.
struct ProcessCaptureTool::Run {
    explicit Run(CommandGate& gate) : closing(gate) {
        if (pipe2(ready, O_CLOEXEC | O_NONBLOCK) != 0)
            ready[0] = ready[1] = -1;
    }
    ~Run() {
        for (const int end : ready) {
            if (end >= 0)
                close(end);
        }
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    void closeWritingEnd() {
        if (const int end = std::exchange(ready[1], -1); end >= 0)
            close(end);
    }

    CommandGate::Closing closing;
    int ready[2];
    bool isReady = false;
    bool hasTimedOut = false;
    MemoryFile picture{"framora-capture"};
};

ProcessCaptureTool::ProcessCaptureTool(CommandGate& gate, QString executable, Events events)
    : m_gate(gate), m_executable(std::move(executable)), m_events(std::move(events)) {
    // No pipes: the tool leaves a process behind that serves the clipboard, and would keep them open.
    m_process.setProcessChannelMode(QProcess::ForwardedChannels);
    m_process.setInputChannelMode(QProcess::ForwardedInputChannel);
    // In the child alone, so that nothing else that is started meanwhile inherits them.
    m_process.setChildProcessModifier([this] {
        for (const int descriptor : {m_run->ready[1], m_run->picture.descriptor()})
            fcntl(descriptor, F_SETFD, 0);
    });
}

ProcessCaptureTool::~ProcessCaptureTool() = default;

QString ProcessCaptureTool::defaultExecutable() {
    return privateExecutable(toolName);
}

bool ProcessCaptureTool::launch(const QStringList& arguments) {
    if (m_process.state() != QProcess::NotRunning)
        return false;
    if (m_events.screenTaken)
        m_events.screenTaken(true);
    m_run = std::make_unique<Run>(m_gate);
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert(readyVariable, QString::number(m_run->ready[1]));
    environment.insert(pictureVariable, QString::number(m_run->picture.descriptor()));
    const QString token = m_events.takeActivationToken ? m_events.takeActivationToken() : QString();
    if (token.isEmpty())
        environment.remove(tokenVariable);
    else
        environment.insert(tokenVariable, token);
    m_process.setProcessEnvironment(environment);
    m_process.start(m_executable, arguments);
    const bool started = m_process.waitForStarted();
    m_run->closeWritingEnd();
    if (started)
        serve(true);
    const bool isStuck = m_process.state() != QProcess::NotRunning && !m_run->isReady;
    if (isStuck)
        end();
    const bool hasRoute = m_process.state() != QProcess::NotRunning || m_run->isReady ||
                          m_process.exitStatus() != QProcess::NormalExit ||
                          m_process.exitCode() != noRouteExitCode;
    if (started && hasRoute && !(isStuck && m_run->hasTimedOut))
        return true;
    m_run.reset();
    tellThatScreenIsFree();
    return false;
}

void ProcessCaptureTool::waitUntilExit() {
    serve(false);
    end();
    if (const auto run = std::exchange(m_run, nullptr)) {
        const QByteArray png = run->picture.contents(largestPicture);
        if (!png.isEmpty() && m_events.pictureLeft)
            m_events.pictureLeft(png);
    }
    tellThatScreenIsFree();
}

void ProcessCaptureTool::tellThatScreenIsFree() {
    if (m_events.screenTaken)
        m_events.screenTaken(false);
}

void ProcessCaptureTool::serve(bool untilReady) {
    if (m_process.state() == QProcess::NotRunning)
        return;
    QEventLoop loop;
    QObject::connect(&m_process, &QProcess::finished, &loop, &QEventLoop::quit);
    QSocketNotifier notifier(QSocketNotifier::Read);
    if (untilReady && m_run->ready[0] >= 0) {
        notifier.setSocket(m_run->ready[0]);
        notifier.setEnabled(true);
        QObject::connect(&notifier, &QSocketNotifier::activated, &loop, [&] {
            // Without a byte the pipe was only closed, and the tool's end follows or has come.
            char byte = 0;
            m_run->isReady = ::read(m_run->ready[0], &byte, 1) == 1;
            notifier.setEnabled(false);
            if (m_run->isReady)
                loop.quit();
        });
        QTimer::singleShot(m_events.readyMilliseconds, &loop, [&] {
            m_run->hasTimedOut = true;
            loop.quit();
        });
    }
    // Clipboard requests and the window manager's pings are served here; input waits.
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void ProcessCaptureTool::end() {
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

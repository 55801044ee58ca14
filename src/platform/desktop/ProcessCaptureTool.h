#pragma once

#include "platform/CaptureTool.h"
#include "platform/CommandGate.h"

#include <QProcess>
#include <QString>
#include <functional>
#include <memory>

namespace framora {

/// The capture tool as a process of its own.
///
/// The tool inherits two files, named by their numbers in its environment. Into FRAMORA_READY_FD, a pipe, it
/// writes a byte as soon as it is about to show or ask something. Into FRAMORA_PICTURE_FD, a file in memory,
/// it puts the PNG where this desktop lets it own no clipboard.
class ProcessCaptureTool final : public CaptureTool {
public:
    struct Events {
        std::function<void(bool)> screenTaken; ///< True before the tool is launched, false when it has gone.
        std::function<void(const QByteArray& png)> pictureLeft; ///< By a tool that owns no clipboard.
        /// What lets the tool's dialogs come to the front; empty for nothing.
        std::function<QString()> takeActivationToken = {};
        /// How long the tool may take until it is ready: far more than any honest way there.
        int readyMilliseconds = 15000;
    };
    ProcessCaptureTool(CommandGate& gate, QString executable, Events events);
    ~ProcessCaptureTool() override;

    /// Where the tool stands.
    static QString defaultExecutable();

    /// Returns when the tool says that it is ready, or has ended. The window system is served meanwhile, as
    /// in waitUntilExit(). False also when it ends because it finds no way to take pictures here, and when
    /// it is neither ready nor gone in time; it is ended then.
    bool launch(const QStringList& arguments) override;
    void waitUntilExit() override;

private:
    struct Run;
    /// Serves the window system until the tool is ready, or until it has ended.
    void serve(bool untilReady);
    void end();
    void tellThatScreenIsFree();

    CommandGate& m_gate;
    QString m_executable;
    Events m_events;
    QProcess m_process;
    std::unique_ptr<Run> m_run; ///< While the tool runs.
};

} // namespace framora

#pragma once

#include "platform/CaptureTool.h"
#include "platform/CommandGate.h"

#include <QProcess>
#include <QString>
#include <functional>

namespace framora {

/// The capture tool as a process of its own.
class ProcessCaptureTool final : public CaptureTool {
public:
    /// `onScreenTaken` is told true before the tool is launched and false when it has gone.
    ProcessCaptureTool(CommandGate& gate, QString executable, std::function<void(bool)> onScreenTaken = {});

    /// Where the tool stands.
    static QString defaultExecutable();

    bool launch(const QStringList& arguments) override;
    void waitUntilExit() override;

private:
    void runUntilExit();

    CommandGate& m_gate;
    QString m_executable;
    std::function<void(bool)> m_onScreenTaken;
    QProcess m_process;
};

} // namespace framora

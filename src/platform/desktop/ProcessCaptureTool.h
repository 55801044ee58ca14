#pragma once

#include "platform/CaptureTool.h"
#include "platform/CommandGate.h"

#include <QProcess>
#include <QString>

namespace framora {

/// The capture tool as a process of its own.
class ProcessCaptureTool final : public CaptureTool {
public:
    ProcessCaptureTool(CommandGate& gate, QString executable);

    /// Where the tool stands.
    static QString defaultExecutable();

    bool launch(const QStringList& arguments) override;
    void waitUntilExit() override;

private:
    CommandGate& m_gate;
    QString m_executable;
    QProcess m_process;
};

} // namespace framora

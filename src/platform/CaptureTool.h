#pragma once

#include <QStringList>

namespace framora {

/// Runs the capture tool, one run at a time.
class CaptureTool {
public:
    virtual ~CaptureTool() = default;
    /// Starts the tool. False when it cannot be launched.
    virtual bool launch(const QStringList& arguments) = 0;
    /// Blocks the caller until the tool has exited. The window system is served meanwhile (a paste of what
    /// this program copied works, its windows answer the window manager), but no input event, menu command,
    /// shortcut or main-queue work runs.
    virtual void waitUntilExit() = 0;
};

} // namespace framora

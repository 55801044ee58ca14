#pragma once

#include "desktop/support/ScriptedClipboard.h"
#include "desktop/support/ScriptedCompositor.h"
#include "desktop/support/ScriptedSeat.h"
#include "platform/wayland/WaylandPasteboard.h"
#include "platform/wayland/WaylandScreens.h"

#include <gtest/gtest.h>
#include <optional>

namespace framora {

/// The program's own side of a compositor that answers as a test tells it, in the test's process.
class OddProgram {
public:
    explicit OddProgram(CompositorScript script = {});
    /// Whatever happened, no descriptor may be left open, and no process.
    ~OddProgram();
    OddProgram(const OddProgram&) = delete;
    OddProgram& operator=(const OddProgram&) = delete;

    /// The connection and what hangs on it, as at the program's start.
    void connect();
    void disconnect();

    void copy(std::vector<QByteArray> types, const QByteArray& bytes);
    void copy(std::vector<QByteArray> types, std::function<void(const QByteArray&, int)> send);
    int devices();
    int offers();

private:
    QProcessEnvironment m_before;
    std::string m_descriptors;

public:
    std::optional<ScriptedCompositor> compositor;
    std::optional<WaylandConnection> connection;
    std::optional<WaylandOutputs> outputs;
    std::optional<WaylandScreens> screens;
    std::optional<WaylandPasteboard> pasteboard; ///< Nothing without a data-control protocol.
    QByteArray read;                             ///< The file that was decoded last.
};

} // namespace framora

#pragma once

#include "desktop/feedback/TimerQueue.h"
#include "desktop/support/PaintedSurface.h"
#include "desktop/support/SwayDesktop.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/WaylandScreens.h"

#include <memory>

namespace framora {

/// The program's own side of a sway desktop, in the test's process: this process is on that desktop until it
/// ends, whatever shows its windows.
class OnSway {
public:
    explicit OnSway(const SwayOptions& options = {});
    ~OnSway();
    OnSway(const OnSway&) = delete;
    OnSway& operator=(const OnSway&) = delete;

    /// One output of that scale.
    static SwayOptions ofScale(double scale, QSize mode = {1280, 800});
    /// Fills an output with one colour, behind everything.
    void paintGround(int output, const QColor& color);

    void endCompositor();
    /// Whether the connection hears nothing for that long.
    bool isQuietFor(int milliseconds);

private:
    /// The desktop's environment, taken over and given back.
    struct Environment {
        explicit Environment(const QProcessEnvironment& desktop);
        ~Environment();
        QProcessEnvironment before;
        QStringList names;
    };

public:
    SwayDesktop desktop;

private:
    Environment m_environment;
    std::vector<std::unique_ptr<PaintedSurface>> m_grounds;

public:
    WaylandConnection connection;
    WaylandOutputs outputs{connection};
    WaylandScreens screens{connection, outputs};
    TimerQueue queue;
};

} // namespace framora

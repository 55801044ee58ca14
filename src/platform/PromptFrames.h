#pragma once

#include <QGuiApplication>
#include <QWindow>

namespace framora {

/// Has windows draw one millisecond after something of them changed. Else Qt waits five for more to change,
/// which is longer than a frame of the editor takes. For the program's start, when the application is there:
/// Qt looks once, as the first window asks for a frame. What the environment says already holds.
inline void drawFramesPromptly() {
    constexpr const char* delay = "QT_QPA_UPDATE_IDLE_TIME";
    // On Wayland it is the compositor that says when to draw.
    if (qEnvironmentVariableIsSet(delay) ||
        QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return;
    // It is for this program alone: a window that nobody sees asks at once, and what is started later
    // inherits nothing.
    qputenv(delay, "1");
    QWindow window;
    window.create();
    window.requestUpdate();
    qunsetenv(delay);
}

} // namespace framora

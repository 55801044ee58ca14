#pragma once

#include <QtGlobal>

namespace framora {

/// Has windows draw one millisecond after something of them changed. Else Qt waits five for more to change,
/// which is longer than a frame of the editor takes. For the program's start: Qt looks when the first window
/// asks for a frame. What the environment says already holds.
inline void drawFramesPromptly() {
    constexpr const char* delay = "QT_QPA_UPDATE_IDLE_TIME";
    if (!qEnvironmentVariableIsSet(delay))
        qputenv(delay, "1");
}

} // namespace framora

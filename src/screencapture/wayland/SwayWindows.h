#pragma once

#include "screencapture/wayland/SwaySocket.h"
#include "screencapture/wayland/WindowSource.h"

namespace framora {

/// Windows by sway's own account, asked for at once and read at the first call.
class SwayWindows : public WindowSource {
public:
    /// Whether there is a sway to ask.
    bool available() const { return m_read || m_socket.asked(); }

    std::optional<WindowStack> windows() override;

private:
    SwaySocket m_socket{SwaySocket::Question::Tree};
    bool m_read = false;
    std::optional<WindowStack> m_windows;
};

} // namespace framora

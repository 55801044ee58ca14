#include "screencapture/wayland/SwayWindows.h"

#include "screencapture/wayland/SwayTree.h"

namespace framora {

std::optional<WindowStack> SwayWindows::windows() {
    if (!m_read) {
        m_read = true;
        m_windows = windowsOfSwayTree(m_socket.answer(std::chrono::seconds(1)));
    }
    return m_windows;
}

} // namespace framora

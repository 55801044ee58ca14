#include "screencapture/wayland/WindowStack.h"

namespace framora {

void WindowStack::add(const Rect& window) {
    if (!window.empty())
        m_windows.push_back(window);
}

int WindowStack::at(Point p) const {
    for (int i = static_cast<int>(m_windows.size()) - 1; i >= 0; --i)
        if (m_windows[static_cast<std::size_t>(i)].contains(p))
            return i;
    return -1;
}

std::vector<Rect> WindowStack::inView(int window) const {
    const auto index = static_cast<std::size_t>(window);
    std::vector<Rect> parts{m_windows[index]};
    for (std::size_t above = index + 1; above < m_windows.size(); ++above)
        parts = subtracted(parts, m_windows[above]);
    return parts;
}

} // namespace framora

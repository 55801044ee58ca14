#pragma once

#include "screencapture/Geometry.h"

#include <vector>

namespace framora {

/// The windows that a compositor says are to be seen, in the logical pixels of its layout.
class WindowStack {
public:
    /// Puts a window above all others; an empty box is none.
    void add(const Rect& window);

    bool empty() const { return m_windows.empty(); }
    /// From the lowest to the topmost.
    const std::vector<Rect>& windows() const { return m_windows; }
    /// The index of the topmost window at a place; -1 over the desktop.
    int at(Point p) const;
    /// The parts of a window that no other covers.
    std::vector<Rect> inView(int window) const;

private:
    std::vector<Rect> m_windows;
};

} // namespace framora

#pragma once

#include "screencapture/Geometry.h"

#include <cstdint>
#include <vector>
#include <xcb/xproto.h>

namespace framora {

class XConnection;

/// A top-level window as it stands on the screen, with the frame its window manager gave it.
struct TopLevel {
    xcb_window_t window = XCB_WINDOW_NONE;
    int depth = 0;
    xcb_visualid_t visual = 0;
    /// With the border, in root coordinates; may lie partly off the screen.
    Rect outer;
    /// What a picture of the window shows: `outer` without the invisible margins that client-side windows
    /// carry.
    Rect visible;
    /// The bounding shape in root coordinates; empty for an ordinary rectangular window.
    std::vector<Rect> shape;
    /// False for the desktop itself, for windows that let every click through, and for specks.
    bool selectable = true;

    /// Whether the window is there for the eye at a place of the root window.
    bool covers(Point p) const;
};

/// The viewable top-level windows of a screen at one moment.
class WindowList {
public:
    /// Reads the list; `except` (the overlay) is left out.
    static WindowList scan(const XConnection& connection, xcb_window_t except);

    /// From the lowest to the topmost.
    const std::vector<TopLevel>& windows() const { return m_windows; }
    /// The topmost selectable window at a place; null over the desktop.
    const TopLevel* at(Point p) const;
    /// The parts of a window that the eye sees: without those under other windows. What lets every click
    /// through counts as glass.
    std::vector<Rect> inView(const TopLevel& window) const;
    /// The parts of a window that lie on the screen with no other window above; shapes count as their outer
    /// box.
    std::vector<Rect> uncovered(const TopLevel& window, const Rect& screen) const;

private:
    std::vector<TopLevel> m_windows;
};

} // namespace framora

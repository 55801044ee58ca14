#pragma once

#include "screencapture/Picture.h"
#include "screencapture/WindowList.h"

#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <xcb/damage.h>

namespace framora {

/// Takes whole windows, also the parts that other windows cover or that lie off the screen.
///
/// A compositing manager keeps every window's pixels. Without one the windows are redirected when prepare()
/// is called; the server then knows what was visible, and asks the programs to repaint the rest, which is
/// waited for.
class WindowGrab {
public:
    using Clock = std::chrono::steady_clock;

    explicit WindowGrab(const XConnection& connection);

    /// Has the server keep the pixels of these windows from now on. Does nothing the second time.
    void prepare(const WindowList& windows, Clock::time_point now);
    /// True when the event was one of this object's.
    bool handleEvent(const xcb_generic_event_t& event, Clock::time_point now);
    /// False while a program is expected to repaint what was covered; never for longer than kLongestWait
    /// after prepare().
    bool ready(xcb_window_t window, Clock::time_point now) const;
    /// The window as a picture of its own, transparent outside its shape. `frozen` is the screen before the
    /// overlay came up, the source of what was visible then and of everything where the server cannot name
    /// the window's pixels. Nothing when the window shows no pixel at all.
    Picture take(const WindowList& windows, const TopLevel& window, const ServerImage& frozen);

    static constexpr std::chrono::milliseconds kLongestWait{700};

private:
    /// What a program has still to paint of its window since the redirection.
    struct Repaint {
        Point origin;              // of the window
        std::vector<Rect> missing; // root coordinates
        long missingAtFirst = 0;   // pixels
        unsigned since = 0;        // the request whose reports, and earlier ones, mean nothing
        Clock::time_point last;
    };

    void expectRepaint(const WindowList& windows, const TopLevel& window, Clock::time_point now);
    std::unique_ptr<ServerImage> named(const TopLevel& window) const;
    Picture fromScreen(const TopLevel& window, const ServerImage& frozen) const;

    const XConnection& m_connection;
    uint8_t m_damageEvent = 0;
    bool m_prepared = false;
    Clock::time_point m_preparedAt;
    std::set<xcb_window_t> m_redirected;        // by this object
    std::map<xcb_window_t, Repaint> m_repaints; // of the windows that were covered
};

} // namespace framora

#pragma once

#include <QRect>
#include <QString>
#include <xcb/xcb.h>

namespace framora {

/// Another program's window that lies beneath a toast: it counts the clicks that reach it.
class BeneathWindow {
public:
    /// A full-screen window asks the window manager for that state. `rgb` fills it.
    BeneathWindow(const QString& displayName, const QRect& geometry, std::uint32_t rgb,
                  bool fullScreen = false);
    ~BeneathWindow();
    BeneathWindow(const BeneathWindow&) = delete;
    BeneathWindow& operator=(const BeneathWindow&) = delete;

    xcb_window_t id() const { return m_window; }
    /// Presses of the primary button so far.
    int clicks();
    /// Asks to be mapped; a window manager that is just starting may have missed the first request.
    void show();
    /// Puts it on top of the windows that are there.
    void raise();

private:
    void readEvents();

    xcb_connection_t* m_connection;
    xcb_window_t m_window;
    int m_clicks = 0;
};

} // namespace framora

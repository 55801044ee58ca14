#pragma once

#include <chrono>
#include <xcb/xproto.h>

namespace framora {

class XConnection;

/// Pointer and keyboard, both held for the capture alone; let go when destroyed.
class InputGrab {
public:
    explicit InputGrab(const XConnection& connection) : m_connection(connection) {}
    ~InputGrab() { release(); }
    InputGrab(const InputGrab&) = delete;
    InputGrab& operator=(const InputGrab&) = delete;

    /// Tries until both are held or the patience is over: a menu or a shortcut of another program may hold
    /// one for a moment. False holds neither.
    bool acquire(xcb_cursor_t cursor, std::chrono::milliseconds patience);
    void setCursor(xcb_cursor_t cursor) const;
    void release();

private:
    const XConnection& m_connection;
    bool m_pointer = false;
    bool m_keyboard = false;
};

} // namespace framora

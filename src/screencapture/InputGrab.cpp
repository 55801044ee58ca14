#include "screencapture/InputGrab.h"

#include "screencapture/XConnection.h"

#include <thread>

namespace framora {

namespace {

constexpr uint16_t kPointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;
constexpr std::chrono::milliseconds kPause{10};

} // namespace

bool InputGrab::acquire(xcb_cursor_t cursor, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (m_connection.valid()) {
        // The root window is always viewable, so that nothing has to be shown before both are held.
        if (!m_pointer) {
            const auto r = m_connection.reply(
                xcb_grab_pointer(m_connection, 0, m_connection.root(), kPointerEvents, XCB_GRAB_MODE_ASYNC,
                                 XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, cursor, XCB_CURRENT_TIME),
                xcb_grab_pointer_reply);
            m_pointer = r && r->status == XCB_GRAB_STATUS_SUCCESS;
        }
        if (!m_keyboard) {
            const auto r =
                m_connection.reply(xcb_grab_keyboard(m_connection, 0, m_connection.root(), XCB_CURRENT_TIME,
                                                     XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                   xcb_grab_keyboard_reply);
            m_keyboard = r && r->status == XCB_GRAB_STATUS_SUCCESS;
        }
        if (m_pointer && m_keyboard)
            return true;
        if (std::chrono::steady_clock::now() >= end)
            break;
        std::this_thread::sleep_for(kPause);
    }
    release();
    return false;
}

void InputGrab::setCursor(xcb_cursor_t cursor) const {
    if (m_pointer)
        xcb_change_active_pointer_grab(m_connection, cursor, XCB_CURRENT_TIME, kPointerEvents);
}

void InputGrab::release() {
    if (m_pointer)
        xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
    if (m_keyboard)
        xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
    m_pointer = m_keyboard = false;
}

} // namespace framora

#include "desktop/feedback/BeneathWindow.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace framora {
namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 0, std::uint16_t(std::strlen(name)), name), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

} // namespace

BeneathWindow::BeneathWindow(const QString& displayName, const QRect& geometry, std::uint32_t rgb,
                             bool fullScreen)
    : m_connection(xcb_connect(displayName.toLocal8Bit().constData(), nullptr)) {
    if (xcb_connection_has_error(m_connection))
        throw std::runtime_error("no X server for the window beneath");
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    const std::array<std::uint32_t, 2> values{rgb, XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, std::int16_t(geometry.x()),
                      std::int16_t(geometry.y()), std::uint16_t(geometry.width()),
                      std::uint16_t(geometry.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values.data());
    const char name[] = "beneath";
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof(name) - 1, name);
    if (fullScreen) {
        const xcb_atom_t state = atom(m_connection, "_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window,
                            atom(m_connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, 1, &state);
    }
    show();
}

BeneathWindow::~BeneathWindow() {
    xcb_disconnect(m_connection);
}

void BeneathWindow::readEvents() {
    while (auto* event = xcb_poll_for_event(m_connection)) {
        const auto* press = reinterpret_cast<xcb_button_press_event_t*>(event);
        if ((event->response_type & 0x7f) == XCB_BUTTON_PRESS && press->detail == XCB_BUTTON_INDEX_1)
            ++m_clicks;
        std::free(event);
    }
}

int BeneathWindow::clicks() {
    readEvents();
    return m_clicks;
}

void BeneathWindow::show() {
    xcb_map_window(m_connection, m_window);
    xcb_flush(m_connection);
}

void BeneathWindow::raise() {
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_flush(m_connection);
}

} // namespace framora

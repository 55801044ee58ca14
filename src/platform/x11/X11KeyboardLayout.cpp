#include "platform/x11/X11KeyboardLayout.h"

#include "platform/Notifications.h"
#include "platform/x11/XkbKeyText.h"

// The protocol has a field named as a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon-x11.h>

namespace framora {

void X11KeyboardLayout::ContextReleaser::operator()(xkb_context* context) const {
    xkb_context_unref(context);
}
void X11KeyboardLayout::KeymapReleaser::operator()(xkb_keymap* keymap) const {
    xkb_keymap_unref(keymap);
}

X11KeyboardLayout::X11KeyboardLayout(X11Connection& connection, NotificationCenter& notifications)
    : m_connection(connection), m_notifications(notifications) {
    m_connection.addEventHandler([this](const xcb_generic_event_t& event) { handleEvent(event); });
}

X11KeyboardLayout::~X11KeyboardLayout() = default;

void X11KeyboardLayout::watch() const {
    if (m_firstEvent != 0)
        return;
    if (!xkb_x11_setup_xkb_extension(m_connection, XKB_X11_MIN_MAJOR_XKB_VERSION,
                                     XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS,
                                     nullptr, nullptr, &m_firstEvent, nullptr))
        return;
    const std::uint16_t changes = XCB_XKB_EVENT_TYPE_STATE_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                  XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY;
    const std::uint16_t mapParts = XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, changes, 0, changes, mapParts, mapParts,
                          nullptr);
}

void X11KeyboardLayout::read() const {
    if (m_keymap || !m_connection.isValid())
        return;
    watch();
    if (m_firstEvent == 0)
        return;
    if (!m_context)
        m_context.reset(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    const auto device = xkb_x11_get_core_keyboard_device_id(m_connection);
    if (!m_context || device < 0)
        return;
    m_keymap.reset(
        xkb_x11_keymap_new_from_device(m_context.get(), m_connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    const XcbReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        m_connection, xcb_xkb_get_state(m_connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    m_group = state ? state->group : 0;
}

QString X11KeyboardLayout::textOfKey(std::uint16_t virtualKey) const {
    read();
    return m_keymap ? xkbKeyText(m_keymap.get(), m_group, virtualKey) : QString();
}

void X11KeyboardLayout::handleEvent(const xcb_generic_event_t& event) {
    // All XKB events share one code; their own kind stands in the second byte.
    if (m_firstEvent == 0 || !m_keymap || (event.response_type & 0x7F) != m_firstEvent)
        return;
    if (event.pad0 == XCB_XKB_STATE_NOTIFY) {
        const auto group = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event).group;
        if (group == m_group)
            return;
        m_group = group;
    } else {
        m_keymap.reset();
    }
    m_notifications.post(notifications::keyboardLayoutChanged);
}

} // namespace framora

#include "platform/x11/X11KeyMonitors.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <xcb/xinput.h>
// The protocol has a field named as a C++ keyword.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace framora {

X11KeyMonitors::X11KeyMonitors(X11Connection& connection, CommandGate& gate)
    : m_connection(connection), m_gate(gate), m_modifiers(connection),
      m_ownWindows(gate,
                   [this](const QKeyEvent& press) { return m_modifiers.flags(press.nativeModifiers()); }) {
    selectEvents();
    m_connection.addEventHandler([this](const xcb_generic_event_t& event) { handleEvent(event); });
}

void X11KeyMonitors::selectEvents() {
    const auto* input = xcb_get_extension_data(m_connection, &xcb_input_id);
    const auto* xkb = xcb_get_extension_data(m_connection, &xcb_xkb_id);
    if (!input || !input->present || !xkb || !xkb->present)
        return;

    const XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        m_connection, xcb_input_xi_query_version(m_connection, 2, 2), nullptr));
    const XcbReply<xcb_xkb_use_extension_reply_t> xkbVersion(
        xcb_xkb_use_extension_reply(m_connection, xcb_xkb_use_extension(m_connection, 1, 0), nullptr));
    if (!version || version->major_version < 2 || !xkbVersion || !xkbVersion->supported)
        return;

    const std::uint16_t changes = XCB_XKB_EVENT_TYPE_STATE_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY |
                                  XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY;
    const std::uint16_t mapParts = XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_SYMS;
    xcb_xkb_select_events(m_connection, XCB_XKB_ID_USE_CORE_KBD, changes, 0, changes, mapParts, mapParts,
                          nullptr);
    const XcbReply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        m_connection, xcb_xkb_get_state(m_connection, XCB_XKB_ID_USE_CORE_KBD), nullptr));
    if (state)
        m_modifierState = state->mods;

    // Only master devices: a key of a slave comes again as its master's.
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS};
    const auto cookie =
        xcb_input_xi_select_events_checked(m_connection, m_connection.root(), 1, &selection.head);
    if (const XcbReply<xcb_generic_error_t> error{xcb_request_check(m_connection, cookie)})
        return;
    m_inputOpcode = input->major_opcode;
    m_xkbFirstEvent = xkb->first_event;
}

KeyMonitors::Token X11KeyMonitors::addGlobalMonitor(GlobalHandler handler) {
    if (!canMonitorGlobally())
        return 0;
    m_globalHandlers.emplace(++m_lastToken, std::move(handler));
    return m_lastToken;
}

KeyMonitors::Token X11KeyMonitors::addLocalMonitor(LocalHandler handler) {
    m_ownWindows.addLocal(++m_lastToken, std::move(handler));
    return m_lastToken;
}

KeyMonitors::Token X11KeyMonitors::addRecordingMonitor(LocalHandler handler) {
    m_ownWindows.addRecording(++m_lastToken, std::move(handler));
    return m_lastToken;
}

void X11KeyMonitors::removeMonitor(Token token) {
    m_globalHandlers.erase(token);
    m_ownWindows.remove(token);
}

void X11KeyMonitors::handleEvent(const xcb_generic_event_t& event) {
    // The server tells no raw keys to the connection that has grabbed the keyboard at the root.
    if ((event.response_type & 0x7f) == XCB_KEY_PRESS && m_holdsKeys && m_holdsKeys()) {
        handleRawKey(reinterpret_cast<const xcb_key_press_event_t&>(event).detail);
        return;
    }
    if (m_inputOpcode == 0)
        return;
    const auto type = event.response_type & 0x7F;
    if (type == XCB_GE_GENERIC) {
        const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
        if (generic.extension == m_inputOpcode && generic.event_type == XCB_INPUT_RAW_KEY_PRESS)
            handleRawKey(reinterpret_cast<const xcb_input_raw_key_press_event_t&>(event).detail);
    } else if (type == m_xkbFirstEvent) {
        // All XKB events share one code; their own kind stands in the second byte.
        if (event.pad0 == XCB_XKB_STATE_NOTIFY) {
            const auto& notify = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
            handleStateChange(notify.keycode, notify.mods);
        } else {
            m_modifiers.reload();
        }
    }
}

bool X11KeyMonitors::ownWindowHasFocus() const {
    // Qt believes in its focus for a while after it has gone; the server knows.
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return false;
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    const auto* setup = xcb_get_setup(x11->connection());
    // PointerRoot and None are no window's number.
    return reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT &&
           (reply->focus & ~setup->resource_id_mask) == setup->resource_id_base;
}

void X11KeyMonitors::handleStateChange(std::uint32_t keycode, std::uint32_t state) {
    const auto before = m_modifiers.flags(m_modifierState);
    m_modifierState = state;
    const auto flags = m_modifiers.flags(state);
    if (flags == before || !m_ownWindows.isRecording())
        return;
    // Keys that are let go of elsewhere are told of as well, or they would seem to be held for ever.
    if ((flags & KeyModifier::shortcutMask) != 0 && !ownWindowHasFocus())
        return;
    m_ownWindows.offerModifierChange(WindowKeyMonitors::virtualKeyOf(keycode).value_or(0), flags);
}

void X11KeyMonitors::handleRawKey(std::uint32_t keycode) {
    if (!m_gate.isOpen())
        return;
    const auto virtualKey = WindowKeyMonitors::virtualKeyOf(keycode);
    // While one of our windows has the keyboard, its keys are the local monitors'.
    if (!virtualKey || WindowKeyMonitors::isModifierKey(*virtualKey))
        return;
    if (!(m_holdsKeys && m_holdsKeys()) && ownWindowHasFocus())
        return;
    const KeyEvent key{*virtualKey, m_modifiers.flags(m_modifierState)};
    // A copy: a handler may add and remove monitors; one that was removed meanwhile is not called.
    const auto handlers = m_globalHandlers;
    for (const auto& [token, handler] : handlers) {
        if (m_globalHandlers.contains(token))
            handler(key);
    }
}

} // namespace framora

#include "platform/x11/X11DesktopShortcuts.h"

#include "platform/VirtualKeyCodes.h"
#include "platform/x11/X11Modifiers.h"

#include <xcb/xinput.h>

namespace framora {
namespace {

constexpr std::uint32_t evdevOffset = 8;

bool isTakenInCore(X11Connection& connection, xcb_keycode_t key, std::uint16_t state) {
    const XcbReply<xcb_generic_error_t> refusal(
        xcb_request_check(connection, xcb_grab_key_checked(connection, 0, connection.root(), state, key,
                                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
    if (!refusal)
        xcb_ungrab_key(connection, key, connection.root(), state);
    return refusal && refusal->error_code == XCB_ACCESS;
}

/// The second way to take a key; the server does not hold the two against each other.
bool isTakenInXInput(X11Connection& connection, xcb_keycode_t key, std::uint16_t state) {
    const auto* input = xcb_get_extension_data(connection, &xcb_input_id);
    if (!input || !input->present)
        return false;
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(connection, xcb_input_xi_query_version(connection, 2, 2), nullptr));
    if (!version || version->major_version < 2)
        return false;
    const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const std::uint32_t modifiers = state;
    const auto cookie = xcb_input_xi_passive_grab_device(
        connection, XCB_CURRENT_TIME, connection.root(), XCB_NONE, key, XCB_INPUT_DEVICE_ALL_MASTER, 1, 1,
        XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
        XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, &modifiers);
    const XcbReply<xcb_input_xi_passive_grab_device_reply_t> reply(
        xcb_input_xi_passive_grab_device_reply(connection, cookie, nullptr));
    if (!reply)
        return false;
    // The answer lists the modifiers that were refused.
    if (reply->num_modifiers > 0)
        return true;
    xcb_input_xi_passive_ungrab_device(connection, connection.root(), key, XCB_INPUT_DEVICE_ALL_MASTER, 1,
                                       XCB_INPUT_GRAB_TYPE_KEYCODE, &modifiers);
    return false;
}

} // namespace

bool X11DesktopShortcuts::isTaken(std::uint16_t virtualKey, std::uint64_t modifiers) {
    const auto evdev = evdevFromVirtualKey(virtualKey);
    if (!evdev || *evdev + evdevOffset > 255 || !m_connection.isValid())
        return false;
    const auto key = static_cast<xcb_keycode_t>(*evdev + evdevOffset);
    const std::uint16_t state = X11Modifiers(m_connection).state(modifiers);
    const bool taken = isTakenInCore(m_connection, key, state) || isTakenInXInput(m_connection, key, state);
    m_connection.flush();
    return taken;
}

} // namespace framora

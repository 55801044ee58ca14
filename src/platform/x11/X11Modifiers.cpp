#include "platform/x11/X11Modifiers.h"

#include "platform/KeyMonitors.h"

#include <algorithm>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace framora {

X11Modifiers::X11Modifiers(X11Connection& connection) : m_connection(connection) {
    reload();
}

void X11Modifiers::reload() {
    if (!m_connection.isValid())
        return;
    const auto* setup = xcb_get_setup(m_connection);
    const auto mapCookie = xcb_get_modifier_mapping(m_connection);
    const auto symbolsCookie =
        xcb_get_keyboard_mapping(m_connection, setup->min_keycode,
                                 static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1));
    const XcbReply<xcb_get_modifier_mapping_reply_t> map(
        xcb_get_modifier_mapping_reply(m_connection, mapCookie, nullptr));
    const XcbReply<xcb_get_keyboard_mapping_reply_t> symbols(
        xcb_get_keyboard_mapping_reply(m_connection, symbolsCookie, nullptr));
    if (!map || !symbols)
        return;

    const auto* keycodes = xcb_get_modifier_mapping_keycodes(map.get());
    const auto* keysyms = xcb_get_keyboard_mapping_keysyms(symbols.get());
    const auto hasAny = [&](xcb_keycode_t keycode, std::initializer_list<xcb_keysym_t> wanted) {
        if (keycode < setup->min_keycode)
            return false;
        const auto* row = keysyms + (keycode - setup->min_keycode) * symbols->keysyms_per_keycode;
        return std::any_of(row, row + symbols->keysyms_per_keycode, [&](xcb_keysym_t keysym) {
            return std::find(wanted.begin(), wanted.end(), keysym) != wanted.end();
        });
    };
    std::uint32_t alt = 0;
    std::uint32_t super = 0;
    // The first three rows are Shift, Lock and Control, which never move.
    for (int row = 3; row < 8; ++row) {
        for (int column = 0; column < map->keycodes_per_modifier; ++column) {
            const auto keycode = keycodes[row * map->keycodes_per_modifier + column];
            if (hasAny(keycode, {XKB_KEY_Alt_L, XKB_KEY_Alt_R}))
                alt |= 1U << row;
            if (hasAny(keycode, {XKB_KEY_Super_L, XKB_KEY_Super_R}))
                super |= 1U << row;
        }
    }
    if (alt)
        m_alt = alt;
    if (super)
        m_super = super;
}

std::uint64_t X11Modifiers::flags(std::uint32_t state) const {
    std::uint64_t flags = 0;
    if (state & XCB_MOD_MASK_SHIFT)
        flags |= KeyModifier::shift;
    if (state & XCB_MOD_MASK_LOCK)
        flags |= KeyModifier::capsLock;
    if (state & XCB_MOD_MASK_CONTROL)
        flags |= KeyModifier::control;
    if (state & m_alt)
        flags |= KeyModifier::option;
    if (state & m_super)
        flags |= KeyModifier::command;
    return flags;
}

std::uint16_t X11Modifiers::state(std::uint64_t flags) const {
    // Where Alt has more than one, the lowest: that is the one that keyboards set.
    const auto lowest = [](std::uint32_t mask) { return mask & (~mask + 1); };
    std::uint32_t state = 0;
    if (flags & KeyModifier::shift)
        state |= XCB_MOD_MASK_SHIFT;
    if (flags & KeyModifier::control)
        state |= XCB_MOD_MASK_CONTROL;
    if (flags & KeyModifier::option)
        state |= lowest(m_alt);
    if (flags & KeyModifier::command)
        state |= lowest(m_super);
    return static_cast<std::uint16_t>(state);
}

} // namespace framora

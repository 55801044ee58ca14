#include "screencapture/Keyboard.h"

#include "screencapture/XConnection.h"

// The header has a member of that name, which is a keyword here.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

namespace framora {

namespace {

constexpr uint32_t kSymSpace = 0x0020;
constexpr uint32_t kSymEscape = 0xff1b;
constexpr uint32_t kSymShiftL = 0xffe1;
constexpr uint32_t kSymShiftR = 0xffe2;

/// What a key means by itself in its first two groups, whose symbols come in pairs of levels: some layouts
/// have Escape and space on further levels of letters.
SelectionModel::Key meaningOf(const xcb_keysym_t* symbols, int count) {
    using Key = SelectionModel::Key;
    for (int i = 0; i < count && i < 4; i += 2) {
        switch (symbols[i]) {
        case kSymEscape:
            return Key::Escape;
        case kSymSpace:
            return Key::Space;
        case kSymShiftL:
        case kSymShiftR:
            return Key::Shift;
        default:
            break;
        }
    }
    return Key::Other;
}

/// Has held keys repeat as presses alone, for this connection.
void askForDetectableRepeat(const XConnection& c) {
    const auto* extension = xcb_get_extension_data(c, &xcb_xkb_id);
    if (!extension || !extension->present)
        return;
    const auto use = c.reply(xcb_xkb_use_extension(c, 1, 0), xcb_xkb_use_extension_reply);
    if (!use || !use->supported)
        return;
    constexpr uint32_t kFlag = XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT;
    const auto cookie = xcb_xkb_per_client_flags(c, XCB_XKB_ID_USE_CORE_KBD, kFlag, kFlag, 0, 0, 0);
    c.reply(cookie, xcb_xkb_per_client_flags_reply);
}

} // namespace

Keyboard::Keyboard(const XConnection& c) {
    m_meanings.fill(SelectionModel::Key::Other);
    const auto* setup = xcb_get_setup(c);
    const int first = setup->min_keycode;
    const int count = setup->max_keycode - first + 1;
    const auto mappingCookie =
        xcb_get_keyboard_mapping(c, static_cast<uint8_t>(first), static_cast<uint8_t>(count));
    askForDetectableRepeat(c);
    if (const auto mapping = c.reply(mappingCookie, xcb_get_keyboard_mapping_reply)) {
        const auto* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
        const int perKey = mapping->keysyms_per_keycode;
        for (int i = 0; i < count; ++i)
            m_meanings[static_cast<std::size_t>(first + i)] = meaningOf(symbols + i * perKey, perKey);
    }
}

std::vector<uint8_t> Keyboard::keysDown(const XConnection& c) {
    std::vector<uint8_t> codes;
    if (const auto down = c.reply(xcb_query_keymap(c), xcb_query_keymap_reply))
        for (int code = 0; code < 256; ++code)
            if (down->keys[code / 8] >> (code % 8) & 1)
                codes.push_back(static_cast<uint8_t>(code));
    return codes;
}

} // namespace framora

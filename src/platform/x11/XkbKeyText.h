#pragma once

#include <QString>
#include <cstdint>
#include <xkbcommon/xkbcommon.h>

namespace framora {

/// What the key of that virtual code prints in `group` of the keymap without modifiers; keypad keys as with
/// Num Lock on, since a keypad is labelled with its digits. A dead key gives its accent on its own. Empty for
/// a key that prints nothing. `shifted` is with Shift held.
QString xkbKeyText(xkb_keymap* keymap, xkb_layout_index_t group, std::uint16_t virtualKey,
                   bool shifted = false);

} // namespace framora

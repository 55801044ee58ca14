#include "platform/x11/XkbKeyText.h"

#include "platform/VirtualKeyCodes.h"

#include <algorithm>
#include <array>
#include <memory>
#include <xkbcommon/xkbcommon-keysyms.h>

namespace framora {
namespace {

constexpr std::uint32_t evdevOffset = 8;

struct StateReleaser {
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};

struct DeadKey {
    xkb_keysym_t keysym;
    char32_t accent;
};

constexpr std::array deadKeys{
    DeadKey{XKB_KEY_dead_grave, U'`'},         DeadKey{XKB_KEY_dead_acute, U'´'},
    DeadKey{XKB_KEY_dead_circumflex, U'^'},    DeadKey{XKB_KEY_dead_tilde, U'~'},
    DeadKey{XKB_KEY_dead_macron, U'¯'},        DeadKey{XKB_KEY_dead_breve, U'˘'},
    DeadKey{XKB_KEY_dead_abovedot, U'˙'},      DeadKey{XKB_KEY_dead_diaeresis, U'¨'},
    DeadKey{XKB_KEY_dead_abovering, U'°'},     DeadKey{XKB_KEY_dead_doubleacute, U'˝'},
    DeadKey{XKB_KEY_dead_caron, U'ˇ'},         DeadKey{XKB_KEY_dead_cedilla, U'¸'},
    DeadKey{XKB_KEY_dead_ogonek, U'˛'},        DeadKey{XKB_KEY_dead_iota, U'ͺ'},
    DeadKey{XKB_KEY_dead_voiced_sound, U'゛'}, DeadKey{XKB_KEY_dead_semivoiced_sound, U'゜'},
    DeadKey{XKB_KEY_dead_stroke, U'/'},        DeadKey{XKB_KEY_dead_greek, U'µ'},
    DeadKey{XKB_KEY_dead_currency, U'¤'},      DeadKey{XKB_KEY_dead_belowdot, U'.'},
    DeadKey{XKB_KEY_dead_hook, U'ˀ'},          DeadKey{XKB_KEY_dead_horn, U'ʼ'},
};

bool isKeypadKey(std::uint16_t virtualKey) {
    constexpr std::uint16_t decimalPoint = 65;
    constexpr std::uint16_t first = 67;
    constexpr std::uint16_t last = 92;
    return virtualKey == decimalPoint || (virtualKey >= first && virtualKey <= last);
}

} // namespace

QString xkbKeyText(xkb_keymap* keymap, xkb_layout_index_t group, std::uint16_t virtualKey, bool shifted) {
    const auto evdev = evdevFromVirtualKey(virtualKey);
    const std::unique_ptr<xkb_state, StateReleaser> state(xkb_state_new(keymap));
    if (!evdev || !state)
        return {};
    const auto maskOf = [keymap](const char* modifier) {
        const auto index = xkb_keymap_mod_get_index(keymap, modifier);
        return index == XKB_MOD_INVALID ? xkb_mod_mask_t{0} : xkb_mod_mask_t{1} << index;
    };
    const xkb_mod_mask_t locked = isKeypadKey(virtualKey) ? maskOf(XKB_MOD_NAME_NUM) : 0;
    const xkb_mod_mask_t held = shifted ? maskOf(XKB_MOD_NAME_SHIFT) : 0;
    xkb_state_update_mask(state.get(), held, 0, locked, 0, 0, group);
    const xkb_keycode_t keycode = *evdev + evdevOffset;

    const auto keysym = xkb_state_key_get_one_sym(state.get(), keycode);
    const auto dead = std::ranges::find(deadKeys, keysym, &DeadKey::keysym);
    if (dead != deadKeys.end())
        return QString::fromUcs4(&dead->accent, 1);

    std::array<char, 32> text{}; // Far more than the eight units that any key prints.
    const int length = xkb_state_key_get_utf8(state.get(), keycode, text.data(), text.size());
    if (length <= 0 || std::size_t(length) >= text.size())
        return {};
    QString printed = QString::fromUtf8(text.data(), length);
    // Backspace, Escape and their like have a character and print none.
    const bool isControl = std::ranges::any_of(
        printed, [](QChar c) { return c.category() == QChar::Other_Control && !c.isSpace(); });
    return isControl ? QString() : printed;
}

} // namespace framora

#include "platform/VirtualKeyCodes.h"

#include <algorithm>
#include <array>
#include <linux/input-event-codes.h>

namespace framora {
namespace {

constexpr std::array keys{
    // Letters.
    VirtualKey{KEY_A, 0, "A"},
    VirtualKey{KEY_S, 1, "S"},
    VirtualKey{KEY_D, 2, "D"},
    VirtualKey{KEY_F, 3, "F"},
    VirtualKey{KEY_H, 4, "H"},
    VirtualKey{KEY_G, 5, "G"},
    VirtualKey{KEY_Z, 6, "Z"},
    VirtualKey{KEY_X, 7, "X"},
    VirtualKey{KEY_C, 8, "C"},
    VirtualKey{KEY_V, 9, "V"},
    VirtualKey{KEY_B, 11, "B"},
    VirtualKey{KEY_Q, 12, "Q"},
    VirtualKey{KEY_W, 13, "W"},
    VirtualKey{KEY_E, 14, "E"},
    VirtualKey{KEY_R, 15, "R"},
    VirtualKey{KEY_Y, 16, "Y"},
    VirtualKey{KEY_T, 17, "T"},
    VirtualKey{KEY_O, 31, "O"},
    VirtualKey{KEY_U, 32, "U"},
    VirtualKey{KEY_I, 34, "I"},
    VirtualKey{KEY_P, 35, "P"},
    VirtualKey{KEY_L, 37, "L"},
    VirtualKey{KEY_J, 38, "J"},
    VirtualKey{KEY_K, 40, "K"},
    VirtualKey{KEY_N, 45, "N"},
    VirtualKey{KEY_M, 46, "M"},

    // Digits.
    VirtualKey{KEY_1, 18, "1"},
    VirtualKey{KEY_2, 19, "2"},
    VirtualKey{KEY_3, 20, "3"},
    VirtualKey{KEY_4, 21, "4"},
    VirtualKey{KEY_6, 22, "6"},
    VirtualKey{KEY_5, 23, "5"},
    VirtualKey{KEY_9, 25, "9"},
    VirtualKey{KEY_7, 26, "7"},
    VirtualKey{KEY_8, 28, "8"},
    VirtualKey{KEY_0, 29, "0"},

    // Punctuation; the ISO key stands between left Shift and Z.
    VirtualKey{KEY_102ND, 10, "§"},
    VirtualKey{KEY_EQUAL, 24, "="},
    VirtualKey{KEY_MINUS, 27, "-"},
    VirtualKey{KEY_RIGHTBRACE, 30, "]"},
    VirtualKey{KEY_LEFTBRACE, 33, "["},
    VirtualKey{KEY_APOSTROPHE, 39, "'"},
    VirtualKey{KEY_SEMICOLON, 41, ";"},
    VirtualKey{KEY_BACKSLASH, 42, "\\"},
    VirtualKey{KEY_COMMA, 43, ","},
    VirtualKey{KEY_SLASH, 44, "/"},
    VirtualKey{KEY_DOT, 47, "."},
    VirtualKey{KEY_GRAVE, 50, "`"},

    // Keys of Japanese keyboards.
    VirtualKey{KEY_YEN, 93, "¥"},
    VirtualKey{KEY_RO, 94, "_"},
    VirtualKey{KEY_HANJA, 102, "Eisu"},
    VirtualKey{KEY_HANGEUL, 104, "Kana"},

    // Editing and whitespace.
    VirtualKey{KEY_ENTER, 36, "Return"},
    VirtualKey{KEY_TAB, 48, "Tab"},
    VirtualKey{KEY_SPACE, 49, "Space"},
    VirtualKey{KEY_BACKSPACE, 51, "Backspace"},
    VirtualKey{KEY_ESC, 53, "Escape"},
    VirtualKey{KEY_DELETE, 117, "Delete"},
    // An extended keyboard has Help where others have Insert.
    VirtualKey{KEY_INSERT, 114, "Insert"},

    // Modifiers.
    VirtualKey{KEY_RIGHTMETA, 54, "Right Super"},
    VirtualKey{KEY_LEFTMETA, 55, "Super"},
    VirtualKey{KEY_LEFTSHIFT, 56, "Shift"},
    VirtualKey{KEY_CAPSLOCK, 57, "Caps Lock"},
    VirtualKey{KEY_LEFTALT, 58, "Alt"},
    VirtualKey{KEY_LEFTCTRL, 59, "Control"},
    VirtualKey{KEY_RIGHTSHIFT, 60, "Right Shift"},
    VirtualKey{KEY_RIGHTALT, 61, "Right Alt"},
    VirtualKey{KEY_RIGHTCTRL, 62, "Right Control"},
    VirtualKey{KEY_FN, 63, "Fn"},
    VirtualKey{KEY_COMPOSE, 110, "Menu"},

    // Keypad. Num Lock stands where an extended keyboard has Clear.
    VirtualKey{KEY_KPDOT, 65, "Keypad ."},
    VirtualKey{KEY_KPASTERISK, 67, "Keypad *"},
    VirtualKey{KEY_KPPLUS, 69, "Keypad +"},
    VirtualKey{KEY_NUMLOCK, 71, "Num Lock"},
    VirtualKey{KEY_KPSLASH, 75, "Keypad /"},
    VirtualKey{KEY_KPENTER, 76, "Keypad Enter"},
    VirtualKey{KEY_KPMINUS, 78, "Keypad -"},
    VirtualKey{KEY_KPEQUAL, 81, "Keypad ="},
    VirtualKey{KEY_KP0, 82, "Keypad 0"},
    VirtualKey{KEY_KP1, 83, "Keypad 1"},
    VirtualKey{KEY_KP2, 84, "Keypad 2"},
    VirtualKey{KEY_KP3, 85, "Keypad 3"},
    VirtualKey{KEY_KP4, 86, "Keypad 4"},
    VirtualKey{KEY_KP5, 87, "Keypad 5"},
    VirtualKey{KEY_KP6, 88, "Keypad 6"},
    VirtualKey{KEY_KP7, 89, "Keypad 7"},
    VirtualKey{KEY_KP8, 91, "Keypad 8"},
    VirtualKey{KEY_KP9, 92, "Keypad 9"},
    VirtualKey{KEY_KPCOMMA, 95, "Keypad ,"},

    // Function keys.
    VirtualKey{KEY_F1, 122, "F1"},
    VirtualKey{KEY_F2, 120, "F2"},
    VirtualKey{KEY_F3, 99, "F3"},
    VirtualKey{KEY_F4, 118, "F4"},
    VirtualKey{KEY_F5, 96, "F5"},
    VirtualKey{KEY_F6, 97, "F6"},
    VirtualKey{KEY_F7, 98, "F7"},
    VirtualKey{KEY_F8, 100, "F8"},
    VirtualKey{KEY_F9, 101, "F9"},
    VirtualKey{KEY_F10, 109, "F10"},
    VirtualKey{KEY_F11, 103, "F11"},
    VirtualKey{KEY_F12, 111, "F12"},
    VirtualKey{KEY_F13, 105, "F13"},
    VirtualKey{KEY_F14, 107, "F14"},
    VirtualKey{KEY_F15, 113, "F15"},
    VirtualKey{KEY_F16, 106, "F16"},
    VirtualKey{KEY_F17, 64, "F17"},
    VirtualKey{KEY_F18, 79, "F18"},
    VirtualKey{KEY_F19, 80, "F19"},
    VirtualKey{KEY_F20, 90, "F20"},

    // Navigation.
    VirtualKey{KEY_HOME, 115, "Home"},
    VirtualKey{KEY_PAGEUP, 116, "Page Up"},
    VirtualKey{KEY_END, 119, "End"},
    VirtualKey{KEY_PAGEDOWN, 121, "Page Down"},
    VirtualKey{KEY_LEFT, 123, "Left"},
    VirtualKey{KEY_RIGHT, 124, "Right"},
    VirtualKey{KEY_DOWN, 125, "Down"},
    VirtualKey{KEY_UP, 126, "Up"},

    // Volume.
    VirtualKey{KEY_VOLUMEUP, 72, "Volume Up"},
    VirtualKey{KEY_VOLUMEDOWN, 73, "Volume Down"},
    VirtualKey{KEY_MUTE, 74, "Mute"},

    // Keys of a full-size keyboard that the numbering has no code for: codes of our own, beyond all of its.
    VirtualKey{KEY_SYSRQ, 0x1000 + KEY_SYSRQ, "Print"},
    VirtualKey{KEY_SCROLLLOCK, 0x1000 + KEY_SCROLLLOCK, "Scroll Lock"},
    VirtualKey{KEY_PAUSE, 0x1000 + KEY_PAUSE, "Pause"},
};

const VirtualKey* find(std::uint16_t VirtualKey::*side, std::uint16_t code) {
    const auto found = std::ranges::find(keys, code, side);
    return found == keys.end() ? nullptr : &*found;
}

} // namespace

std::span<const VirtualKey> virtualKeys() {
    return keys;
}

std::optional<std::uint16_t> virtualKeyFromEvdev(std::uint16_t evdev) {
    const VirtualKey* key = find(&VirtualKey::evdev, evdev);
    return key ? std::optional(key->virtualCode) : std::nullopt;
}

std::optional<std::uint16_t> evdevFromVirtualKey(std::uint16_t virtualCode) {
    const VirtualKey* key = find(&VirtualKey::virtualCode, virtualCode);
    return key ? std::optional(key->evdev) : std::nullopt;
}

bool isForWriting(std::uint16_t virtualCode) {
    const auto key = evdevFromVirtualKey(virtualCode);
    if (!key)
        return false;
    switch (*key) {
    case KEY_SYSRQ:
    case KEY_SCROLLLOCK:
    case KEY_PAUSE:
    case KEY_INSERT:
    case KEY_COMPOSE:
    case KEY_NUMLOCK:
    case KEY_VOLUMEUP:
    case KEY_VOLUMEDOWN:
    case KEY_MUTE:
        return false;
    default:
        return !(*key >= KEY_F1 && *key <= KEY_F10) && *key != KEY_F11 && *key != KEY_F12 &&
               !(*key >= KEY_F13 && *key <= KEY_F24);
    }
}

const char* virtualKeyName(std::uint16_t virtualCode) {
    const VirtualKey* key = find(&VirtualKey::virtualCode, virtualCode);
    return key ? key->name : nullptr;
}

} // namespace framora

#pragma once

#include <QString>
#include <cstdint>

namespace framora {

class KeyboardLayout;

/// What a key without modifiers gives on a US keyboard, by the names that keymaps have for it ("4", "t",
/// "Return", "KP_Add"); null for a key that no shortcut can be on, as for a modifier.
const char* keySymbol(std::uint16_t virtualCode);

/// The same in the layout in force, where that is a Latin letter, digit or sign; else as on a US keyboard.
/// Empty for a key that no shortcut can be on.
QString keySymbol(std::uint16_t virtualCode, const KeyboardLayout& layout);

/// Desktops disagree on what a key with Shift is: the key and Shift, or the sign that they print together
/// (letters are always the former).
enum class ShiftStyle { besideTheKey, inTheSign };

/// A shortcut as the portals write it, "LOGO+ALT+SHIFT+4" or "LOGO+ALT+dollar". Empty when there is nothing
/// to press: no key, or neither key nor modifiers.
QString portalTrigger(std::uint16_t virtualCode, std::uint64_t modifiers, const KeyboardLayout& layout,
                      ShiftStyle style = ShiftStyle::besideTheKey);

} // namespace framora

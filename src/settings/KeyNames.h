#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace framora {

class KeyboardLayout;
struct HotkeyConfiguration;

/// The label of a key's cap: what the key prints in `layout`, in capitals; else the name of a special key;
/// else "Key " and its code.
QString keyName(std::uint16_t keyCode, const KeyboardLayout& layout);

/// The caps of a shortcut from left to right: command, option, control, shift, then the key. Key code 0 has
/// no cap. Empty when there is nothing to show.
QStringList keyCaps(const HotkeyConfiguration& shortcut, const KeyboardLayout& layout);

/// Modifiers and key code 0, which counts as no key.
bool isModifierOnly(const HotkeyConfiguration& shortcut);

} // namespace framora

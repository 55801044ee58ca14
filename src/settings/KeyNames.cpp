#include "settings/KeyNames.h"

#include "platform/KeyMonitors.h"
#include "platform/KeyboardLayout.h"
#include "platform/VirtualKeyCodes.h"
#include "settings/HotkeyConfiguration.h"

#include <algorithm>
#include <array>

namespace framora {
namespace {

struct SpecialKey {
    std::uint16_t keyCode;
    const char* label;
};

/// 28, 30, 31, 37, 38 and 40 are ordinary keys of most layouts, which answer before this table is asked.
constexpr std::array specialKeys{
    SpecialKey{28, "↩"},          SpecialKey{36, "↩"},     SpecialKey{30, "Tab"},      SpecialKey{48, "Tab"},
    SpecialKey{31, "Space"},      SpecialKey{49, "Space"}, SpecialKey{37, "⌫"},        SpecialKey{51, "⌫"},
    SpecialKey{38, "⌦"},          SpecialKey{117, "⌦"},    SpecialKey{40, "Esc"},      SpecialKey{53, "⎋"},
    SpecialKey{114, "Help"},      SpecialKey{115, "Home"}, SpecialKey{116, "Page Up"}, SpecialKey{119, "End"},
    SpecialKey{121, "Page Down"}, SpecialKey{123, "←"},    SpecialKey{124, "→"},       SpecialKey{125, "↓"},
    SpecialKey{126, "↑"},         SpecialKey{122, "F1"},   SpecialKey{120, "F2"},      SpecialKey{99, "F3"},
    SpecialKey{118, "F4"},        SpecialKey{96, "F5"},    SpecialKey{97, "F6"},       SpecialKey{98, "F7"},
    SpecialKey{100, "F8"},        SpecialKey{101, "F9"},   SpecialKey{109, "F10"},     SpecialKey{103, "F11"},
    SpecialKey{111, "F12"},       SpecialKey{105, "F13"},  SpecialKey{107, "F14"},     SpecialKey{113, "F15"},
    SpecialKey{106, "F16"},
};
static_assert(specialKeys.size() == 37);

/// Codes from here on are this program's own, for keys that the numbering leaves out; they bring their names.
constexpr std::uint16_t firstOwnCode = 0x1000;

} // namespace

QString keyName(std::uint16_t keyCode, const KeyboardLayout& layout) {
    const QString printed = layout.textOfKey(keyCode).trimmed();
    if (!printed.isEmpty())
        return printed.toUpper();
    const auto special = std::ranges::find(specialKeys, keyCode, &SpecialKey::keyCode);
    if (special != specialKeys.end())
        return QString::fromUtf8(special->label);
    if (const char* name = keyCode >= firstOwnCode ? virtualKeyName(keyCode) : nullptr)
        return QString::fromUtf8(name);
    return QStringLiteral("Key %1").arg(keyCode);
}

QStringList keyCaps(const HotkeyConfiguration& shortcut, const KeyboardLayout& layout) {
    static constexpr std::array<std::pair<std::uint64_t, const char*>, 4> modifiers{{
        {KeyModifier::command, "⌘"},
        {KeyModifier::option, "⌥"},
        {KeyModifier::control, "⌃"},
        {KeyModifier::shift, "⇧"},
    }};
    QStringList caps;
    for (const auto& [bit, symbol] : modifiers) {
        if (shortcut.modifiers & bit)
            caps << QString::fromUtf8(symbol);
    }
    if (shortcut.keyCode != 0)
        caps << keyName(shortcut.keyCode, layout);
    return caps;
}

bool isModifierOnly(const HotkeyConfiguration& shortcut) {
    return shortcut.keyCode == 0 && (shortcut.modifiers & KeyModifier::shortcutMask) != 0;
}

} // namespace framora

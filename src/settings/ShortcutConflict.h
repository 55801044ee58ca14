#pragma once

namespace framora {

class DesktopShortcuts;
struct HotkeyConfiguration;

/// Why a shortcut may not do what it says.
enum class ShortcutConflict {
    none,
    otherCapture, ///< Both captures have it.
    otherProgram, ///< The desktop, or another program, answers to it as well.
    bareKey       ///< No modifier, and a key that is pressed all day long.
};

ShortcutConflict findConflict(const HotkeyConfiguration& shortcut, const HotkeyConfiguration& otherCapture,
                              DesktopShortcuts& desktop);

} // namespace framora

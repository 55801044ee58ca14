#include "settings/ShortcutConflict.h"

#include "platform/DesktopShortcuts.h"
#include "platform/KeyMonitors.h"
#include "platform/VirtualKeyCodes.h"
#include "settings/HotkeyConfiguration.h"

namespace framora {

ShortcutConflict findConflict(const HotkeyConfiguration& shortcut, const HotkeyConfiguration& otherCapture,
                              DesktopShortcuts& desktop) {
    const std::uint64_t modifiers = shortcut.modifiers & KeyModifier::shortcutMask;
    if (shortcut.keyCode == otherCapture.keyCode &&
        modifiers == (otherCapture.modifiers & KeyModifier::shortcutMask))
        return ShortcutConflict::otherCapture;
    if (desktop.isTaken(shortcut.keyCode, modifiers))
        return ShortcutConflict::otherProgram;
    return modifiers == 0 && isForWriting(shortcut.keyCode) ? ShortcutConflict::bareKey
                                                            : ShortcutConflict::none;
}

} // namespace framora

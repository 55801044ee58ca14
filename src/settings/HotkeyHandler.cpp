#include "settings/HotkeyHandler.h"

namespace framora {

bool HotkeyHandler::matches(const KeyEvent& event) const {
    const std::uint64_t required = configuration.modifiers & KeyModifier::shortcutMask;
    return (event.modifierFlags & KeyModifier::shortcutMask) == required &&
           event.keyCode == configuration.keyCode;
}

} // namespace framora

#pragma once

#include <cstdint>

namespace framora {

/// A global shortcut.
struct HotkeyConfiguration {
    std::uint16_t keyCode = 0;   ///< Virtual key code: the key's position on a US keyboard.
    std::uint64_t modifiers = 0; ///< KeyModifier bits; kept whole, bits without a meaning included.

    friend bool operator==(const HotkeyConfiguration&, const HotkeyConfiguration&) = default;
};

} // namespace framora

#pragma once

#include <cstdint>

namespace framora {

/// The shortcuts that other programs have taken for themselves on this desktop.
class DesktopShortcuts {
public:
    virtual ~DesktopShortcuts() = default;
    /// Whether the desktop, or any other program, answers to that key with exactly these KeyModifier bits.
    /// False also where that cannot be known.
    virtual bool isTaken(std::uint16_t virtualKey, std::uint64_t modifiers) = 0;
};

} // namespace framora

#pragma once

#include <QString>
#include <cstdint>

namespace framora {

/// The keyboard layout in force. notifications::keyboardLayoutChanged is posted when another one takes its
/// place.
class KeyboardLayout {
public:
    virtual ~KeyboardLayout() = default;
    /// What the key prints without modifiers, a dead key its accent; white space counts as printed. Empty for
    /// a key that prints nothing, and where the layout cannot be asked.
    virtual QString textOfKey(std::uint16_t virtualKey) const = 0;
    /// The same with Shift held; empty also where nobody needs to know.
    virtual QString shiftedTextOfKey(std::uint16_t) const { return {}; }
};

} // namespace framora

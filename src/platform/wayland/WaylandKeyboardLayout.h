#pragma once

#include "platform/KeyboardLayout.h"

namespace framora {

/// The keymap that the compositor gives to its windows.
class WaylandKeyboardLayout final : public KeyboardLayout {
public:
    QString textOfKey(std::uint16_t) const override { return {}; }
};

} // namespace framora

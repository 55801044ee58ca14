#pragma once

#include "platform/KeyMonitors.h"
#include "settings/HotkeyConfiguration.h"

#include <functional>
#include <optional>

namespace framora {

/// One shortcut, what it does, and the monitors that wait for it.
struct HotkeyHandler {
    std::optional<KeyMonitors::Token> globalMonitor; ///< None while not registered, or where refused.
    std::optional<KeyMonitors::Token> localMonitor;
    HotkeyConfiguration configuration;
    std::function<void()> onPressed;

    /// Exactly the required modifiers of the shortcut mask, and the key. Caps lock and unknown bits don't
    /// matter.
    bool matches(const KeyEvent& event) const;
};

} // namespace framora

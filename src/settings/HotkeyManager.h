#pragma once

#include "settings/HotkeyHandler.h"

#include <optional>

namespace framora {

class UserDefaults;

/// Turns the two stored shortcuts into calls of their actions, whichever program is in front. Main thread
/// only.
class HotkeyManager {
public:
    /// Both outlive the manager. Destroying it leaves its monitors running: they hold their own actions.
    HotkeyManager(KeyMonitors& monitors, const UserDefaults& defaults);

    std::optional<HotkeyHandler> screenshotHandler; ///< Answers to Settings::hotkey.
    std::optional<HotkeyHandler> tabCaptureHandler; ///< Answers to Settings::tabCaptureHotkey.

    /// Installs every monitor anew, for the shortcuts that are stored now.
    void registerHotkeys();
    /// The handlers stay, with their actions.
    void removeMonitors();

private:
    void install(std::optional<HotkeyHandler>& handler, HotkeyConfiguration configuration);
    void remove(std::optional<HotkeyHandler>& handler);

    KeyMonitors& m_monitors;
    const UserDefaults& m_defaults;
};

} // namespace framora

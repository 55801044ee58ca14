#pragma once

#include "platform/KeyMonitors.h"
#include "settings/CaptureSound.h"
#include "settings/HotkeyConfiguration.h"

#include <algorithm>
#include <optional>
#include <string>

namespace framora {

class NotificationCenter;
class UserDefaults;

/// The one persisted record of user preferences. Every user loads a fresh copy, changes the fields it owns
/// and saves the whole record; the last writer wins.
struct Settings {
    static constexpr char storeKey[] = "Settings";

    HotkeyConfiguration hotkey{21, KeyModifier::shift | KeyModifier::option};           ///< Area capture.
    HotkeyConfiguration tabCaptureHotkey{17, KeyModifier::shift | KeyModifier::option}; ///< Window capture.
    bool showDockIcon = true;
    bool copyToClipboard = true; ///< Shown and kept; every capture goes through the clipboard anyway.
    bool soundEffectsEnabled = true;
    double soundEffectsVolume = 0.5; ///< 0 to 1.
    CaptureSound captureSound = CaptureSound::frog;

    friend bool operator==(const Settings&, const Settings&) = default;

    /// The stored record; the default one, whole, when there is none or it cannot be read.
    static Settings load(const UserDefaults& defaults);
    /// Stores the record and posts "SettingsChanged"; silently does neither when it cannot be written.
    void save(UserDefaults& defaults, NotificationCenter& notifications) const;

    /// soundEffectsVolume within 0...1: the file may say any number.
    double audibleVolume() const { return std::clamp(soundEffectsVolume, 0.0, 1.0); }

    /// Nothing for a volume that JSON has no number for.
    std::optional<std::string> encoded() const;
    /// Every member is required and of its own type; members of other names are ignored.
    static std::optional<Settings> decoded(const std::string& json);
};

} // namespace framora

#pragma once

#include "settings/CaptureSound.h"

#include <functional>

namespace framora {

class Appearance;
class DesktopShortcuts;
class KeyboardLayout;
class KeyMonitors;
class LoginItem;
class MainQueue;
class NotificationCenter;
class Permissions;
class PrivacyPanes;
class UserDefaults;

/// What the settings window asks of the rest of the program; all of it outlives the window.
struct SettingsServices {
    MainQueue& mainQueue;
    NotificationCenter& notifications;
    UserDefaults& defaults;
    KeyMonitors& keyMonitors;
    const KeyboardLayout& keyboardLayout;
    DesktopShortcuts& desktopShortcuts;
    Permissions& permissions;
    PrivacyPanes& privacyPanes;
    LoginItem& loginItem;
    const Appearance& appearance;
    std::function<void(CaptureSound, float volume)> playSound;
};

} // namespace framora

#pragma once

#include "platform/HandBinding.h"
#include "settings/CaptureSound.h"

#include <functional>

class QWindow;

namespace framora {

class Appearance;
class ComponentVersions;
class DesktopShortcuts;
class GlobalShortcuts;
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
    GlobalShortcuts& globalShortcuts;
    HandBinding handBinding;
    Permissions& permissions;
    PrivacyPanes& privacyPanes;
    LoginItem& loginItem;
    const Appearance& appearance;
    ComponentVersions& componentVersions;
    std::function<void(CaptureSound, float volume)> playSound;
    /// Told of the window each time it is brought forward.
    std::function<void(QWindow&)> orderedFront;
    bool canHideDockIcon = true; ///< Whether this desktop lets a program choose that.
};

} // namespace framora

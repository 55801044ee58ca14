#pragma once

#include "platform/CommandGate.h"
#include "platform/GlobalShortcuts.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"

#include <QByteArray>
#include <QImage>
#include <functional>
#include <vector>

namespace framora {

class Application;
class DesktopShortcuts;
class KeyMonitors;
class KeyboardLayout;
class Pasteboard;
class Permissions;
class PrivacyPanes;
class ScreenColorPicker;
class Screens;
class Sharing;
class ToastPanels;

/// The parts of the program that depend on what shows its windows, all of one kind: X11's or Wayland's. One
/// is chosen when the program starts, and nobody else asks which it is.
class WindowSystem {
public:
    /// What a window system is made of; all of it outlives the window system.
    struct Services {
        CommandGate& gate;
        NotificationCenter& notifications;
        MainQueue& mainQueue;
        /// A file's picture with its pixel ratio; null when it cannot be read.
        std::function<QImage(const QByteArray& file)> decodePicture;
        /// The global shortcuts that are stored now.
        std::function<std::vector<GlobalShortcut>()> wantedShortcuts;
    };

    virtual ~WindowSystem() = default;
    virtual KeyMonitors& keyMonitors() = 0;
    virtual GlobalShortcuts& globalShortcuts() = 0;
    virtual KeyboardLayout& keyboardLayout() = 0;
    virtual DesktopShortcuts& desktopShortcuts() = 0;
    virtual Pasteboard& pasteboard() = 0;
    virtual Screens& screens() = 0;
    virtual Permissions& permissions() = 0;
    virtual PrivacyPanes& privacyPanes() = 0;
    virtual Application& application() = 0;
    virtual ToastPanels& toastPanels() = 0;
    virtual ScreenColorPicker& colorPicker() = 0;
    virtual Sharing& sharing() = 0;
};

} // namespace framora

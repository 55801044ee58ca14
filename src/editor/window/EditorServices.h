#pragma once

#include <functional>
#include <memory>

namespace framora {

class Appearance;
class Application;
class BackgroundQueue;
class Clock;
class DesktopPictures;
class FilePanels;
class MainQueue;
class NotificationCenter;
class Pasteboard;
class ResourceBundle;
class ScreenColorPicker;
class Sharing;
class ToastManager;
class UserDefaults;

/// What the editor asks of the rest of the program; all of it outlives the editor.
struct EditorServices {
    MainQueue& mainQueue;
    Clock& clock;
    FilePanels& filePanels;
    const ResourceBundle& resources;
    NotificationCenter& notifications;
    Pasteboard& pasteboard;
    Application& application;
    const Appearance& appearance;
    std::function<std::unique_ptr<ToastManager>()> makeToastManager;
    BackgroundQueue& backgroundQueue;
    DesktopPictures& desktopPictures;
    Sharing* sharing = nullptr;               ///< Null where nothing can be shared.
    ScreenColorPicker* colorPicker = nullptr; ///< Null where no colour can be picked from the screen.
    UserDefaults* defaults = nullptr;         ///< Null where nothing is kept from one run to the next.
};

} // namespace framora

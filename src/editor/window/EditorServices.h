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
class Sharing;
class ToastManager;

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
    Sharing* sharing = nullptr; ///< Null where nothing can be shared.
};

} // namespace framora

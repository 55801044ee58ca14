#include "app/framora_App.h"

#include "app/AppDelegate.h"
#include "app/ApplicationIcon.h"
#include "editor/render/PictureFile.h"
#include "editor/window/EditorModule.h"
#include "editor/window/EditorServices.h"
#include "feedback/SoundManager.h"
#include "platform/desktop/AutostartEntry.h"
#include "platform/desktop/ConfiguredDesktopPictures.h"
#include "platform/desktop/DecoderVersions.h"
#include "platform/desktop/DesktopAppearance.h"
#include "platform/desktop/DesktopPrivacyPanes.h"
#include "platform/desktop/FileResourceBundle.h"
#include "platform/desktop/JsonFileDefaults.h"
#include "platform/desktop/LazySoundOutput.h"
#include "platform/desktop/ModuleLoader.h"
#include "platform/desktop/PortalSharing.h"
#include "platform/desktop/ProcessCaptureTool.h"
#include "platform/desktop/QtFilePanels.h"
#include "platform/desktop/QtMainQueue.h"
#include "platform/desktop/SystemClock.h"
#include "platform/desktop/TerminationSignals.h"
#include "platform/desktop/ThreadBackgroundQueue.h"
#include "platform/desktop/TrayStatusBar.h"
#include "platform/x11/X11Application.h"
#include "platform/x11/X11DesktopShortcuts.h"
#include "platform/x11/X11KeyMonitors.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Pasteboard.h"
#include "platform/x11/X11Permissions.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11ToastPanels.h"
#include "settings/Settings.h"
#include "settings/SettingsServices.h"
#include "settings/window/SettingsModule.h"

#include <QGuiApplication>

namespace framora {

/// The real parts, in the order in which they need one another.
struct framora_App::Desktop {
    CommandGate gate;
    NotificationCenter notifications;
    SystemClock clock;
    QtMainQueue mainQueue{gate};
    JsonFileDefaults defaults{JsonFileDefaults::defaultPath()};
    FileResourceBundle resources;
    QtFilePanels filePanels;
    PortalSharing sharing;
    DesktopAppearance appearance{notifications};
    LazySoundOutput soundOutput;
    X11Connection connection;
    X11KeyMonitors keyMonitors{connection, gate};
    X11Pasteboard pasteboard{connection, [](const QByteArray& file) { return loadPicture(file).image; }};
    X11Screens screens{connection};
    X11Permissions permissions{keyMonitors};
    X11KeyboardLayout keyboardLayout{connection, notifications};
    X11DesktopShortcuts desktopShortcuts{connection};
    DesktopPrivacyPanes privacyPanes;
    AutostartEntry loginItem = AutostartEntry::ofUser();
    DecoderVersions componentVersions;
    X11Application application{connection, notifications};
    X11ToastPanels toastPanels{mainQueue};
    ThreadBackgroundQueue backgroundQueue{mainQueue};
    ConfiguredDesktopPictures desktopPictures{screens};
    ProcessCaptureTool captureTool{gate, ProcessCaptureTool::defaultExecutable(), [this](bool screenIsTaken) {
                                       if (screenIsTaken) {
                                           toastPanels.withdraw();
                                           if (Settings::load(defaults).soundEffectsEnabled)
                                               soundOutput.prepare();
                                       } else // After the capture's own toast has replaced the earlier one.
                                           mainQueue.async([this] { toastPanels.restore(); });
                                   }};
    TrayStatusBar statusBar{gate, appearance, notifications};
    TerminationSignals terminationSignals;

    ToastServices toastServices() {
        return {mainQueue, toastPanels, screens, appearance, [this](const QImage& image) {
                    // In a turn of its own: a capture that is just starting comes first, and the toast's
                    // own code does not wait while the editor loads.
                    mainQueue.async([this, image] {
                        if (auto* opened = loadedEditor()) {
                            opened->edit(image);
                        } else {
                            sayModuleIsMissing();
                        }
                    });
                }};
    }

    void sayModuleIsMissing() {
        errorToast = std::make_unique<ToastManager>(toastServices());
        errorToast->showError();
    }

    /// Before the first window: a program that only sits in the tray draws no icon for windows.
    static void provideWindowIcon() {
        if (QGuiApplication::windowIcon().isNull())
            QGuiApplication::setWindowIcon(applicationIcon());
    }

    /// What makes windows, loaded with the first of them. Null where it is missing from the installation.
    static void* windowsFunction(const char* name) {
        provideWindowIcon();
        return moduleFunction("framora-windows", name);
    }

    Editor* loadedEditor() {
        if (!editor) {
            const auto make = reinterpret_cast<MakeEditor*>(windowsFunction(makeEditorName));
            if (make)
                editor.reset(
                    make({mainQueue, clock, filePanels, resources, notifications, pasteboard, application,
                          appearance, [this] { return std::make_unique<ToastManager>(toastServices()); },
                          backgroundQueue, desktopPictures, &sharing}));
        }
        return editor.get();
    }

    std::unique_ptr<SettingsWindow> makeSettingsWindow(std::function<void()> onWillClose) {
        const auto make = reinterpret_cast<MakeSettingsWindow*>(windowsFunction(makeSettingsWindowName));
        if (!make) {
            sayModuleIsMissing();
            return nullptr;
        }
        soundOutput.prepare(); // One can be tried there.
        return std::unique_ptr<SettingsWindow>(
            make({mainQueue, notifications, defaults, keyMonitors, keyboardLayout, desktopShortcuts,
                  permissions, privacyPanes, loginItem, appearance, componentVersions,
                  [](CaptureSound sound, float volume) { SoundManager::shared().play(sound, volume); },
                  [this](QWindow& window) { application.setFrontWindow(window); }},
                 std::move(onWillClose)));
    }

    std::unique_ptr<Editor> editor; ///< Loaded with the first picture to edit.
    std::unique_ptr<ToastManager> errorToast;
};

framora_App::framora_App() : m_desktop(std::make_unique<Desktop>()) {
    Desktop& desktop = *m_desktop;
    SoundManager::setSharedOutput(desktop.soundOutput);
    _appDelegate = std::make_unique<AppDelegate>(AppServices{
        desktop.mainQueue, desktop.clock, desktop.notifications, desktop.defaults, desktop.keyMonitors,
        desktop.pasteboard, desktop.captureTool, desktop.statusBar, desktop.permissions, desktop.application,
        SoundManager::shared(), desktop.toastServices(), [&desktop](std::function<void()> onWillClose) {
            return desktop.makeSettingsWindow(std::move(onWillClose));
        }});
}

framora_App::~framora_App() {
    // The shared manager outlives everything here.
    SoundManager::endSharedOutput();
}

void framora_App::launch() {
    m_desktop->appearance.colorApplication();
    m_desktop->loginItem.followProgram();
    _appDelegate->applicationDidFinishLaunching();
}

void framora_App::raiseWindows() {
    if (!m_desktop->gate.isOpen())
        return;
    const bool editorIsOpen = m_desktop->editor && m_desktop->editor->isOpen();
    // Where no tray shows the program, starting it again is the way to its preferences.
    if (_appDelegate->settingsWindow() || !editorIsOpen)
        _appDelegate->openSettings();
    if (editorIsOpen) {
        m_desktop->editor->raise();
        m_desktop->application.activate();
    }
}

} // namespace framora

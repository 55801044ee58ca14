#include "app/framora_App.h"

#include "app/AppDelegate.h"
#include "app/FirstStart.h"
#include "editor/render/PictureFile.h"
#include "editor/window/EditorModule.h"
#include "editor/window/EditorServices.h"
#include "editor/window/SharedPictures.h"
#include "feedback/SoundManager.h"
#include "platform/Application.h"
#include "platform/Localized.h"
#include "platform/Notifications.h"
#include "platform/Pasteboard.h"
#include "platform/ScreenColorPicker.h"
#include "platform/ToastPanel.h"
#include "platform/desktop/AutostartEntry.h"
#include "platform/desktop/ConfiguredDesktopPictures.h"
#include "platform/desktop/CurrentDesktop.h"
#include "platform/desktop/DecoderVersions.h"
#include "platform/desktop/DesktopAppearance.h"
#include "platform/desktop/FileResourceBundle.h"
#include "platform/desktop/JsonFileDefaults.h"
#include "platform/desktop/LazySoundOutput.h"
#include "platform/desktop/ModuleLoader.h"
#include "platform/desktop/ProcessCaptureTool.h"
#include "platform/desktop/QtFilePanels.h"
#include "platform/desktop/QtMainQueue.h"
#include "platform/desktop/SystemClock.h"
#include "platform/desktop/TerminationSignals.h"
#include "platform/desktop/ThreadBackgroundQueue.h"
#include "platform/desktop/TrayStatusBar.h"
#include "settings/Settings.h"
#include "settings/SettingsServices.h"
#include "settings/window/SettingsModule.h"

#include <QGuiApplication>
#include <QIcon>
#include <QProcess>
#include <algorithm>

namespace framora {

namespace {

/// Tells a process that it was started in place of another.
constexpr char startedAgainVariable[] = "FRAMORA_STARTED_AGAIN";
constexpr qint64 shortestLifeMilliseconds = 60000;

} // namespace

/// The real parts, in the order in which they need one another.
struct framora_App::Desktop {
    explicit Desktop(const WindowSystemFactory& makeWindowSystem)
        : windows(makeWindowSystem({gate, notifications, mainQueue,
                                    [](const QByteArray& file) { return loadPicture(file).image; },
                                    [this] { return wantedShortcuts(); }})) {}

    std::vector<GlobalShortcut> wantedShortcuts() const {
        const Settings settings = Settings::load(defaults);
        const auto wanted = [](const char* id, const char* name, const HotkeyConfiguration& keys) {
            return GlobalShortcut{QString::fromLatin1(id), localized(QString::fromLatin1(name)), keys.keyCode,
                                  keys.modifiers};
        };
        return {wanted(shortcutId::captureArea, "screenshot", settings.hotkey),
                wanted(shortcutId::captureWindow, "window capture", settings.tabCaptureHotkey)};
    }

    CommandGate gate;
    NotificationCenter notifications;
    SystemClock clock;
    QtMainQueue mainQueue{gate};
    JsonFileDefaults defaults{JsonFileDefaults::defaultPath()};
    FileResourceBundle resources;
    QtFilePanels filePanels;
    DesktopAppearance appearance{notifications};
    LazySoundOutput soundOutput;
    std::unique_ptr<WindowSystem> windows;
    AutostartEntry loginItem = AutostartEntry::ofUser();
    DecoderVersions componentVersions;
    ThreadBackgroundQueue backgroundQueue{mainQueue};
    ConfiguredDesktopPictures desktopPictures{windows->screens()};
    ProcessCaptureTool captureTool{
        gate,
        ProcessCaptureTool::defaultExecutable(),
        {[this](bool isTaken) { screenTaken(isTaken); },
         [this](const QByteArray& png) { windows->pasteboard().adoptPicture(png); },
         [this] { return windows->application().takeActivationToken(); }}};
    TrayStatusBar statusBar{gate, appearance, notifications, [this](const QString& token) {
                                windows->application().useActivationToken(token);
                            }};
    TerminationSignals terminationSignals;

    void screenTaken(bool isTaken) {
        if (isTaken) {
            // Pointer and keys are the tool's, and so is what the screen shows.
            windows->colorPicker().dismiss();
            windows->toastPanels().withdraw();
            if (Settings::load(defaults).soundEffectsEnabled)
                soundOutput.prepare();
        } else // After the capture's own toast has replaced the earlier one.
            mainQueue.async([this] { windows->toastPanels().restore(); });
    }

    ToastServices toastServices() {
        return {mainQueue, windows->toastPanels(), windows->screens(), appearance,
                [this](const QImage& image) {
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

    /// Before the first window: a program that only sits in the tray draws no icon for windows. It is the
    /// drawing that the desktop entry shows.
    static void provideWindowIcon() {
        if (QGuiApplication::windowIcon().isNull())
            QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/org.framora.Framora.svg")));
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
                    make({mainQueue, clock, filePanels, resources, notifications, windows->pasteboard(),
                          windows->application(), appearance,
                          [this] { return std::make_unique<ToastManager>(toastServices()); }, backgroundQueue,
                          desktopPictures, &windows->sharing(), &windows->colorPicker(), &defaults}));
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
            make({mainQueue, notifications, defaults, windows->keyMonitors(), windows->keyboardLayout(),
                  windows->desktopShortcuts(), windows->globalShortcuts(), handBindingOfDesktop(),
                  windows->permissions(), windows->privacyPanes(), loginItem, appearance, componentVersions,
                  [](CaptureSound sound, float volume) { SoundManager::shared().play(sound, volume); },
                  [this](QWindow& window) { windows->application().setFrontWindow(window); },
                  windows->application().hasActivationPolicies()},
                 std::move(onWillClose)));
    }

    std::unique_ptr<Editor> editor; ///< Loaded with the first picture to edit.
    std::unique_ptr<ToastManager> errorToast;
};

framora_App::framora_App(const WindowSystemFactory& makeWindowSystem)
    : m_desktop(std::make_unique<Desktop>(makeWindowSystem)) {
    Desktop& desktop = *m_desktop;
    WindowSystem& windows = *desktop.windows;
    SoundManager::setSharedOutput(desktop.soundOutput);
    _appDelegate = std::make_unique<AppDelegate>(
        AppServices{desktop.mainQueue, desktop.clock, desktop.notifications, desktop.defaults,
                    windows.keyMonitors(), windows.pasteboard(), desktop.captureTool, desktop.statusBar,
                    windows.permissions(), windows.application(), SoundManager::shared(),
                    desktop.toastServices(), [&desktop](std::function<void()> onWillClose) {
                        return desktop.makeSettingsWindow(std::move(onWillClose));
                    }});
}

framora_App::~framora_App() {
    // The shared manager outlives everything here.
    SoundManager::endSharedOutput();
}

void framora_App::launch() {
    m_age.start();
    m_connectionEnded = m_desktop->notifications.observe(
        notifications::connectionEnded,
        [this, wasStartedAgain = qEnvironmentVariableIsSet(startedAgainVariable)] {
            // One that is refused as soon as it runs would start again and again.
            const qint64 rest =
                wasStartedAgain ? std::max<qint64>(0, shortestLifeMilliseconds - m_age.elapsed()) : 0;
            m_desktop->mainQueue.asyncAfter(double(rest) / 1000.0, [this] { quitToStartAgain(); });
        });
    qunsetenv(startedAgainVariable);
    m_desktop->appearance.colorApplication();
    m_desktop->loginItem.followProgram();
    _appDelegate->applicationDidFinishLaunching();
    m_firstStart = std::make_unique<FirstStart>(
        FirstStart::Services{m_desktop->mainQueue, m_desktop->defaults, m_desktop->notifications,
                             m_desktop->windows->globalShortcuts(), m_desktop->statusBar,
                             [this] { _appDelegate->openSettings(); }});
}

void framora_App::perform(ProgramCommand command, const QString& activationToken) {
    m_firstStart.reset();
    // Obeyed also while a capture is open, which ends as if it were cancelled.
    if (command == ProgramCommand::quit) {
        _appDelegate->quitApp();
        return;
    }
    if (!m_desktop->gate.isOpen())
        return;
    // Whoever brought the command is answered first. What closes the gate meanwhile comes before it.
    m_desktop->mainQueue.async([this, command, activationToken, closings = m_desktop->gate.closings()] {
        if (m_desktop->gate.closings() != closings)
            return;
        if (!activationToken.isEmpty())
            m_desktop->windows->application().useActivationToken(activationToken);
        switch (command) {
        case ProgramCommand::activate:
            raiseWindows();
            break;
        case ProgramCommand::captureArea:
            _appDelegate->screenshotCapture();
            break;
        case ProgramCommand::captureWindow:
            _appDelegate->tabCapture();
            break;
        case ProgramCommand::settings:
            _appDelegate->openSettings();
            break;
        case ProgramCommand::quit:
            break;
        }
    });
}

void framora_App::quitToStartAgain() {
    const bool editorIsOpen = m_desktop->editor && m_desktop->editor->isOpen();
    if (editorIsOpen || _appDelegate->settingsWindow()) {
        m_desktop->mainQueue.asyncAfter(1.0, [this] { quitToStartAgain(); });
        return;
    }
    m_isToStartAgain = true;
    // Nobody asked for it, and a mail program may not have read its picture yet.
    qApp->setProperty(SharedPictures::outliveProgram, true);
    _appDelegate->quitApp();
}

void framora_App::startAgain() {
    qputenv(startedAgainVariable, "1");
    if (!QProcess::startDetached(QCoreApplication::applicationFilePath(), {}))
        qWarning("framora: it cannot be started again");
}

void framora_App::raiseWindows() {
    const bool editorIsOpen = m_desktop->editor && m_desktop->editor->isOpen();
    // Where no tray shows the program, starting it again is the way to its preferences.
    if (_appDelegate->settingsWindow() || !editorIsOpen)
        _appDelegate->openSettings();
    if (editorIsOpen) {
        m_desktop->editor->raise();
        m_desktop->windows->application().activate();
    }
}

} // namespace framora

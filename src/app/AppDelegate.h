#pragma once

#include "app/CaptureFlow.h"
#include "feedback/ToastManager.h"
#include "platform/MainQueue.h"
#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"
#include "settings/HotkeyManager.h"
#include "settings/SettingsWindow.h"

#include <memory>
#include <optional>
#include <vector>

namespace framora {

class Application;
class Clock;
class Permissions;

/// Everything the shell asks of the desktop; all of it outlives the delegate.
struct AppServices {
    MainQueue& mainQueue;
    Clock& clock;
    NotificationCenter& notifications;
    UserDefaults& defaults;
    KeyMonitors& keyMonitors;
    Pasteboard& pasteboard;
    CaptureTool& captureTool;
    StatusBar& statusBar;
    Permissions& permissions;
    Application& application;
    SoundManager& sounds;
    ToastServices toasts;
    SettingsWindowFactory makeSettingsWindow;
};

/// The controller of the whole shell: the status item and its menu, the two shortcuts and their captures, the
/// poll of the permissions, the settings window, the task-bar setting. Main thread only.
class AppDelegate {
public:
    explicit AppDelegate(AppServices services);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    void applicationDidFinishLaunching();

    void screenshotCapture();
    void tabCapture();
    void openSettings();
    void quitApp();
    void dockIconChanged();
    void hotkeyChanged();
    void accessibilityPermissionsGranted();
    void applicationDidBecomeActive();

    SettingsWindow* settingsWindow() const { return m_settingsWindow.get(); }

private:
    void capture(const CaptureFlowRow& row);
    void buildStatusItem();
    void registerShortcuts();
    void observeNotifications();
    void startPermissionMonitoring();
    void checkPermissions();
    bool queryScreenRecording();
    void queueHotkeyRegistration();
    void settingsWindowCloses();
    /// A callback that does nothing once the delegate is gone.
    std::function<void()> weakly(void (AppDelegate::*method)());

    AppServices m_services;
    std::unique_ptr<StatusItem> m_statusItem;
    ToastManager m_toastManager;
    std::unique_ptr<SettingsWindow> m_settingsWindow;
    std::vector<std::unique_ptr<SettingsWindow>> m_closingSettingsWindows;
    HotkeyManager m_hotkeyManager;
    std::unique_ptr<WorkItem> m_permissionsCheckTimer;
    bool m_lastAccessibilityStatus = false;
    bool m_lastScreenRecordingStatus = false;
    std::optional<double> m_lastScreenRecordingCheckTime; ///< seconds since 1970

    unsigned m_settingsWindowNumber = 0;
    bool m_isCapturing = false;
    std::vector<NotificationCenter::Token> m_observers;
    std::shared_ptr<AppDelegate*> m_self;
};

} // namespace framora

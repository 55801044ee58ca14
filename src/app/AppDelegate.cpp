#include "app/AppDelegate.h"

#include "platform/Application.h"
#include "platform/Clock.h"
#include "platform/Localized.h"
#include "platform/Notifications.h"
#include "platform/Permissions.h"
#include "settings/Settings.h"

namespace framora {

namespace {

constexpr double permissionsCheckInterval = 1.0;
/// Asking whether the screen may be captured is slow on some desktops.
constexpr double screenRecordingCheckInterval = 10.0;
constexpr double statusSymbolPointSize = 17.0;

} // namespace

AppDelegate::AppDelegate(AppServices services)
    : m_services(std::move(services)), m_toastManager(m_services.toasts),
      m_hotkeyManager(m_services.keyMonitors, m_services.defaults),
      m_self(std::make_shared<AppDelegate*>(this)) {}

AppDelegate::~AppDelegate() {
    // The monitors hold what the desktop calls; they must not outlast what they act on.
    m_hotkeyManager.removeMonitors();
}

std::function<void()> AppDelegate::weakly(void (AppDelegate::*method)()) {
    return [weak = std::weak_ptr(m_self), method] {
        if (const auto self = weak.lock())
            ((*self)->*method)();
    };
}

void AppDelegate::applicationDidFinishLaunching() {
    buildStatusItem();
    if (m_services.permissions.isAccessibilityTrusted())
        queueHotkeyRegistration();
    m_services.permissions.canCaptureScreen();
    registerShortcuts();
    observeNotifications();
    startPermissionMonitoring();
    dockIconChanged();
}

void AppDelegate::buildStatusItem() {
    m_statusItem = m_services.statusBar.makeStatusItem();
    if (!m_statusItem)
        return;
    m_statusItem->setSymbol(QStringLiteral("f.square.fill"), QStringLiteral("Framora"),
                            statusSymbolPointSize);
    m_statusItem->setMenu({
        {localized(QStringLiteral("screenshot")), weakly(&AppDelegate::screenshotCapture), {}},
        {localized(QStringLiteral("window capture")), weakly(&AppDelegate::tabCapture), {}},
        {localized(QStringLiteral("preferences")), weakly(&AppDelegate::openSettings), QStringLiteral(",")},
        {localized(QStringLiteral("quit")), weakly(&AppDelegate::quitApp), QStringLiteral("q")},
    });
}

void AppDelegate::registerShortcuts() {
    const Settings settings = Settings::load(m_services.defaults);
    m_hotkeyManager.screenshotHandler =
        HotkeyHandler{{}, {}, settings.hotkey, weakly(&AppDelegate::screenshotCapture)};
    m_hotkeyManager.tabCaptureHandler =
        HotkeyHandler{{}, {}, settings.tabCaptureHotkey, weakly(&AppDelegate::tabCapture)};
    m_hotkeyManager.registerHotkeys();
}

void AppDelegate::observeNotifications() {
    const auto observe = [this](const char* name, void (AppDelegate::*method)()) {
        m_observers.push_back(m_services.notifications.observe(name, [this, method] { (this->*method)(); }));
    };
    observe(notifications::dockIconChanged, &AppDelegate::dockIconChanged);
    observe(notifications::hotkeyConfigurationChanged, &AppDelegate::hotkeyChanged);
    observe(notifications::accessibilityPermissionsGranted, &AppDelegate::accessibilityPermissionsGranted);
    observe(notifications::applicationDidBecomeActive, &AppDelegate::applicationDidBecomeActive);
}

void AppDelegate::startPermissionMonitoring() {
    m_lastAccessibilityStatus = m_services.permissions.isAccessibilityTrusted();
    m_lastScreenRecordingStatus = m_services.permissions.canCaptureScreen();
    if (m_lastAccessibilityStatus)
        queueHotkeyRegistration();
    m_permissionsCheckTimer =
        m_services.mainQueue.every(permissionsCheckInterval, weakly(&AppDelegate::checkPermissions));
}

void AppDelegate::queueHotkeyRegistration() {
    m_services.mainQueue.async(weakly(&AppDelegate::hotkeyChanged));
}

bool AppDelegate::queryScreenRecording() {
    // A grant, once seen, is kept for the life of the process.
    if (m_lastScreenRecordingStatus)
        return true;
    const double now = m_services.clock.secondsSince1970();
    if (m_lastScreenRecordingCheckTime &&
        now - *m_lastScreenRecordingCheckTime <= screenRecordingCheckInterval)
        return false;
    const bool granted = m_services.permissions.canCaptureScreen();
    m_lastScreenRecordingCheckTime = now;
    return granted;
}

void AppDelegate::checkPermissions() {
    const bool trusted = m_services.permissions.isAccessibilityTrusted();
    const bool canRecord = queryScreenRecording();
    if (trusted != m_lastAccessibilityStatus) {
        m_lastAccessibilityStatus = trusted;
        m_services.mainQueue.async([weak = std::weak_ptr(m_self), trusted] {
            const auto self = weak.lock();
            if (!self)
                return;
            AppDelegate& delegate = **self;
            if (trusted) {
                delegate.m_hotkeyManager.registerHotkeys();
                delegate.m_services.notifications.post(notifications::accessibilityPermissionsGranted);
            }
            delegate.m_services.notifications.post(notifications::permissionsStatusChanged);
        });
    }
    if (canRecord != m_lastScreenRecordingStatus) {
        m_lastScreenRecordingStatus = canRecord;
        m_services.mainQueue.async(
            [&center = m_services.notifications] { center.post(notifications::permissionsStatusChanged); });
    }
}

void AppDelegate::screenshotCapture() {
    capture(CaptureFlowRow::area());
}

void AppDelegate::tabCapture() {
    capture(CaptureFlowRow::window());
}

void AppDelegate::capture(const CaptureFlowRow& row) {
    // One at a time, even where a command finds its way in while the first one waits.
    if (m_isCapturing)
        return;
    m_isCapturing = true;
    runCaptureFlow(row, {m_services.pasteboard, m_services.captureTool, m_services.defaults,
                         m_services.sounds, m_toastManager});
    m_isCapturing = false;
}

void AppDelegate::openSettings() {
    if (!m_settingsWindow) {
        // What an earlier window still has to say about its closing does not concern this one.
        const auto number = ++m_settingsWindowNumber;
        m_settingsWindow = m_services.makeSettingsWindow([weak = std::weak_ptr(m_self), number] {
            const auto self = weak.lock();
            if (self && (*self)->m_settingsWindowNumber == number)
                (*self)->settingsWindowCloses();
        });
        if (!m_settingsWindow)
            return;
        m_settingsWindow->center();
    }
    m_settingsWindow->makeKeyAndOrderFront();
    m_services.application.activate();
}

void AppDelegate::settingsWindowCloses() {
    if (!m_settingsWindow)
        return;
    // Gone from here at once, and from memory once its own handlers have returned.
    m_closingSettingsWindows.push_back(std::move(m_settingsWindow));
    m_services.mainQueue.async([weak = std::weak_ptr(m_self)] {
        if (const auto self = weak.lock())
            (*self)->m_closingSettingsWindows.clear();
    });
}

void AppDelegate::quitApp() {
    m_services.application.terminate();
}

void AppDelegate::dockIconChanged() {
    m_services.application.setActivationPolicy(Settings::load(m_services.defaults).showDockIcon
                                                   ? ActivationPolicy::regular
                                                   : ActivationPolicy::accessory);
}

void AppDelegate::hotkeyChanged() {
    m_hotkeyManager.registerHotkeys();
}

void AppDelegate::accessibilityPermissionsGranted() {
    m_hotkeyManager.registerHotkeys();
}

void AppDelegate::applicationDidBecomeActive() {
    checkPermissions();
}

} // namespace framora

#include "settings/PermissionsMonitor.h"

#include "platform/GlobalShortcuts.h"
#include "platform/Localized.h"
#include "platform/MainQueue.h"
#include "platform/Notifications.h"
#include "platform/Permissions.h"
#include "settings/SettingsServices.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPointer>
#include <QWindow>

namespace framora {
namespace {

constexpr double pollInterval = 1.0;
/// Lets the desktop's own question come up first.
constexpr double paneDelay = 0.5;

/// Where the user pressed a button. The focus may still be on its way to a window that has just come up.
QWindow* windowInUse() {
    if (QWindow* const focused = QGuiApplication::focusWindow())
        return focused;
    for (QWindow* const window : QGuiApplication::topLevelWindows())
        if (window->isVisible())
            return window;
    return nullptr;
}

} // namespace

bool openPrivacyPane(PrivacyPanes& panes, PrivacyPane pane) {
    return panes.openPage(pane) || panes.openPrivacyOverview() || panes.openSettingsProgram();
}

PermissionsMonitor::PermissionsMonitor(const SettingsServices& services)
    : m_mainQueue(services.mainQueue), m_notifications(services.notifications),
      m_permissions(services.permissions), m_panes(services.privacyPanes),
      m_shortcuts(services.globalShortcuts), m_isSway(services.handBinding.kind == HandBinding::Kind::sway),
      m_shortcutsObserver(
          m_notifications.observe(notifications::shortcutBindingsChanged, [this] { Q_EMIT changed(); })) {}

PermissionsMonitor::~PermissionsMonitor() = default;

QString PermissionsMonitor::accessibilityDescription() const {
    switch (m_shortcuts.route()) {
    case GlobalShortcuts::Route::byHand:
        return localized(QStringLiteral("accessibility.by.hand"));
    case GlobalShortcuts::Route::refused:
        return localized(QStringLiteral("accessibility.refused"));
    case GlobalShortcuts::Route::watching:
    case GlobalShortcuts::Route::desktop:
        break;
    }
    return localized(QStringLiteral("accessibility.description"));
}

bool PermissionsMonitor::canGrantAccessibility() const {
    // A compositor that is configured by a file has no page to open.
    return !(m_isSway && m_shortcuts.route() == GlobalShortcuts::Route::byHand);
}

QString PermissionsMonitor::screenRecordingDescription() const {
    return localized(m_commandToForgetDenial.isEmpty() ? QStringLiteral("screen.recording.description")
                                                       : QStringLiteral("screen.recording.denied"));
}

void PermissionsMonitor::copyCommandToForgetDenial() const {
    QGuiApplication::clipboard()->setText(m_commandToForgetDenial);
}

void PermissionsMonitor::checkPermissions() {
    const bool trusted = m_permissions.isAccessibilityTrusted();
    const bool canRecord = m_permissions.canCaptureScreen();
    const QString forget = m_permissions.commandToForgetDenial();
    const bool differs = trusted != m_hasAccessibility || canRecord != m_hasScreenRecording ||
                         forget != m_commandToForgetDenial;
    if (trusted != m_hasAccessibility) {
        m_hasAccessibility = trusted;
        if (trusted)
            m_notifications.post(notifications::accessibilityPermissionsGranted);
    }
    m_hasScreenRecording = canRecord;
    m_commandToForgetDenial = forget;
    if (m_hasAccessibility && m_hasScreenRecording) {
        m_timerSubscription.reset();
        m_appActiveSubscription.reset();
    }
    if (differs)
        Q_EMIT changed();
}

void PermissionsMonitor::appear() {
    checkPermissions();
    m_timerSubscription = m_mainQueue.every(pollInterval, [this] { checkPermissions(); });
    m_appActiveSubscription =
        m_notifications.observe(notifications::applicationDidBecomeActive, [this] { checkPermissions(); });
    m_permissionsStatusSubscription =
        m_notifications.observe(notifications::permissionsStatusChanged, [this] {
            m_mainQueue.async([self = QPointer(this)] {
                // Not for a section that has gone in the meantime.
                if (self && self->m_permissionsStatusSubscription)
                    self->checkPermissions();
            });
        });
}

void PermissionsMonitor::disappear() {
    m_timerSubscription.reset();
    m_appActiveSubscription.reset();
    m_permissionsStatusSubscription.reset();
}

void PermissionsMonitor::grantAccessibility() {
    m_permissions.requestAccessibility();
    // Also where the section has gone meanwhile, to show what the desktop asks.
    m_mainQueue.asyncAfter(paneDelay, [self = QPointer(this), &panes = m_panes] {
        if (!openPrivacyPane(panes, PrivacyPane::accessibility) && self)
            Q_EMIT self->noSettingsToOpen();
    });
}

void PermissionsMonitor::grantScreenRecording() {
    if (!m_permissions.requestScreenCapture(windowInUse()))
        openPrivacyPane(m_panes, PrivacyPane::screenCapture);
}

} // namespace framora

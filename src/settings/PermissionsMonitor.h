#pragma once

#include "platform/NotificationCenter.h"
#include "platform/PrivacyPanes.h"

#include <QObject>
#include <memory>
#include <optional>

namespace framora {

class GlobalShortcuts;
class MainQueue;
class Permissions;
class WorkItem;
struct SettingsServices;

/// Opens the pane by the nearest route there is: the page itself, the page about privacy, the settings
/// program. False when there is none.
bool openPrivacyPane(PrivacyPanes& panes, PrivacyPane pane);

/// The two permissions as the settings show them. Kept current while they are on screen: by a poll until both
/// are given, and by what the rest of the program finds out.
class PermissionsMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasAccessibility READ hasAccessibility NOTIFY changed FINAL)
    Q_PROPERTY(bool hasScreenRecording READ hasScreenRecording NOTIFY changed FINAL)
    /// What the lack of the accessibility permission means on this desktop.
    Q_PROPERTY(QString accessibilityDescription READ accessibilityDescription NOTIFY changed FINAL)
    /// Whether there is anything that the permission's button could bring about.
    Q_PROPERTY(bool canGrantAccessibility READ canGrantAccessibility NOTIFY changed FINAL)
    /// What the lack of the screen-recording permission means on this desktop.
    Q_PROPERTY(QString screenRecordingDescription READ screenRecordingDescription NOTIFY changed FINAL)
    /// The line by which the user has the desktop ask again; empty where it would ask by itself.
    Q_PROPERTY(QString commandToForgetDenial READ commandToForgetDenial NOTIFY changed FINAL)

public:
    /// The services outlive the monitor.
    explicit PermissionsMonitor(const SettingsServices& services);
    ~PermissionsMonitor() override;

    bool hasAccessibility() const { return m_hasAccessibility; }
    bool hasScreenRecording() const { return m_hasScreenRecording; }
    QString accessibilityDescription() const;
    bool canGrantAccessibility() const;
    QString screenRecordingDescription() const;
    QString commandToForgetDenial() const { return m_commandToForgetDenial; }
    bool isPolling() const { return m_timerSubscription != nullptr; }

    /// The section comes on screen, or leaves it.
    Q_INVOKABLE void appear();
    Q_INVOKABLE void disappear();

    /// Lets the desktop ask, and opens its settings half a second later.
    Q_INVOKABLE void grantAccessibility();
    /// Lets the desktop ask in front of the window with the focus, or opens its settings where it does not
    /// ask.
    Q_INVOKABLE void grantScreenRecording();
    /// Puts commandToForgetDenial on the clipboard.
    Q_INVOKABLE void copyCommandToForgetDenial() const;

Q_SIGNALS:
    void changed();
    /// The user wants to give the accessibility permission, and this desktop has no settings to do it in.
    void noSettingsToOpen();

private:
    void checkPermissions();

    MainQueue& m_mainQueue;
    NotificationCenter& m_notifications;
    Permissions& m_permissions;
    PrivacyPanes& m_panes;
    const GlobalShortcuts& m_shortcuts;
    bool m_isSway;
    NotificationCenter::Token m_shortcutsObserver;
    bool m_hasAccessibility = false;
    bool m_hasScreenRecording = false;
    QString m_commandToForgetDenial;
    std::unique_ptr<WorkItem> m_timerSubscription;
    std::optional<NotificationCenter::Token> m_appActiveSubscription;
    std::optional<NotificationCenter::Token> m_permissionsStatusSubscription;
};

} // namespace framora

#pragma once

#include "settings/PermissionsMonitor.h"
#include "settings/Settings.h"
#include "settings/SettingsServices.h"
#include "settings/ShortcutBinding.h"
#include "settings/ShortcutRecorder.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>
#include <memory>
#include <vector>

namespace framora {

/// What one showing of the settings pane holds: its own copy of the settings, loaded when it is made, and
/// what its sections need. Every change is stored and announced at once.
class SettingsForm final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool showDockIcon READ showDockIcon WRITE setShowDockIcon NOTIFY settingsChanged FINAL)
    /// Whether the setting above does anything on this desktop.
    Q_PROPERTY(bool canHideDockIcon READ canHideDockIcon CONSTANT FINAL)
    Q_PROPERTY(
        bool copyToClipboard READ copyToClipboard WRITE setCopyToClipboard NOTIFY settingsChanged FINAL)
    Q_PROPERTY(bool soundEnabled READ soundEnabled WRITE setSoundEnabled NOTIFY settingsChanged FINAL)
    Q_PROPERTY(double volume READ volume WRITE setVolume NOTIFY settingsChanged FINAL)
    Q_PROPERTY(QString volumeText READ volumeText NOTIFY settingsChanged FINAL)
    Q_PROPERTY(QString selectedSound READ selectedSound WRITE setSelectedSound NOTIFY settingsChanged FINAL)
    /// One map a sound, in their order: "value" and "label".
    Q_PROPERTY(QVariantList sounds READ soundOptions CONSTANT FINAL)
    Q_PROPERTY(bool startsAtLogin READ startsAtLogin WRITE setStartsAtLogin NOTIFY startsAtLoginChanged FINAL)
    Q_PROPERTY(framora::ShortcutRecorder* hotKey READ hotKey CONSTANT FINAL)
    Q_PROPERTY(framora::ShortcutRecorder* tabCaptureHotKey READ tabCaptureHotKey CONSTANT FINAL)
    Q_PROPERTY(framora::ShortcutBinding* hotKeyBinding READ hotKeyBinding CONSTANT FINAL)
    Q_PROPERTY(framora::ShortcutBinding* tabCaptureHotKeyBinding READ tabCaptureHotKeyBinding CONSTANT FINAL)
    /// What a shortcut collides with, as a text for under its row; empty when with nothing.
    Q_PROPERTY(QString hotKeyConflict READ hotKeyConflict NOTIFY conflictsChanged FINAL)
    Q_PROPERTY(QString tabCaptureHotKeyConflict READ tabCaptureHotKeyConflict NOTIFY conflictsChanged FINAL)
    /// Null when the permission was there as the form was made.
    Q_PROPERTY(framora::PermissionsMonitor* permissions READ permissions CONSTANT FINAL)
    Q_PROPERTY(bool showAccessibilityAlert READ showAccessibilityAlert WRITE setShowAccessibilityAlert NOTIFY
                   showAccessibilityAlertChanged FINAL)

public:
    explicit SettingsForm(const SettingsServices& services, QObject* parent = nullptr);
    ~SettingsForm() override;

    const Settings& settings() const { return m_settings; }

    bool showDockIcon() const { return m_settings.showDockIcon; }
    bool canHideDockIcon() const { return m_services.canHideDockIcon; }
    bool copyToClipboard() const { return m_settings.copyToClipboard; }
    bool soundEnabled() const { return m_settings.soundEffectsEnabled; }
    double volume() const { return m_settings.audibleVolume(); } ///< 0 to 1.
    /// A whole percentage: 0.5 is "50%".
    QString volumeText() const;
    QString selectedSound() const; ///< A raw value of CaptureSound.
    static QStringList sounds();   ///< All raw values, in their order.
    static QVariantList soundOptions();
    bool startsAtLogin() const { return m_startsAtLogin; }

    void setShowDockIcon(bool show);
    void setCopyToClipboard(bool copy);
    void setSoundEnabled(bool enabled);
    void setVolume(double volume);
    /// Nothing for a text that names no sound.
    void setSelectedSound(const QString& rawValue);
    void setStartsAtLogin(bool starts);

    /// Plays the chosen sound at the chosen volume, whether or not sounds are on.
    Q_INVOKABLE void testSound();

    ShortcutRecorder* hotKey() { return &m_hotKey; }
    ShortcutRecorder* tabCaptureHotKey() { return &m_tabCaptureHotKey; }
    ShortcutBinding* hotKeyBinding() { return &m_hotKeyBinding; }
    ShortcutBinding* tabCaptureHotKeyBinding() { return &m_tabCaptureHotKeyBinding; }
    /// Whether either shortcut is being recorded.
    bool isRecording() const { return m_hotKey.isSettingHotKey() || m_tabCaptureHotKey.isSettingHotKey(); }
    QString hotKeyConflict() const { return m_hotKeyConflict; }
    QString tabCaptureHotKeyConflict() const { return m_tabCaptureHotKeyConflict; }
    PermissionsMonitor* permissions() { return m_permissionsMonitor.get(); }
    bool showAccessibilityAlert() const { return m_showAccessibilityAlert; }
    void setShowAccessibilityAlert(bool show);

Q_SIGNALS:
    void settingsChanged();
    void startsAtLoginChanged();
    void conflictsChanged();
    void showAccessibilityAlertChanged();

private:
    void change(Settings settings);
    void findConflicts();
    /// Why `shortcut` may not do what it says, for the user; empty where nothing speaks against it.
    QString conflictText(const HotkeyConfiguration& shortcut, const HotkeyConfiguration& otherCapture) const;
    void joinRecorders();

    SettingsServices m_services;
    Settings m_settings;
    ShortcutRecorder m_hotKey;
    ShortcutRecorder m_tabCaptureHotKey;
    ShortcutBinding m_hotKeyBinding;
    ShortcutBinding m_tabCaptureHotKeyBinding;
    QString m_hotKeyConflict;
    QString m_tabCaptureHotKeyConflict;
    std::unique_ptr<PermissionsMonitor> m_permissionsMonitor;
    bool m_startsAtLogin = false;
    bool m_showAccessibilityAlert = false;
    NotificationCenter::Token m_activation;
    NotificationCenter::Token m_layoutChange;
};

} // namespace framora

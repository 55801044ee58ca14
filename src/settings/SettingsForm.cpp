#include "settings/SettingsForm.h"

#include "platform/Localized.h"
#include "platform/LoginItem.h"
#include "platform/Notifications.h"
#include "platform/Permissions.h"
#include "settings/KeyNames.h"
#include "settings/ShortcutConflict.h"

#include <algorithm>
#include <cmath>

namespace framora {
namespace {

QString text(CaptureSound sound) {
    const auto raw = rawValue(sound);
    return QString::fromLatin1(raw.data(), qsizetype(raw.size()));
}

} // namespace

SettingsForm::SettingsForm(const SettingsServices& services, QObject* parent)
    : QObject(parent), m_services(services), m_settings(Settings::load(services.defaults)),
      m_hotKey(&Settings::hotkey, m_settings.hotkey, services),
      m_tabCaptureHotKey(&Settings::tabCaptureHotkey, m_settings.tabCaptureHotkey, services),
      m_hotKeyBinding(shortcutId::captureArea, localized(QStringLiteral("screenshot")), m_hotKey, services),
      m_tabCaptureHotKeyBinding(shortcutId::captureWindow, localized(QStringLiteral("window capture")),
                                m_tabCaptureHotKey, services),
      m_startsAtLogin(services.loginItem.isEnabled()) {
    if (!services.permissions.isAccessibilityTrusted()) {
        m_permissionsMonitor = std::make_unique<PermissionsMonitor>(m_services);
        connect(m_permissionsMonitor.get(), &PermissionsMonitor::noSettingsToOpen, this,
                [this] { setShowAccessibilityAlert(true); });
    }
    joinRecorders();
    findConflicts();
    // The desktop's shortcuts may have been changed meanwhile, in its own settings.
    m_activation = m_services.notifications.observe(notifications::applicationDidBecomeActive,
                                                    [this] { findConflicts(); });
    // A key may have another name now.
    m_layoutChange =
        m_services.notifications.observe(notifications::keyboardLayoutChanged, [this] { findConflicts(); });
}

SettingsForm::~SettingsForm() = default;

void SettingsForm::joinRecorders() {
    const auto join = [this](ShortcutRecorder& recorder, ShortcutRecorder& other,
                             HotkeyConfiguration Settings::*field) {
        // One keyboard, one recording.
        connect(&recorder, &ShortcutRecorder::started, &other, &ShortcutRecorder::cancel);
        connect(&recorder, &ShortcutRecorder::recorded, this, [this, &recorder, field] {
            Settings changed = m_settings;
            changed.*field = recorder.configuration();
            change(changed);
            findConflicts();
        });
    };
    join(m_hotKey, m_tabCaptureHotKey, &Settings::hotkey);
    join(m_tabCaptureHotKey, m_hotKey, &Settings::tabCaptureHotkey);
}

void SettingsForm::change(Settings settings) {
    if (settings == m_settings)
        return;
    m_settings = settings;
    m_settings.save(m_services.defaults, m_services.notifications);
    m_services.notifications.post(notifications::hotkeyConfigurationChanged);
    m_services.notifications.post(notifications::dockIconChanged);
    Q_EMIT settingsChanged();
}

void SettingsForm::setShowDockIcon(bool show) {
    Settings changed = m_settings;
    changed.showDockIcon = show;
    change(changed);
}

void SettingsForm::setCopyToClipboard(bool copy) {
    Settings changed = m_settings;
    changed.copyToClipboard = copy;
    change(changed);
}

void SettingsForm::setSoundEnabled(bool enabled) {
    Settings changed = m_settings;
    changed.soundEffectsEnabled = enabled;
    change(changed);
}

void SettingsForm::setVolume(double volume) {
    if (!std::isfinite(volume))
        return;
    Settings changed = m_settings;
    changed.soundEffectsVolume = std::clamp(volume, 0.0, 1.0);
    change(changed);
}

QString SettingsForm::volumeText() const {
    // Cut off, not rounded: 0.29 * 100 lacks a little of 29 and shows as 28.
    const auto percent = static_cast<long long>(m_settings.audibleVolume() * 100);
    return QStringLiteral("%1%").arg(percent);
}

QString SettingsForm::selectedSound() const {
    return text(m_settings.captureSound);
}

QStringList SettingsForm::sounds() {
    QStringList names;
    for (const CaptureSound sound : allCaptureSounds)
        names << text(sound);
    return names;
}

QVariantList SettingsForm::soundOptions() {
    QVariantList options;
    for (const QString& name : sounds())
        options << QVariantMap{{QStringLiteral("value"), name}, {QStringLiteral("label"), name}};
    return options;
}

void SettingsForm::setSelectedSound(const QString& rawValue) {
    const auto sound = captureSoundFromRawValue(rawValue.toStdString());
    if (!sound)
        return;
    Settings changed = m_settings;
    changed.captureSound = *sound;
    change(changed);
}

void SettingsForm::testSound() {
    m_services.playSound(m_settings.captureSound, static_cast<float>(m_settings.audibleVolume()));
}

void SettingsForm::setStartsAtLogin(bool starts) {
    m_services.loginItem.setEnabled(starts);
    // What is stored now, whether or not it is what was wished: a switch must not claim more.
    m_startsAtLogin = m_services.loginItem.isEnabled();
    Q_EMIT startsAtLoginChanged();
}

void SettingsForm::findConflicts() {
    const QString area = conflictText(m_settings.hotkey, m_settings.tabCaptureHotkey);
    const QString window = conflictText(m_settings.tabCaptureHotkey, m_settings.hotkey);
    if (area == m_hotKeyConflict && window == m_tabCaptureHotKeyConflict)
        return;
    m_hotKeyConflict = area;
    m_tabCaptureHotKeyConflict = window;
    Q_EMIT conflictsChanged();
}

QString SettingsForm::conflictText(const HotkeyConfiguration& shortcut,
                                   const HotkeyConfiguration& otherCapture) const {
    switch (findConflict(shortcut, otherCapture, m_services.desktopShortcuts)) {
    case ShortcutConflict::none:
        break;
    case ShortcutConflict::otherCapture:
        return localized(QStringLiteral("shortcut.conflict.other.capture"));
    case ShortcutConflict::otherProgram:
        return localized(QStringLiteral("shortcut.conflict.other.program"));
    case ShortcutConflict::bareKey:
        // Named: a row without a key cap may stand above.
        return localized(QStringLiteral("shortcut.conflict.bare.key"))
            .arg(keyName(shortcut.keyCode, m_services.keyboardLayout));
    }
    return {};
}

void SettingsForm::setShowAccessibilityAlert(bool show) {
    if (show == m_showAccessibilityAlert)
        return;
    m_showAccessibilityAlert = show;
    Q_EMIT showAccessibilityAlertChanged();
}

} // namespace framora

#pragma once

#include "platform/KeyMonitors.h"
#include "platform/NotificationCenter.h"
#include "settings/Settings.h"

#include <QObject>
#include <QStringList>
#include <optional>

namespace framora {

class KeyboardLayout;
struct SettingsServices;

/// One of the two shortcuts as its section of the settings shows it, and the recording of another one: from
/// the start until a key is pressed, or Escape, it sees the keys of the program's windows before anyone else.
class ShortcutRecorder final : public QObject {
    Q_OBJECT
    /// What the row shows: the shortcut, or while recording the modifiers that are held.
    Q_PROPERTY(QStringList caps READ caps NOTIFY changed FINAL)
    /// The shortcut as the desktop's other programs write it, "Alt+Shift+4"; empty while recording.
    Q_PROPERTY(QString words READ words NOTIFY changed FINAL)
    Q_PROPERTY(bool recording READ isSettingHotKey NOTIFY changed FINAL)
    Q_PROPERTY(bool modifierOnly READ showsModifierOnly NOTIFY changed FINAL)

public:
    /// `field` is the shortcut that is shown and written. The services outlive the recorder.
    ShortcutRecorder(HotkeyConfiguration Settings::*field, HotkeyConfiguration configuration,
                     const SettingsServices& services);
    ~ShortcutRecorder() override;

    HotkeyConfiguration configuration() const { return m_configuration; }
    bool isSettingHotKey() const { return m_isSettingHotKey; }
    std::uint64_t currentModifiers() const { return m_currentModifiers; }
    bool hasKeyMonitor() const { return m_keyMonitor.has_value(); }

    QStringList caps() const;
    QString words() const;
    /// Whether the caption about a shortcut without a key is due.
    bool showsModifierOnly() const;

    /// Starts, or starts again.
    Q_INVOKABLE void start();
    /// Ends without a change; nothing when it does not record.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();
    void started();
    /// A shortcut has been stored and announced.
    void recorded();

private:
    bool handle(const KeyEvent& event);
    void save();
    void endRecording();

    HotkeyConfiguration Settings::*m_field;
    HotkeyConfiguration m_configuration;
    bool m_isSettingHotKey = false;
    std::uint64_t m_currentModifiers = 0;
    std::optional<KeyMonitors::Token> m_keyMonitor;

    KeyMonitors& m_keyMonitors;
    UserDefaults& m_defaults;
    NotificationCenter& m_notifications;
    const KeyboardLayout& m_keyboardLayout;
    NotificationCenter::Token m_layoutObserver;
};

} // namespace framora

#include "settings/ShortcutRecorder.h"

#include "platform/Notifications.h"
#include "settings/BindingGuide.h"
#include "settings/KeyNames.h"
#include "settings/SettingsServices.h"

#include <algorithm>
#include <array>

namespace framora {
namespace {

constexpr std::uint16_t escape = 53;
/// Command, shift, caps lock, option and control of both sides, and function.
constexpr std::array<std::uint16_t, 9> modifierKeys{54, 55, 56, 57, 58, 59, 60, 62, 63};

} // namespace

ShortcutRecorder::ShortcutRecorder(HotkeyConfiguration Settings::*field, HotkeyConfiguration configuration,
                                   const SettingsServices& services)
    : m_field(field), m_configuration(configuration), m_keyMonitors(services.keyMonitors),
      m_defaults(services.defaults), m_notifications(services.notifications),
      m_keyboardLayout(services.keyboardLayout),
      m_layoutObserver(
          m_notifications.observe(notifications::keyboardLayoutChanged, [this] { Q_EMIT changed(); })) {}

ShortcutRecorder::~ShortcutRecorder() {
    endRecording();
}

QStringList ShortcutRecorder::caps() const {
    return keyCaps(m_isSettingHotKey ? HotkeyConfiguration{0, m_currentModifiers} : m_configuration,
                   m_keyboardLayout);
}

QString ShortcutRecorder::words() const {
    return m_isSettingHotKey ? QString() : shortcutInWords(m_configuration, m_keyboardLayout);
}

bool ShortcutRecorder::showsModifierOnly() const {
    return !m_isSettingHotKey && isModifierOnly(m_configuration);
}

void ShortcutRecorder::start() {
    endRecording();
    m_isSettingHotKey = true;
    m_currentModifiers = 0;
    const auto token =
        m_keyMonitors.addRecordingMonitor([this](const KeyEvent& event) { return handle(event); });
    if (token)
        m_keyMonitor = token;
    Q_EMIT started();
    Q_EMIT changed();
}

void ShortcutRecorder::cancel() {
    if (!m_isSettingHotKey)
        return;
    endRecording();
    m_currentModifiers = 0;
    Q_EMIT changed();
}

bool ShortcutRecorder::handle(const KeyEvent& event) {
    if (event.type == KeyEventType::modifiersChanged) {
        m_currentModifiers = event.modifierFlags & KeyModifier::shortcutMask;
        Q_EMIT changed();
        return false;
    }
    if (event.keyCode == escape) {
        cancel();
        return true;
    }
    if (std::ranges::find(modifierKeys, event.keyCode) != modifierKeys.end())
        return false;
    m_configuration = {event.keyCode, event.modifierFlags & KeyModifier::shortcutMask};
    save();
    return true;
}

void ShortcutRecorder::save() {
    endRecording();
    Settings settings = Settings::load(m_defaults);
    settings.*m_field = m_configuration;
    settings.save(m_defaults, m_notifications);
    m_notifications.post(notifications::hotkeyConfigurationChanged);
    Q_EMIT changed();
    Q_EMIT recorded();
}

void ShortcutRecorder::endRecording() {
    m_isSettingHotKey = false;
    if (m_keyMonitor)
        m_keyMonitors.removeMonitor(*m_keyMonitor);
    m_keyMonitor.reset();
}

} // namespace framora

#include "platform/desktop/WindowKeyMonitors.h"

#include "platform/VirtualKeyCodes.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace framora {

WindowKeyMonitors::WindowKeyMonitors(CommandGate& gate, FlagsOfPress flagsOf)
    : m_gate(gate), m_flagsOf(std::move(flagsOf)) {
    QCoreApplication::instance()->installEventFilter(this);
}

void WindowKeyMonitors::remove(Token token) {
    m_localHandlers.erase(token);
    m_recordingHandlers.erase(token);
}

bool WindowKeyMonitors::isModifierKey(std::uint16_t virtualKey) {
    // The codes stand together.
    constexpr std::uint16_t rightCommand = 54;
    constexpr std::uint16_t function = 63;
    return virtualKey >= rightCommand && virtualKey <= function;
}

std::optional<std::uint16_t> WindowKeyMonitors::virtualKeyOf(std::uint32_t keycode) {
    constexpr std::uint32_t evdevOffset = 8;
    if (keycode < evdevOffset)
        return std::nullopt;
    return virtualKeyFromEvdev(static_cast<std::uint16_t>(keycode - evdevOffset));
}

bool WindowKeyMonitors::offer(const LocalHandlers& monitors, const KeyEvent& key) {
    // A copy: a handler may add and remove monitors; one that was removed meanwhile is not called.
    for (const auto& [token, handler] : LocalHandlers(monitors)) {
        if (monitors.contains(token) && handler(key))
            return true;
    }
    return false;
}

void WindowKeyMonitors::offerModifierChange(std::uint16_t virtualKey, std::uint64_t flags) {
    if (m_gate.isOpen())
        offer(m_recordingHandlers, {virtualKey, flags, KeyEventType::modifiersChanged});
}

bool WindowKeyMonitors::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride && isRecording()) {
        // Accepted, it keeps the toolkit from looking for a shortcut; the key itself comes next.
        event->accept();
        return true;
    }
    // A key reaches the window first, then what is inside: once is enough.
    if (event->type() != QEvent::KeyPress || !watched->isWindowType() || !m_gate.isOpen())
        return false;
    const auto& press = static_cast<const QKeyEvent&>(*event);
    const auto virtualKey = virtualKeyOf(press.nativeScanCode());
    if (!virtualKey || isModifierKey(*virtualKey))
        return false;
    const KeyEvent key{*virtualKey, m_flagsOf(press)};
    return offer(m_recordingHandlers, key) || offer(m_localHandlers, key);
}

} // namespace framora

#include "platform/wayland/WaylandKeyMonitors.h"

#include <QKeyEvent>

namespace framora {

namespace {

std::uint64_t flagsOf(const QKeyEvent& press) {
    std::uint64_t flags = 0;
    const auto held = press.modifiers();
    if (held & Qt::ShiftModifier)
        flags |= KeyModifier::shift;
    if (held & Qt::ControlModifier)
        flags |= KeyModifier::control;
    if (held & Qt::AltModifier)
        flags |= KeyModifier::option;
    if (held & Qt::MetaModifier)
        flags |= KeyModifier::command;
    return flags;
}

} // namespace

WaylandKeyMonitors::WaylandKeyMonitors(CommandGate& gate, PortalShortcuts& shortcuts)
    : m_shortcuts(shortcuts), m_ownWindows(gate, flagsOf) {}

KeyMonitors::Token WaylandKeyMonitors::addGlobalMonitor(GlobalHandler handler) {
    // The desktop keeps the keys of a shortcut from our windows, too: a recorder learns of them here.
    const bool isAdded = m_shortcuts.addMonitor(++m_lastToken, [this, handler](const KeyEvent& key) {
        if (!m_ownWindows.offerToRecorder(key))
            handler(key);
    });
    return isAdded ? m_lastToken : 0;
}

KeyMonitors::Token WaylandKeyMonitors::addLocalMonitor(LocalHandler handler) {
    m_ownWindows.addLocal(++m_lastToken, std::move(handler));
    return m_lastToken;
}

KeyMonitors::Token WaylandKeyMonitors::addRecordingMonitor(LocalHandler handler) {
    m_ownWindows.addRecording(++m_lastToken, std::move(handler));
    return m_lastToken;
}

void WaylandKeyMonitors::removeMonitor(Token token) {
    m_shortcuts.removeMonitor(token);
    m_ownWindows.remove(token);
}

} // namespace framora

#include "platform/wayland/WaylandKeyMonitors.h"

namespace framora {

WaylandKeyMonitors::WaylandKeyMonitors(CommandGate& gate, PortalShortcuts& shortcuts)
    : m_shortcuts(shortcuts), m_ownWindows(gate, modifierFlagsOf) {}

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

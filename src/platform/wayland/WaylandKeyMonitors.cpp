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

WaylandKeyMonitors::WaylandKeyMonitors(CommandGate& gate) : m_ownWindows(gate, flagsOf) {}

KeyMonitors::Token WaylandKeyMonitors::addGlobalMonitor(GlobalHandler) {
    return 0;
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
    m_ownWindows.remove(token);
}

} // namespace framora

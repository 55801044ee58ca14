#pragma once

#include "platform/KeyMonitors.h"
#include "platform/desktop/PortalShortcuts.h"
#include "platform/desktop/WindowKeyMonitors.h"
#include "platform/wayland/WaylandModifierKeys.h"

namespace framora {

/// Key-down events in a Wayland session. Only the keys of this program's own windows reach it; of all others
/// the desktop's portal calls out those that are its shortcuts.
class WaylandKeyMonitors final : public KeyMonitors {
public:
    /// The shortcuts outlive this.
    WaylandKeyMonitors(CommandGate& gate, PortalShortcuts& shortcuts);

    /// Whether this desktop offers what the global monitor needs.
    bool canMonitorGlobally() const { return m_shortcuts.canMonitor(); }

    Token addGlobalMonitor(GlobalHandler handler) override;
    Token addLocalMonitor(LocalHandler handler) override;
    Token addRecordingMonitor(LocalHandler handler) override;
    void removeMonitor(Token token) override;

private:
    PortalShortcuts& m_shortcuts;
    Token m_lastToken = 0;
    WindowKeyMonitors m_ownWindows;
    WaylandModifierKeys m_modifierKeys{m_ownWindows};
};

} // namespace framora

#pragma once

#include "platform/KeyMonitors.h"
#include "platform/desktop/WindowKeyMonitors.h"

namespace framora {

/// Key-down events in a Wayland session. Only the keys of this program's own windows reach it.
class WaylandKeyMonitors final : public KeyMonitors {
public:
    explicit WaylandKeyMonitors(CommandGate& gate);

    /// Whether this desktop offers what the global monitor needs.
    bool canMonitorGlobally() const { return false; }

    Token addGlobalMonitor(GlobalHandler handler) override;
    Token addLocalMonitor(LocalHandler handler) override;
    Token addRecordingMonitor(LocalHandler handler) override;
    void removeMonitor(Token token) override;

private:
    Token m_lastToken = 0;
    WindowKeyMonitors m_ownWindows;
};

} // namespace framora

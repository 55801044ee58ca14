#pragma once

#include "platform/Permissions.h"
#include "platform/desktop/PortalShortcuts.h"

namespace framora {

/// What a Wayland desktop lets this program do.
class WaylandPermissions final : public Permissions {
public:
    /// The shortcuts outlive this.
    explicit WaylandPermissions(PortalShortcuts& shortcuts) : m_shortcuts(shortcuts) {}
    bool isAccessibilityTrusted() override { return m_shortcuts.canMonitor(); }
    bool requestAccessibility() override {
        m_shortcuts.askAgain();
        return isAccessibilityTrusted();
    }
    bool canCaptureScreen() override { return true; }

private:
    PortalShortcuts& m_shortcuts;
};

} // namespace framora

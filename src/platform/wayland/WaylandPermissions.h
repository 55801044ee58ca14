#pragma once

#include "platform/Permissions.h"
#include "platform/desktop/PortalShortcuts.h"

#include <memory>

namespace framora {

class ScreenshotPermission;
class WaylandConnection;

/// What a Wayland desktop lets this program do.
class WaylandPermissions final : public Permissions {
public:
    /// Both outlive this.
    WaylandPermissions(const WaylandConnection& connection, PortalShortcuts& shortcuts);
    ~WaylandPermissions() override;

    bool isAccessibilityTrusted() override { return m_shortcuts.canMonitor(); }
    bool requestAccessibility() override {
        m_shortcuts.askAgain();
        return isAccessibilityTrusted();
    }
    bool canCaptureScreen() override;
    bool requestScreenCapture(QWindow* window) override;
    QString commandToForgetDenial() override;

private:
    PortalShortcuts& m_shortcuts;
    /// None where the compositor itself gives pictures to everyone.
    std::unique_ptr<ScreenshotPermission> m_screenshots;
};

} // namespace framora

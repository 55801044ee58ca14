#pragma once

#include "platform/Permissions.h"
#include "platform/wayland/WaylandKeyMonitors.h"

namespace framora {

/// What a Wayland desktop lets this program do.
class WaylandPermissions final : public Permissions {
public:
    explicit WaylandPermissions(const WaylandKeyMonitors& keyMonitors) : m_keyMonitors(keyMonitors) {}
    bool isAccessibilityTrusted() override { return m_keyMonitors.canMonitorGlobally(); }
    bool requestAccessibility() override { return isAccessibilityTrusted(); }
    bool canCaptureScreen() override { return true; }

private:
    const WaylandKeyMonitors& m_keyMonitors;
};

} // namespace framora

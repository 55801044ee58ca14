#pragma once

#include "platform/Permissions.h"
#include "platform/x11/X11KeyMonitors.h"

namespace framora {

/// X11 keeps neither keys nor pixels from a program; only a server without XInput2 leaves the keys unseen.
class X11Permissions final : public Permissions {
public:
    explicit X11Permissions(const X11KeyMonitors& keyMonitors) : m_keyMonitors(keyMonitors) {}
    bool isAccessibilityTrusted() override { return m_keyMonitors.canMonitorGlobally(); }
    /// There is nobody to ask: a server has the extension or not.
    bool requestAccessibility() override { return isAccessibilityTrusted(); }
    bool canCaptureScreen() override { return true; }

private:
    const X11KeyMonitors& m_keyMonitors;
};

} // namespace framora

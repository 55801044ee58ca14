#pragma once

#include "platform/WindowSystem.h"
#include "platform/desktop/BusShortcutsPortal.h"
#include "platform/desktop/DesktopPrivacyPanes.h"
#include "platform/desktop/PortalColorPicker.h"
#include "platform/desktop/PortalSharing.h"
#include "platform/desktop/PortalShortcuts.h"
#include "platform/wayland/WaylandApplication.h"
#include "platform/wayland/WaylandConnection.h"
#include "platform/wayland/WaylandDesktopShortcuts.h"
#include "platform/wayland/WaylandKeyMonitors.h"
#include "platform/wayland/WaylandKeyboardLayout.h"
#include "platform/wayland/WaylandOutputs.h"
#include "platform/wayland/WaylandPermissions.h"
#include "platform/wayland/WaylandScreens.h"

#include <memory>

namespace framora {

/// All that a Wayland compositor shows and hears, by the routes that this one offers.
class WaylandWindowSystem final : public WindowSystem {
public:
    /// `connection` is valid.
    WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection, const Services& services);
    ~WaylandWindowSystem() override;

    KeyMonitors& keyMonitors() override { return m_keyMonitors; }
    GlobalShortcuts& globalShortcuts() override { return m_globalShortcuts; }
    KeyboardLayout& keyboardLayout() override { return m_keyboardLayout; }
    DesktopShortcuts& desktopShortcuts() override { return m_desktopShortcuts; }
    Pasteboard& pasteboard() override { return *m_pasteboard; }
    Screens& screens() override { return m_screens; }
    Permissions& permissions() override { return m_permissions; }
    PrivacyPanes& privacyPanes() override { return m_privacyPanes; }
    Application& application() override { return m_application; }
    ToastPanels& toastPanels() override { return *m_toastPanels; }
    ScreenColorPicker& colorPicker() override { return m_colorPicker; }
    Sharing& sharing() override { return m_sharing; }

private:
    std::unique_ptr<Pasteboard> makePasteboard(const Services& services);
    std::unique_ptr<ToastPanels> makeToastPanels(const Services& services);

    std::unique_ptr<WaylandConnection> m_connection;
    WaylandKeyboardLayout m_keyboardLayout;
    WaylandApplication m_application;
    BusShortcutsPortal m_shortcutsPortal;
    PortalShortcuts m_globalShortcuts;
    WaylandKeyMonitors m_keyMonitors;
    WaylandDesktopShortcuts m_desktopShortcuts;
    WaylandOutputs m_outputs;
    WaylandScreens m_screens;
    WaylandPermissions m_permissions{*m_connection, m_globalShortcuts};
    DesktopPrivacyPanes m_privacyPanes;
    std::unique_ptr<Pasteboard> m_pasteboard;
    std::unique_ptr<ToastPanels> m_toastPanels;
    PortalColorPicker m_colorPicker;
    PortalSharing m_sharing;
};

} // namespace framora

#pragma once

#include "platform/WindowSystem.h"
#include "platform/desktop/DesktopPrivacyPanes.h"
#include "platform/desktop/PortalSharing.h"
#include "platform/x11/X11Application.h"
#include "platform/x11/X11ColorPicker.h"
#include "platform/x11/X11Connection.h"
#include "platform/x11/X11DesktopShortcuts.h"
#include "platform/x11/X11KeyMonitors.h"
#include "platform/x11/X11KeyboardLayout.h"
#include "platform/x11/X11Pasteboard.h"
#include "platform/x11/X11Permissions.h"
#include "platform/x11/X11Screens.h"
#include "platform/x11/X11ToastPanels.h"

namespace framora {

/// All that an X server shows and hears.
class X11WindowSystem final : public WindowSystem {
public:
    explicit X11WindowSystem(const Services& services);

    KeyMonitors& keyMonitors() override { return m_keyMonitors; }
    GlobalShortcuts& globalShortcuts() override { return m_globalShortcuts; }
    KeyboardLayout& keyboardLayout() override { return m_keyboardLayout; }
    DesktopShortcuts& desktopShortcuts() override { return m_desktopShortcuts; }
    Pasteboard& pasteboard() override { return m_pasteboard; }
    Screens& screens() override { return m_screens; }
    Permissions& permissions() override { return m_permissions; }
    PrivacyPanes& privacyPanes() override { return m_privacyPanes; }
    Application& application() override { return m_application; }
    ToastPanels& toastPanels() override { return m_toastPanels; }
    ScreenColorPicker& colorPicker() override { return m_colorPicker; }
    Sharing& sharing() override { return m_sharing; }

private:
    X11Connection m_connection;
    X11KeyMonitors m_keyMonitors;
    WatchedShortcuts m_globalShortcuts{m_keyMonitors.canMonitorGlobally()};
    X11Pasteboard m_pasteboard;
    X11Screens m_screens{m_connection};
    X11Permissions m_permissions{m_keyMonitors};
    X11KeyboardLayout m_keyboardLayout;
    X11DesktopShortcuts m_desktopShortcuts{m_connection};
    DesktopPrivacyPanes m_privacyPanes;
    X11Application m_application;
    X11ToastPanels m_toastPanels;
    X11ColorPicker m_colorPicker{m_connection, m_screens};
    PortalSharing m_sharing{x11PortalWindowName};
};

} // namespace framora

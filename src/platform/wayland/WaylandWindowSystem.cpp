#include "platform/wayland/WaylandWindowSystem.h"

#include "platform/Notifications.h"
#include "platform/desktop/AdoptingPasteboard.h"
#include "platform/desktop/CurrentDesktop.h"
#include "platform/desktop/NotificationToastPanels.h"
#include "platform/wayland/WaylandPasteboard.h"
#include "platform/wayland/WaylandToastPanels.h"
#include "platform/wayland/WaylandWindowExport.h"
#include "platform/wayland/XwaylandPasteboard.h"

namespace framora {

namespace {

PortalWindowName exportedName(QWindow* window) {
    const auto exported = std::make_shared<WaylandWindowExport>(window);
    return {exported, &exported->portalName()};
}

} // namespace

WaylandWindowSystem::WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection,
                                         const Services& services)
    : m_connection(std::move(connection)), m_keyboardLayout(*m_connection, services.notifications),
      m_application(*m_connection, services.notifications),
      m_globalShortcuts({m_shortcutsPortal, services.mainQueue, services.notifications, services.gate,
                         m_keyboardLayout, services.wantedShortcuts,
                         [this](const QString& token) { m_application.useActivationToken(token); },
                         // Plasma tells keys with Shift by the sign that they print.
                         isCurrentDesktop("KDE") ? ShiftStyle::inTheSign : ShiftStyle::besideTheKey}),
      m_keyMonitors(services.gate, m_globalShortcuts), m_outputs(*m_connection),
      m_screens(*m_connection, m_outputs), m_pasteboard(makePasteboard(services)),
      m_toastPanels(makeToastPanels(services)), m_colorPicker(exportedName), m_sharing(exportedName) {
    m_connection->onRefused(
        [&notifications = services.notifications] { notifications.post(notifications::connectionEnded); });
    m_connection->listen();
}

WaylandWindowSystem::~WaylandWindowSystem() {
    m_outputs.onTold(nullptr);
}

std::unique_ptr<Pasteboard> WaylandWindowSystem::makePasteboard(const Services& services) {
    if (auto clipboard = WaylandClipboard::make(*m_connection))
        return std::make_unique<WaylandPasteboard>(*m_connection, std::move(clipboard),
                                                   services.decodePicture);
    // Desktops that keep the clipboard from programs without the focus share it with their X server.
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        return std::make_unique<XwaylandPasteboard>(services.mainQueue, services.decodePicture);
    return std::make_unique<AdoptingPasteboard>(services.mainQueue, services.decodePicture);
}

std::unique_ptr<ToastPanels> WaylandWindowSystem::makeToastPanels(const Services& services) {
    if (WaylandToastPanels::areOffered(*m_connection)) {
        auto panels = std::make_unique<WaylandToastPanels>(
            *m_connection, m_outputs, services.mainQueue,
            [this](const QString& token) { m_application.useActivationToken(token); });
        m_outputs.onTold([&panels = *panels](const WaylandOutput& output) { panels.outputChanged(output); });
        return panels;
    }
    return std::make_unique<NotificationToastPanels>(
        services.mainQueue, [this](const QString& token) { m_application.useActivationToken(token); });
}

} // namespace framora

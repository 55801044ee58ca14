#include "platform/wayland/WaylandWindowSystem.h"

namespace framora {

WaylandWindowSystem::WaylandWindowSystem(std::unique_ptr<WaylandConnection> connection,
                                         const Services& services)
    : m_connection(std::move(connection)), m_keyMonitors(services.gate),
      m_application(services.notifications), m_pasteboard(makePasteboard(services)),
      m_toastPanels(makeToastPanels(services)) {
    m_connection->listen();
}

WaylandWindowSystem::~WaylandWindowSystem() = default;

std::unique_ptr<Pasteboard> WaylandWindowSystem::makePasteboard(const Services& services) {
    m_x11Connection = std::make_unique<X11Connection>();
    return std::make_unique<X11Pasteboard>(*m_x11Connection, services.decodePicture);
}

std::unique_ptr<ToastPanels> WaylandWindowSystem::makeToastPanels(const Services& services) {
    return std::make_unique<X11ToastPanels>(services.mainQueue);
}

} // namespace framora

#include "platform/x11/X11WindowSystem.h"

namespace framora {

X11WindowSystem::X11WindowSystem(const Services& services)
    : m_keyMonitors(m_connection, services.gate), m_pasteboard(m_connection, services.decodePicture),
      m_keyboardLayout(m_connection, services.notifications),
      m_application(m_connection, services.notifications), m_toastPanels(services.mainQueue, m_screens) {
    m_keyMonitors.setHoldsKeys([this] { return m_colorPicker.holdsKeys(); });
}

} // namespace framora

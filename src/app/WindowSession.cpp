#include "app/WindowSession.h"

#include "platform/wayland/WaylandWindowSystem.h"
#include "platform/x11/X11WindowSystem.h"

#include <QtGlobal>
#include <utility>

namespace framora {

namespace {
constexpr char platformVariable[] = "QT_QPA_PLATFORM";
constexpr char titleBarVariable[] = "QT_WAYLAND_DISABLE_WINDOWDECORATION";
} // namespace

WindowSession::WindowSession() {
    auto connection = std::make_unique<WaylandConnection>();
    if (connection->isValid())
        m_wayland = std::move(connection);
}

WindowSession::~WindowSession() = default;

bool WindowSession::exists() const {
    // Whoever chose a platform for Qt knows what for.
    return m_wayland || !qEnvironmentVariableIsEmpty("DISPLAY") ||
           qEnvironmentVariableIsSet(platformVariable);
}

QString WindowSession::name() const {
    return qEnvironmentVariable(m_wayland ? "WAYLAND_DISPLAY" : "DISPLAY");
}

void WindowSession::choosePlatform() {
    // Qt looks for a graphics card to draw title bars with, which takes more memory than all the rest. Where
    // the compositor draws them nobody needs that.
    if (m_wayland && m_wayland->offers("zxdg_decoration_manager_v1") &&
        !qEnvironmentVariableIsSet(titleBarVariable))
        qputenv(titleBarVariable, "1");
    if (qEnvironmentVariableIsSet(platformVariable))
        return;
    // Qt takes the next one where it lacks the first.
    qputenv(platformVariable, m_wayland ? "wayland;xcb" : "xcb");
    m_hasChosen = true;
}

void WindowSession::platformIsChosen() {
    if (std::exchange(m_hasChosen, false))
        qunsetenv(platformVariable);
}

std::unique_ptr<WindowSystem> WindowSession::makeWindowSystem(const WindowSystem::Services& services) {
    if (m_wayland)
        return std::make_unique<WaylandWindowSystem>(std::move(m_wayland), services);
    return std::make_unique<X11WindowSystem>(services);
}

} // namespace framora

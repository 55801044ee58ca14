#include "app/WindowSession.h"

#include "platform/wayland/WaylandWindowSystem.h"
#include "platform/x11/X11WindowSystem.h"

#include <QtGlobal>
#include <utility>

namespace framora {

namespace {
constexpr char platformVariable[] = "QT_QPA_PLATFORM";
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
    if (!m_wayland) {
        // The first screen may be named or not: terminals often do.
        QString display = qEnvironmentVariable("DISPLAY");
        if (display.endsWith(QStringLiteral(".0")))
            display.chop(2);
        return display;
    }
    // The same socket may be named with its folder or without.
    const QString name = qEnvironmentVariable("WAYLAND_DISPLAY");
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/';
    return name.startsWith(folder) ? name.mid(folder.size()) : name;
}

void WindowSession::choosePlatform() {
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

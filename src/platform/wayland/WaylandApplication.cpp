#include "platform/wayland/WaylandApplication.h"

#include <QCoreApplication>
#include <utility>

namespace framora {

void WaylandApplication::activate() {
    QWindow* const window = m_frontWindow.visible();
    if (!window)
        return;
    // Qt takes the token from where a program that is started finds it, and removes it there.
    if (const QString token = std::exchange(m_token, {}); !token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    window->requestActivate();
}

void WaylandApplication::terminate() {
    QCoreApplication::quit();
}

} // namespace framora

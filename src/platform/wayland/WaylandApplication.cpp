#include "platform/wayland/WaylandApplication.h"

#include <QCoreApplication>
#include <QTimer>

namespace framora {

namespace {
constexpr char tokenVariable[] = "XDG_ACTIVATION_TOKEN";
constexpr char titleBarVariable[] = "QT_WAYLAND_DISABLE_WINDOWDECORATION";
} // namespace

WaylandApplication::WaylandApplication(const WaylandConnection& connection, NotificationCenter& notifications)
    : m_frontWindow(notifications) {
    // Qt looks for a graphics card to draw title bars with, which takes more memory than all the rest. Where
    // the compositor draws them nobody needs that. Qt asks once, as the first window is about to be shown;
    // what is started from here later is not to hear of it.
    if (!connection.offers("zxdg_decoration_manager_v1") || qEnvironmentVariableIsSet(titleBarVariable))
        return;
    m_frontWindow.onShow([this](QWindow& window) {
        qputenv(titleBarVariable, "1");
        QTimer::singleShot(0, &window, [] { qunsetenv(titleBarVariable); });
        m_frontWindow.onShow({});
    });
}

void WaylandApplication::activate() {
    QWindow* const window = m_frontWindow.visible();
    if (!window)
        return;
    // Qt takes the token from where a program that is started finds it.
    if (const QString token = takeActivationToken(); !token.isEmpty())
        qputenv(tokenVariable, token.toUtf8());
    window->requestActivate();
    qunsetenv(tokenVariable);
}

void WaylandApplication::terminate() {
    QCoreApplication::quit();
}

} // namespace framora

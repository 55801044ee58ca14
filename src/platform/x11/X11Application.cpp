#include "platform/x11/X11Application.h"

#include <QGuiApplication>
#include <QTimer>

namespace framora {

namespace {

// Values of the window-manager protocol.
constexpr std::uint32_t stateRemove = 0;
constexpr std::uint32_t stateAdd = 1;
constexpr std::uint32_t sourceApplication = 1;
/// What pagers say: a user's direct wish, which focus-stealing prevention lets pass.
constexpr std::uint32_t sourceUserAction = 2;

} // namespace

X11Application::X11Application(X11Connection& connection, NotificationCenter& notifications)
    : m_connection(connection), m_frontWindow(notifications) {
    m_frontWindow.onShow([this](QWindow& window) {
        // The window is mapped after this; the window manager takes its state from then on.
        QTimer::singleShot(0, &window, [this, shown = &window] { applyPolicy(*shown); });
    });
}

void X11Application::setActivationPolicy(ActivationPolicy policy) {
    m_policy = policy;
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            applyPolicy(*window);
    }
}

void X11Application::activate() {
    QWindow* const window = m_frontWindow.visible();
    if (!window)
        return;
    window->raise();
    sendToRoot(window->winId(), "_NET_ACTIVE_WINDOW", {sourceUserAction, XCB_CURRENT_TIME, 0, 0, 0});
}

void X11Application::terminate() {
    QCoreApplication::quit();
}

void X11Application::applyPolicy(QWindow& window) {
    if (!FrontWindow::belongsInTaskBar(window) || !window.handle())
        return;
    const auto action = m_policy == ActivationPolicy::accessory ? stateAdd : stateRemove;
    sendToRoot(window.winId(), "_NET_WM_STATE",
               {action, m_connection.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                m_connection.atom("_NET_WM_STATE_SKIP_PAGER"), sourceApplication, 0});
}

void X11Application::sendToRoot(WId window, const char* type, const std::array<std::uint32_t, 5>& data) {
    if (!m_connection.isValid())
        return;
    // Qt's requests go over another connection: they have to be on their way first.
    if (const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        xcb_flush(x11->connection());
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window);
    message.type = m_connection.atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(m_connection, false, m_connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    m_connection.flush();
}

} // namespace framora

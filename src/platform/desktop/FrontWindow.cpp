#include "platform/desktop/FrontWindow.h"

#include "platform/Notifications.h"

#include <QEvent>
#include <QGuiApplication>

namespace framora {

FrontWindow::FrontWindow(NotificationCenter& notifications) : m_notifications(notifications) {
    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive)
            m_notifications.post(notifications::applicationDidBecomeActive);
    });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow* window) {
        if (window && belongsInTaskBar(*window))
            m_window = window;
    });
}

bool FrontWindow::belongsInTaskBar(const QWindow& window) {
    return window.isTopLevel() && !window.transientParent() &&
           (window.type() == Qt::Window || window.type() == Qt::Dialog);
}

bool FrontWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && watched->isWindowType()) {
        auto* window = static_cast<QWindow*>(watched);
        if (belongsInTaskBar(*window)) {
            m_window = window;
            // A copy: the handler may replace itself.
            if (const auto onShow = m_onShow)
                onShow(*window);
        }
    }
    return false;
}

} // namespace framora

#pragma once

#include "platform/Application.h"
#include "platform/NotificationCenter.h"
#include "platform/x11/X11Connection.h"

#include <QObject>
#include <QPointer>
#include <QWindow>
#include <array>

namespace framora {

/// The program's windows before the window manager.
class X11Application final : public QObject, public Application {
    Q_OBJECT

public:
    X11Application(X11Connection& connection, NotificationCenter& notifications);

    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    /// The window that activate() brings forward, until another one is shown or gets the focus. A window that
    /// is merely raised does not say so itself.
    void setFrontWindow(QWindow& window) { m_frontWindow = &window; }
    void terminate() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void applyPolicy(QWindow& window);
    void sendToRoot(WId window, const char* type, const std::array<std::uint32_t, 5>& data);

    X11Connection& m_connection;
    NotificationCenter& m_notifications;
    ActivationPolicy m_policy = ActivationPolicy::regular;
    QPointer<QWindow> m_frontWindow;
};

} // namespace framora

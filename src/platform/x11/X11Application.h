#pragma once

#include "platform/Application.h"
#include "platform/desktop/FrontWindow.h"
#include "platform/x11/X11Connection.h"

#include <array>

namespace framora {

/// The program's windows before the window manager.
class X11Application final : public Application {
public:
    X11Application(X11Connection& connection, NotificationCenter& notifications);

    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void setFrontWindow(QWindow& window) override { m_frontWindow.set(window); }
    /// Window managers let a user's wish pass without one.
    void useActivationToken(const QString&) override {}
    void terminate() override;

private:
    void applyPolicy(QWindow& window);
    void sendToRoot(WId window, const char* type, const std::array<std::uint32_t, 5>& data);

    X11Connection& m_connection;
    ActivationPolicy m_policy = ActivationPolicy::regular;
    FrontWindow m_frontWindow;
};

} // namespace framora

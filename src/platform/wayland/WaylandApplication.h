#pragma once

#include "platform/Application.h"
#include "platform/desktop/FrontWindow.h"
#include "platform/wayland/WaylandConnection.h"

#include <utility>

namespace framora {

/// The program's windows before a compositor.
class WaylandApplication final : public Application {
public:
    /// `connection` says what the compositor offers and outlives this.
    WaylandApplication(const WaylandConnection& connection, NotificationCenter& notifications);

    /// No protocol has a word for windows that skip the task bar.
    void setActivationPolicy(ActivationPolicy) override {}
    bool hasActivationPolicies() const override { return false; }
    void activate() override;
    void setFrontWindow(QWindow& window) override { m_frontWindow.set(window); }
    void useActivationToken(const QString& token) override { m_token = token; }
    QString takeActivationToken() override { return std::exchange(m_token, {}); }
    void terminate() override;

private:
    FrontWindow m_frontWindow;
    QString m_token; ///< For one activation.
};

} // namespace framora

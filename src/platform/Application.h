#pragma once

#include <QString>

class QWindow;

namespace framora {

/// How the program as a whole appears on the desktop.
enum class ActivationPolicy {
    regular,  ///< Its windows stand in the task bar.
    accessory ///< Its windows skip the task bar; only the tray shows it.
};

class Application {
public:
    virtual ~Application() = default;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Whether a program can choose that here. Elsewhere its windows stand in the task bar.
    virtual bool hasActivationPolicies() const { return true; }
    /// Brings the program's front window forward, over whatever is active.
    virtual void activate() = 0;
    /// The window that activate() brings forward, until another one is shown or gets the focus. A window that
    /// is merely raised does not say so itself.
    virtual void setFrontWindow(QWindow& window) = 0;
    /// What the desktop gave along with the user's wish for a window, by which the next activate() shows that
    /// it is one. Needed where programs may not come forward by themselves.
    virtual void useActivationToken(const QString& token) = 0;
    /// The token, for another program that comes to the front in this one's stead; nothing when there is
    /// none.
    virtual QString takeActivationToken() { return {}; }
    virtual void terminate() = 0;
};

} // namespace framora

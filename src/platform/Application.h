#pragma once

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
    /// Brings the program's front window forward, over whatever is active.
    virtual void activate() = 0;
    virtual void terminate() = 0;
};

} // namespace framora

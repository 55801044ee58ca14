#pragma once

#include "platform/WindowSystem.h"

#include <QString>
#include <memory>

namespace framora {

class WaylandConnection;

/// The session that the program is started in, looked at before there is an application: it says which window
/// system the program will work with.
class WindowSession {
public:
    /// Asks the environment, and the compositor that it names.
    WindowSession();
    ~WindowSession();

    /// Whether there is anything to show windows on.
    bool exists() const;
    /// What tells this session from the user's others.
    QString name() const;
    /// Tells Qt what to use, unless its user did. Before there is an application.
    void choosePlatform();
    /// Takes back what choosePlatform() said: programs that are started from here have a choice of their own.
    void platformIsChosen();
    /// Once, when there is one.
    std::unique_ptr<WindowSystem> makeWindowSystem(const WindowSystem::Services& services);

private:
    std::unique_ptr<WaylandConnection> m_wayland; ///< Null where there is none that answers.
    bool m_hasChosen = false;
};

} // namespace framora

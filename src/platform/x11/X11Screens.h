#pragma once

#include "platform/Screens.h"
#include "platform/x11/X11Connection.h"

namespace framora {

/// The monitors as RandR tells them now, the primary one first.
class X11Screens final : public Screens {
public:
    explicit X11Screens(X11Connection& connection) : m_connection(connection) {}
    std::vector<Screen> screens() override;
    /// The one that holds the pointer.
    std::optional<Screen> screenInUse() override;

private:
    /// Waiting for replies may have brought events along, which no socket announces any more: in a later
    /// turn.
    void deliverEventsLater();

    X11Connection& m_connection;
};

} // namespace framora

#pragma once

#include "platform/DesktopShortcuts.h"
#include "platform/x11/X11Connection.h"

namespace framora {

/// Desktops, window managers and other programs get their shortcuts from the X server, each key to one of
/// them: whoever asks for one that is given away is refused. So this asks, and gives back at once what it
/// got.
class X11DesktopShortcuts final : public DesktopShortcuts {
public:
    /// The connection outlives this.
    explicit X11DesktopShortcuts(X11Connection& connection) : m_connection(connection) {}
    bool isTaken(std::uint16_t virtualKey, std::uint64_t modifiers) override;

private:
    X11Connection& m_connection;
};

} // namespace framora

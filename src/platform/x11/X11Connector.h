#pragma once

#include "platform/x11/X11Connection.h"

#include <chrono>
#include <memory>

namespace framora {

/// Connects to an X server that may need to be started first, or may never answer, without waiting for it
/// longer than is asked for.
class X11Connector {
public:
    X11Connector();
    ~X11Connector();
    X11Connector(const X11Connector&) = delete;
    X11Connector& operator=(const X11Connector&) = delete;

    /// Null when there is no server, or when it has not answered within `patience`. The attempt then goes on,
    /// and the next call waits for that one.
    std::unique_ptr<X11Connection> connect(std::chrono::milliseconds patience);

private:
    struct Attempt;
    std::shared_ptr<Attempt> m_attempt; ///< The one that is under way.
};

} // namespace framora

#pragma once

#include "platform/wayland/WaylandConnection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace framora {

/// What lies on the clipboard, by a protocol that tells it also to programs without the focus.
class WaylandClipboard {
public:
    virtual ~WaylandClipboard() = default;

    /// By the protocol that the compositor offers; null where it offers none. The connection outlives it.
    static std::unique_ptr<WaylandClipboard> make(WaylandConnection& connection);

    /// How often somebody has put something there. What the connection has not delivered is not counted.
    std::int64_t changes() const { return m_changes; }
    /// The MIME types on offer, in the owner's order; empty when the clipboard is.
    virtual std::vector<std::string> types() const = 0;
    /// Has the owner write that type into `descriptor`, which stays the caller's.
    virtual void receive(const std::string& type, int descriptor) = 0;

protected:
    std::int64_t m_changes = 0;
};

} // namespace framora

#pragma once

#include "platform/x11/X11Connection.h"

#include <cstdint>

namespace framora {

/// Translates the server's modifier state into KeyModifier bits, by where the keyboard has Alt and Super now.
class X11Modifiers {
public:
    explicit X11Modifiers(X11Connection& connection);

    /// Reads the keyboard's modifier mapping again.
    void reload();
    /// `state`: the eight real modifiers, as in a key event's state.
    std::uint64_t flags(std::uint32_t state) const;
    /// The real modifiers that those KeyModifier bits stand for; bits without one are left out.
    std::uint16_t state(std::uint64_t flags) const;

private:
    X11Connection& m_connection;
    std::uint32_t m_alt = XCB_MOD_MASK_1;
    std::uint32_t m_super = XCB_MOD_MASK_4;
};

} // namespace framora

#pragma once

#include <chrono>
#include <cstddef>
#include <xcb/xproto.h>

namespace framora {

/// A picture on its way to one property of one client, in parts that the client takes one after the other.
struct ClipboardTransfer {
    xcb_window_t requestor = XCB_WINDOW_NONE;
    xcb_atom_t property = XCB_ATOM_NONE;
    std::size_t sent = 0; // bytes
    std::chrono::steady_clock::time_point deadline;
};

} // namespace framora

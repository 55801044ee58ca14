#pragma once

#include "screencapture/ClipboardOwner.h"
#include "screencapture/wayland/WaylandConnection.h"

#include <chrono>
#include <cstdint>
#include <vector>

struct wl_proxy;
struct wl_seat;

namespace framora {

/// Owns the clipboard of a Wayland session through ext-data-control or, where there is none,
/// wlr-data-control: without a window and without the focus. Any number of readers are served at a time, each
/// as fast as it reads.
class DataControlClipboard : public ClipboardOwner {
public:
    /// Connects to WAYLAND_DISPLAY. A reader that takes nothing for as long as `patience` is given up.
    explicit DataControlClipboard(std::vector<uint8_t> png,
                                  std::chrono::milliseconds patience = std::chrono::seconds(10));
    ~DataControlClipboard() override;

    static bool offeredBy(const WaylandConnection& connection);

    bool own() override;
    void run() override;

private:
    using Clock = std::chrono::steady_clock;

    /// The picture on its way into one reader's pipe.
    struct Transfer {
        int file = -1;
        std::size_t sent = 0; // bytes
        Clock::time_point deadline;
    };

    struct Listeners;

    void begin(int file);
    /// False when the reader has all of it, or will never take more.
    bool sendMore(Transfer& transfer);
    /// Gives every reader what it takes now, then waits for one, for the compositor, or for the end of
    /// patience.
    void serveReaders(bool withCompositor);

    std::vector<uint8_t> m_png;
    std::chrono::milliseconds m_patience;
    WaylandConnection m_connection;
    wl_seat* m_seat = nullptr;
    wl_proxy* m_manager = nullptr;
    wl_proxy* m_device = nullptr;
    wl_proxy* m_source = nullptr;
    bool m_owner = false;
    std::vector<Transfer> m_transfers;
};

} // namespace framora

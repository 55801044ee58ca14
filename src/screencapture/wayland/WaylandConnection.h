#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>
#include <wayland-client-core.h>

struct wl_registry;

namespace framora {

/// One connection to the compositor that WAYLAND_DISPLAY names, and what it offers.
class WaylandConnection {
public:
    struct Global {
        uint32_t name = 0;
        std::string interface;
        uint32_t version = 0;
    };

    /// Connects and learns what there is. `valid()` tells whether that worked.
    WaylandConnection();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    /// False when there is no compositor, or from the moment it is lost.
    bool valid() const { return m_display && wl_display_get_error(m_display) == 0; }
    /// Somebody listens there and does not answer: a session, but none to take pictures in.
    bool silent() const { return m_silent; }
    operator wl_display*() const { return m_display; }

    const std::vector<Global>& globals() const { return m_globals; }
    bool offers(const wl_interface& interface) const;
    /// The first global of that interface at `most` or the compositor's version, whichever is lower; null
    /// when there is none. The caller destroys it.
    template <typename T> T* bind(const wl_interface& interface, uint32_t most) const {
        for (const Global& global : m_globals)
            if (global.interface == interface.name)
                return static_cast<T*>(bind(global, interface, most));
        return nullptr;
    }
    void* bind(const Global& global, const wl_interface& interface, uint32_t most) const;

    /// Called from dispatching when an output comes or goes after the start.
    void onOutputsChanged(std::function<void()> call) { m_outputsChanged = std::move(call); }

    /// Sends what is queued and handles events until the condition holds. False when that took longer than
    /// `patience` or the connection is lost.
    bool dispatchUntil(const std::function<bool()>& condition, std::chrono::milliseconds patience);
    /// Until everything asked so far is answered.
    bool roundtrip(std::chrono::milliseconds patience = std::chrono::seconds(2));
    /// Sends what is queued, then handles events, waiting at most so long for the first; negative waits for
    /// ever. False when the connection is lost.
    bool dispatch(int milliseconds);

private:
    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    std::vector<Global> m_globals;
    bool m_silent = false;
    bool m_started = false;
    std::function<void()> m_outputsChanged;
};

} // namespace framora

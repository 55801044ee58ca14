#include "screencapture/wayland/WaylandConnection.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <wayland-client-protocol.h>

namespace framora {

namespace {

constexpr std::chrono::milliseconds kStartPatience{900};

} // namespace

WaylandConnection::WaylandConnection() {
    // The library would try a name of its own.
    const char* name = std::getenv("WAYLAND_DISPLAY");
    if (!name || !*name)
        return;
    // What it would print is said in our own line.
    wl_log_set_handler_client([](const char*, va_list) {});
    m_display = wl_display_connect(name);
    if (!m_display)
        return;
    static const wl_registry_listener listener{
        .global =
            [](void* data, wl_registry*, uint32_t number, const char* interface, uint32_t version) {
                auto& self = *static_cast<WaylandConnection*>(data);
                self.m_globals.push_back({number, interface, version});
                if (self.m_started && self.m_outputsChanged &&
                    std::strcmp(interface, wl_output_interface.name) == 0)
                    self.m_outputsChanged();
            },
        .global_remove =
            [](void* data, wl_registry*, uint32_t number) {
                auto& self = *static_cast<WaylandConnection*>(data);
                const auto gone = std::find_if(self.m_globals.begin(), self.m_globals.end(),
                                               [number](const Global& g) { return g.name == number; });
                if (gone == self.m_globals.end())
                    return;
                const bool output = gone->interface == wl_output_interface.name;
                self.m_globals.erase(gone);
                if (output && self.m_outputsChanged)
                    self.m_outputsChanged();
            },
    };
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &listener, this);
    if (!roundtrip(kStartPatience)) {
        m_silent = wl_display_get_error(m_display) == 0;
        wl_registry_destroy(m_registry);
        wl_display_disconnect(m_display);
        m_registry = nullptr;
        m_display = nullptr;
    }
    m_started = true;
}

WaylandConnection::~WaylandConnection() {
    if (!m_display)
        return;
    wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

bool WaylandConnection::offers(const wl_interface& interface) const {
    return std::any_of(m_globals.begin(), m_globals.end(),
                       [&](const Global& global) { return global.interface == interface.name; });
}

void* WaylandConnection::bind(const Global& global, const wl_interface& interface, uint32_t most) const {
    return wl_registry_bind(m_registry, global.name, &interface, std::min(most, global.version));
}

bool WaylandConnection::dispatch(int milliseconds) {
    while (wl_display_prepare_read(m_display) != 0)
        if (wl_display_dispatch_pending(m_display) < 0)
            return false;
    // A compositor that does not read now must not stop us: what is left goes with the next call.
    short events = POLLIN;
    if (wl_display_flush(m_display) < 0) {
        if (errno != EAGAIN) {
            wl_display_cancel_read(m_display);
            return false;
        }
        events |= POLLOUT;
    }
    pollfd waiting{wl_display_get_fd(m_display), events, 0};
    const int ready = poll(&waiting, 1, milliseconds);
    if (ready < 0 && errno != EINTR) {
        wl_display_cancel_read(m_display);
        return false;
    }
    if (ready > 0 && (waiting.revents & (POLLIN | POLLHUP | POLLERR))) {
        if (wl_display_read_events(m_display) < 0)
            return false;
    } else {
        wl_display_cancel_read(m_display);
    }
    return wl_display_dispatch_pending(m_display) >= 0;
}

bool WaylandConnection::dispatchUntil(const std::function<bool()>& condition,
                                      std::chrono::milliseconds patience) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + patience;
    while (valid()) {
        // Events that are here already wake no poll.
        if (wl_display_dispatch_pending(m_display) < 0)
            return false;
        if (condition())
            return true;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || !dispatch(static_cast<int>(left)))
            return condition();
    }
    return false;
}

bool WaylandConnection::roundtrip(std::chrono::milliseconds patience) {
    static const wl_callback_listener listener{
        .done = [](void* data, wl_callback*, uint32_t) { *static_cast<bool*>(data) = true; }};
    bool answered = false;
    wl_callback* callback = wl_display_sync(m_display);
    wl_callback_add_listener(callback, &listener, &answered);
    const bool done = dispatchUntil([&answered] { return answered; }, patience);
    wl_callback_destroy(callback);
    return done;
}

} // namespace framora

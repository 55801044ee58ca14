#include "platform/wayland/WaylandConnection.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <utility>

namespace framora {

namespace {

/// Whether the library has an error for it that the compositor told; else it has gone.
bool isRefusal(int error) {
    return error == EPROTO || error == EINVAL || error == ENOMEM;
}

} // namespace

const wl_registry_listener WaylandConnection::registryListener{
    [](void* data, wl_registry*, std::uint32_t name, const char* interface, std::uint32_t version) {
        auto& self = *static_cast<WaylandConnection*>(data);
        const Global global{name, interface, version};
        self.m_globals.push_back(global);
        for (const auto& handler : self.m_addedHandlers)
            handler(global);
    },
    [](void* data, wl_registry*, std::uint32_t name) {
        auto& self = *static_cast<WaylandConnection*>(data);
        const auto found = std::ranges::find(self.m_globals, name, &Global::name);
        if (found == self.m_globals.end())
            return;
        const Global global = std::move(*found);
        self.m_globals.erase(found);
        for (const auto& handler : self.m_removedHandlers)
            handler(global);
    },
};

WaylandConnection::WaylandConnection(int milliseconds) {
    // Without the variable the library would try a name of its own.
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return;
    m_display = wl_display_connect(nullptr);
    if (!m_display)
        return;
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &registryListener, this);
    if (roundTrip(milliseconds))
        return;
    wl_registry_destroy(std::exchange(m_registry, nullptr));
    wl_display_disconnect(std::exchange(m_display, nullptr));
}

WaylandConnection::~WaylandConnection() {
    stopListening();
    if (m_registry)
        wl_registry_destroy(m_registry);
    if (m_display)
        wl_display_disconnect(m_display);
}

const WaylandConnection::Global* WaylandConnection::find(std::string_view interface) const {
    const auto found = std::ranges::find(m_globals, interface, &Global::interface);
    return found == m_globals.end() ? nullptr : &*found;
}

void WaylandConnection::listen() {
    if (!isValid() || m_readable)
        return;
    const int descriptor = wl_display_get_fd(m_display);
    m_readable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    m_writable = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Write);
    m_writable->setEnabled(false);
    connect(m_readable.get(), &QSocketNotifier::activated, this, [this] { processEvents(); });
    connect(m_writable.get(), &QSocketNotifier::activated, this, [this] { flush(); });
    processEvents();
}

void WaylandConnection::stopListening() {
    const bool isNews = m_readable && m_readable->isEnabled();
    // A dead socket stays readable for ever. The notifier may be the one that is calling.
    if (m_readable)
        m_readable->setEnabled(false);
    if (m_writable)
        m_writable->setEnabled(false);
    if (!isNews || !m_display || !isRefusal(wl_display_get_error(m_display)))
        return;
    qWarning("The compositor refused a request and ended the connection for toasts and the clipboard");
    if (m_refusedHandler)
        m_refusedHandler();
}

void WaylandConnection::read() {
    // Nobody may read while events of an earlier reading wait; delivering them may nest, and leave new ones.
    while (wl_display_prepare_read(m_display) != 0) {
        if (wl_display_dispatch_pending(m_display) < 0)
            return;
    }
    pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
    if (poll(&descriptor, 1, 0) > 0)
        wl_display_read_events(m_display);
    else
        wl_display_cancel_read(m_display);
}

void WaylandConnection::processEvents() {
    if (isValid()) {
        read();
        wl_display_dispatch_pending(m_display);
    }
    flush();
}

bool WaylandConnection::waitForEvents(int milliseconds) {
    if (!isValid())
        return false;
    if (const int delivered = wl_display_dispatch_pending(m_display); delivered != 0) {
        flush();
        return delivered > 0;
    }
    flush();
    pollfd descriptor{wl_display_get_fd(m_display), POLLIN, 0};
    if (poll(&descriptor, 1, milliseconds) <= 0)
        return false;
    processEvents();
    return isValid();
}

bool WaylandConnection::roundTrip(int milliseconds) {
    if (!isValid())
        return false;
    static constexpr wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    bool done = false;
    wl_callback* const callback = wl_display_sync(m_display);
    wl_callback_add_listener(callback, &listener, &done);
    const QDeadlineTimer patience(milliseconds);
    while (!done && isValid() && !patience.hasExpired())
        waitForEvents(static_cast<int>(patience.remainingTime()));
    wl_callback_destroy(callback);
    return done;
}

void WaylandConnection::flush() {
    if (!isValid()) {
        stopListening();
        return;
    }
    const bool waits = wl_display_flush(m_display) < 0 && errno == EAGAIN;
    if (m_writable && m_writable->isEnabled() != waits)
        m_writable->setEnabled(waits);
    if (!isValid())
        stopListening();
}

} // namespace framora

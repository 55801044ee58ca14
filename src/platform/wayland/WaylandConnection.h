#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>
#include <wayland-client.h>

namespace framora {

/// The program's own connection to the compositor, beside Qt's: it sees the clipboard, the outputs and the
/// toasts, also while Qt's event queue waits, and also where Qt itself speaks X11.
///
/// Everything on it shares the main thread and the connection's own event queue. A listener may run a whole
/// capture: deliveries nest.
class WaylandConnection final : public QObject {
    Q_OBJECT

public:
    /// One thing that the compositor offers.
    struct Global {
        std::uint32_t name; ///< The compositor's number for it.
        std::string interface;
        std::uint32_t version;
    };
    using GlobalHandler = std::function<void(const Global&)>;

    /// Connects to the compositor that WAYLAND_DISPLAY names and hears what it offers. Needs no application
    /// yet; one that does not answer within `milliseconds` is none.
    explicit WaylandConnection(int milliseconds = 5000);
    ~WaylandConnection() override;

    /// False when there is no compositor, or it has gone.
    bool isValid() const { return m_display && wl_display_get_error(m_display) == 0; }
    operator wl_display*() const { return m_display; }

    /// What is offered now.
    const std::vector<Global>& globals() const { return m_globals; }
    bool offers(std::string_view interface) const { return find(interface) != nullptr; }
    /// The first of those that are offered, at `highestVersion` or the compositor's if that is lower; null
    /// where there is none. The caller destroys it.
    template <class Proxy> Proxy* bind(const wl_interface& interface, std::uint32_t highestVersion) {
        const Global* global = find(interface.name);
        return global ? bind<Proxy>(*global, interface, highestVersion) : nullptr;
    }
    template <class Proxy>
    Proxy* bind(const Global& global, const wl_interface& interface, std::uint32_t highestVersion) {
        return static_cast<Proxy*>(
            wl_registry_bind(m_registry, global.name, &interface, std::min(global.version, highestVersion)));
    }
    /// Hears of what comes and goes from now on. The handlers live as long as the connection.
    void onGlobalAdded(GlobalHandler handler) { m_addedHandlers.push_back(std::move(handler)); }
    void onGlobalRemoved(GlobalHandler handler) { m_removedHandlers.push_back(std::move(handler)); }

    /// Runs once when the compositor refuses a request, which ends the connection: within whatever noticed
    /// it, so it may only note that.
    void onRefused(std::function<void()> handler) { m_refusedHandler = std::move(handler); }

    /// From now on events are delivered by the event loop as they arrive.
    void listen();
    /// Delivers what has arrived.
    void processEvents();
    /// The compositor has done all that was asked of it, and what it said meanwhile is delivered. False when
    /// it does not answer within `milliseconds`.
    bool roundTrip(int milliseconds = 5000);
    /// Waits up to `milliseconds` for something to arrive and delivers it. False when nothing did.
    bool waitForEvents(int milliseconds);
    /// Sends what is asked. What the socket does not take yet goes with the next turns of the event loop.
    void flush();

private:
    const Global* find(std::string_view interface) const;
    void read();
    void stopListening();

    static const wl_registry_listener registryListener;

    wl_display* m_display = nullptr;
    wl_registry* m_registry = nullptr;
    std::vector<Global> m_globals;
    std::vector<GlobalHandler> m_addedHandlers;
    std::vector<GlobalHandler> m_removedHandlers;
    std::function<void()> m_refusedHandler;
    std::unique_ptr<QSocketNotifier> m_readable;
    std::unique_ptr<QSocketNotifier> m_writable; ///< Enabled while something waits to be sent.
};

} // namespace framora

#pragma once

#include "platform/x11/XcbReply.h"

#include <QObject>
#include <QSocketNotifier>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>
#include <xcb/xcb.h>

namespace framora {

/// The program's own connection to the X server, beside Qt's: it watches keys and the clipboard, also while
/// Qt's event queue waits.
class X11Connection final : public QObject {
    Q_OBJECT

public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// A connection as the library makes it, to be given to one X11Connection.
    struct Link {
        xcb_connection_t* connection;
        int screenNumber;
    };
    /// To the server that the environment names; on any thread. Without a server it is a broken one.
    static Link open();

    X11Connection() : X11Connection(open()) {}
    explicit X11Connection(const Link& link);
    ~X11Connection() override;

    /// False when there is no server, or it has gone.
    bool isValid() const { return m_connection && !xcb_connection_has_error(m_connection); }
    operator xcb_connection_t*() const { return m_connection; }
    xcb_window_t root() const { return m_screen->root; }

    xcb_atom_t atom(std::string_view name);

    /// Every event goes to every handler, in the order of their adding. The handlers live as long as the
    /// connection.
    void addEventHandler(EventHandler handler) { m_handlers.push_back(std::move(handler)); }
    /// Delivers what has arrived. With `roundTrip` all that the server did before this call has arrived.
    void processEvents(bool roundTrip = false);
    /// Waits up to `milliseconds` for something to arrive and delivers it. False when nothing did.
    bool waitForEvents(int milliseconds);
    void flush() { xcb_flush(m_connection); }

private:
    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::vector<EventHandler> m_handlers;
};

} // namespace framora

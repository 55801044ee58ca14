#include "platform/x11/X11Connection.h"

#include <poll.h>

namespace framora {

X11Connection::Link X11Connection::open() {
    Link link{};
    link.connection = xcb_connect(nullptr, &link.screenNumber);
    return link;
}

X11Connection::X11Connection(const Link& link) : m_connection(link.connection) {
    if (!isValid())
        return;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection));
    for (int i = 0; i < link.screenNumber && screens.rem > 1; ++i)
        xcb_screen_next(&screens);
    m_screen = screens.data;
    m_notifier =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { processEvents(); });
}

X11Connection::~X11Connection() {
    m_notifier.reset();
    xcb_disconnect(m_connection);
}

xcb_atom_t X11Connection::atom(std::string_view name) {
    const auto cookie =
        xcb_intern_atom(m_connection, false, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(m_connection, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

void X11Connection::processEvents(bool roundTrip) {
    if (roundTrip && isValid())
        XcbReply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
    if (!isValid()) {
        // A dead socket stays readable for ever.
        if (m_notifier)
            m_notifier->setEnabled(false);
        return;
    }
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        for (const auto& handler : m_handlers)
            handler(*event);
    }
    // A reply that a handler waited for may have brought events along, which no socket announces any more.
    flush();
}

bool X11Connection::waitForEvents(int milliseconds) {
    if (!isValid())
        return false;
    flush();
    pollfd descriptor{xcb_get_file_descriptor(m_connection), POLLIN, 0};
    if (poll(&descriptor, 1, milliseconds) <= 0)
        return false;
    processEvents();
    return true;
}

} // namespace framora

#include "desktop/shell/ClipboardOwner.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <stdexcept>

namespace framora {

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <class Reply> using Owned = std::unique_ptr<Reply, Free>;

constexpr int pollMilliseconds = 20;

} // namespace

ClipboardOwner::ClipboardOwner(const QString& displayName, QByteArray png, xcb_timestamp_t answeredTime)
    : m_png(std::move(png)), m_answeredTime(answeredTime),
      m_connection(xcb_connect(displayName.toLocal8Bit().constData(), nullptr)) {
    if (xcb_connection_has_error(m_connection))
        throw std::runtime_error("the clipboard's owner does not reach the display");
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    m_targets = atom("TARGETS");
    m_pngType = atom("image/png");
    const xcb_atom_t clipboard = atom("CLIPBOARD");
    xcb_set_selection_owner(m_connection, m_window, clipboard, XCB_CURRENT_TIME);
    const Owned<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
        m_connection, xcb_get_selection_owner(m_connection, clipboard), nullptr));
    if (!owner || owner->owner != m_window)
        throw std::runtime_error("the clipboard cannot be owned");
    m_thread = std::thread([this] { serve(); });
}

ClipboardOwner::~ClipboardOwner() {
    m_ending = true;
    m_thread.join();
    xcb_disconnect(m_connection);
}

xcb_atom_t ClipboardOwner::atom(const char* name) {
    const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        m_connection, xcb_intern_atom(m_connection, 0, std::uint16_t(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

void ClipboardOwner::serve() {
    while (!m_ending) {
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
            if ((event->response_type & 0x7f) == XCB_SELECTION_REQUEST)
                answer(reinterpret_cast<const xcb_selection_request_event_t&>(*event));
        pollfd connection{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&connection, 1, pollMilliseconds);
    }
}

void ClipboardOwner::answer(const xcb_selection_request_event_t& request) {
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = m_answeredTime;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = request.property;
    if (request.target == m_targets) {
        const xcb_atom_t offered[] = {m_targets, m_pngType};
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            XCB_ATOM_ATOM, 32, 2, offered);
    } else if (request.target == m_pngType) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                            m_pngType, 8, std::uint32_t(m_png.size()), m_png.constData());
    } else {
        notify.property = XCB_NONE;
    }
    xcb_send_event(m_connection, 0, request.requestor, 0, reinterpret_cast<const char*>(&notify));
    xcb_flush(m_connection);
}

} // namespace framora

#include "screencapture/ClipboardServer.h"

#include "screencapture/XConnection.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <string_view>

namespace framora {

namespace {

constexpr std::size_t kMostPartBytes = std::size_t{256} << 10;
constexpr std::chrono::seconds kOwnPatience{2};
constexpr uint32_t kMostPairs = 256; // of one MULTIPLE

template <typename Cookie, typename Reply>
XReply<Reply> replyOf(xcb_connection_t* c, Cookie cookie,
                      Reply* (*fetch)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) {
    xcb_generic_error_t* error = nullptr;
    XReply<Reply> reply(fetch(c, cookie, &error));
    std::free(error);
    return reply;
}

} // namespace

ClipboardServer::ClipboardServer(xcb_connection_t* connection, std::vector<uint8_t> png,
                                 std::chrono::milliseconds patience)
    : m_connection(connection), m_png(std::move(png)),
      m_partBytes(
          std::min(kMostPartBytes, std::size_t{xcb_get_maximum_request_length(connection)} * 4 - 128)),
      m_patience(patience) {}

bool ClipboardServer::internAtoms() {
    struct Entry {
        std::string_view name;
        xcb_atom_t* atom;
    };
    const std::array entries{
        Entry{"CLIPBOARD", &m_atoms.clipboard}, Entry{"TARGETS", &m_atoms.targets},
        Entry{"TIMESTAMP", &m_atoms.timestamp}, Entry{"MULTIPLE", &m_atoms.multiple},
        Entry{"ATOM_PAIR", &m_atoms.atomPair},  Entry{"SAVE_TARGETS", &m_atoms.saveTargets},
        Entry{"INCR", &m_atoms.incr},           Entry{"NULL", &m_atoms.null},
        Entry{"image/png", &m_atoms.png},
    };
    std::array<xcb_intern_atom_cookie_t, entries.size()> cookies;
    for (std::size_t i = 0; i < entries.size(); ++i)
        cookies[i] = xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(entries[i].name.size()),
                                     entries[i].name.data());
    bool all = true;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const auto reply = replyOf(m_connection, cookies[i], xcb_intern_atom_reply);
        if (reply)
            *entries[i].atom = reply->atom;
        all = all && reply;
    }
    return all;
}

bool ClipboardServer::own() {
    if (xcb_connection_has_error(m_connection) || !internAtoms())
        return false;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_window = xcb_generate_id(m_connection);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_window, screen->root, -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    // Ownership begins at a moment of the server's clock, which the notice of a property change tells.
    xcb_change_property(m_connection, XCB_PROP_MODE_APPEND, m_window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0,
                        nullptr);
    xcb_flush(m_connection);
    const auto end = Clock::now() + kOwnPatience;
    while (!xcb_connection_has_error(m_connection)) {
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
            if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY)
                return ownAt(reinterpret_cast<const xcb_property_notify_event_t&>(*event).time);
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) <= 0)
            return false;
    }
    return false;
}

bool ClipboardServer::ownAt(xcb_timestamp_t time) {
    m_since = time;
    xcb_set_selection_owner(m_connection, m_window, m_atoms.clipboard, time);
    const auto owner = replyOf(m_connection, xcb_get_selection_owner(m_connection, m_atoms.clipboard),
                               xcb_get_selection_owner_reply);
    m_owner = owner && owner->owner == m_window;
    return m_owner;
}

void ClipboardServer::run() {
    while (!xcb_connection_has_error(m_connection)) {
        while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)})
            handle(*event);
        dropOverdue();
        if (!m_owner && m_transfers.empty())
            return;
        xcb_flush(m_connection);
        // Writing may have read events, which then wake no poll.
        if (const XReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(m_connection)}) {
            handle(*event);
            continue;
        }
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        poll(&waiting, 1, waitTime());
    }
}

int ClipboardServer::waitTime() const {
    if (m_transfers.empty())
        return -1;
    const auto first = std::min_element(m_transfers.begin(), m_transfers.end(),
                                        [](auto& a, auto& b) { return a.deadline < b.deadline; });
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(first->deadline - Clock::now()).count();
    return static_cast<int>(std::max<long long>(0, left)) + 1;
}

void ClipboardServer::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case 0: { // a client that went away while it was being served
        const auto& error = reinterpret_cast<const xcb_value_error_t&>(event);
        if (error.error_code == XCB_WINDOW)
            drop(error.bad_value);
        break;
    }
    case XCB_SELECTION_REQUEST:
        answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        break;
    case XCB_SELECTION_CLEAR:
        if (reinterpret_cast<const xcb_selection_clear_event_t&>(event).selection == m_atoms.clipboard)
            m_owner = false;
        break;
    case XCB_PROPERTY_NOTIFY: {
        const auto& notice = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (notice.state == XCB_PROPERTY_DELETE)
            propertyTaken(notice.window, notice.atom);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        drop(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        break;
    default:
        break;
    }
}

void ClipboardServer::answer(const xcb_selection_request_event_t& request) {
    // Clients older than the conventions name no property and expect the target's name.
    const xcb_atom_t property = request.property ? request.property : request.target;
    const bool beforeOurs =
        request.time != XCB_CURRENT_TIME && static_cast<int32_t>(request.time - m_since) < 0;
    bool done = false;
    if (request.selection == m_atoms.clipboard && request.owner == m_window && !beforeOurs)
        done = request.target == m_atoms.multiple
                   ? request.property && convertMultiple(request.requestor, property)
                   : convert(request.requestor, request.target, property);

    alignas(4) std::array<char, 32> space{};
    auto& notify = reinterpret_cast<xcb_selection_notify_event_t&>(space);
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = done ? property : xcb_atom_t{XCB_ATOM_NONE};
    xcb_send_event(m_connection, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, space.data());
    xcb_flush(m_connection);
}

bool ClipboardServer::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    if (target == m_atoms.targets) {
        const std::array targets{m_atoms.targets, m_atoms.timestamp, m_atoms.multiple, m_atoms.saveTargets,
                                 m_atoms.png};
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                            targets.size(), targets.data());
    } else if (target == m_atoms.timestamp) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1,
                            &m_since);
    } else if (target == m_atoms.saveTargets) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms.null, 32, 0,
                            nullptr);
    } else if (target == m_atoms.png) {
        writePicture(requestor, property);
    } else {
        return false;
    }
    return true;
}

bool ClipboardServer::convertMultiple(xcb_window_t requestor, xcb_atom_t property) {
    const auto reply =
        replyOf(m_connection,
                xcb_get_property(m_connection, 0, requestor, property, m_atoms.atomPair, 0, 2 * kMostPairs),
                xcb_get_property_reply);
    if (!reply || reply->type != m_atoms.atomPair || reply->format != 32)
        return false;
    const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    std::vector<xcb_atom_t> pairs(first, first + xcb_get_property_value_length(reply.get()) / 4);
    bool changed = false;
    for (std::size_t i = 0; i + 1 < pairs.size(); i += 2) {
        if (pairs[i + 1] && convert(requestor, pairs[i], pairs[i + 1]))
            continue;
        pairs[i + 1] = XCB_ATOM_NONE; // says which of them could not be had
        changed = true;
    }
    if (changed)
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms.atomPair, 32,
                            static_cast<uint32_t>(pairs.size()), pairs.data());
    return true;
}

void ClipboardServer::writePicture(xcb_window_t requestor, xcb_atom_t property) {
    if (m_png.size() <= m_partBytes) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms.png, 8,
                            static_cast<uint32_t>(m_png.size()), m_png.data());
        return;
    }
    // A second request for the same property starts anew.
    std::erase_if(m_transfers, [&](const ClipboardTransfer& t) {
        return t.requestor == requestor && t.property == property;
    });
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection, requestor, XCB_CW_EVENT_MASK, &events);
    const auto size = static_cast<uint32_t>(m_png.size());
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, requestor, property, m_atoms.incr, 32, 1, &size);
    m_transfers.push_back({requestor, property, 0, Clock::now() + m_patience});
}

bool ClipboardServer::sendPart(ClipboardTransfer& transfer) {
    // After the last byte one empty part says that it was the last.
    const std::size_t count = std::min(m_partBytes, m_png.size() - transfer.sent);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, transfer.requestor, transfer.property,
                        m_atoms.png, 8, static_cast<uint32_t>(count), m_png.data() + transfer.sent);
    transfer.sent += count;
    transfer.deadline = Clock::now() + m_patience;
    return count == 0;
}

void ClipboardServer::propertyTaken(xcb_window_t requestor, xcb_atom_t property) {
    const auto it = std::find_if(m_transfers.begin(), m_transfers.end(), [&](const ClipboardTransfer& t) {
        return t.requestor == requestor && t.property == property;
    });
    if (it == m_transfers.end() || !sendPart(*it))
        return;
    m_transfers.erase(it);
    stopListening(requestor);
}

void ClipboardServer::drop(xcb_window_t requestor) {
    std::erase_if(m_transfers, [requestor](const ClipboardTransfer& t) { return t.requestor == requestor; });
}

void ClipboardServer::dropOverdue() {
    const auto now = Clock::now();
    std::vector<xcb_window_t> given;
    std::erase_if(m_transfers, [&](const ClipboardTransfer& t) {
        if (t.deadline > now)
            return false;
        given.push_back(t.requestor);
        return true;
    });
    for (const xcb_window_t requestor : given)
        stopListening(requestor);
}

void ClipboardServer::stopListening(xcb_window_t requestor) {
    const bool more =
        std::any_of(m_transfers.begin(), m_transfers.end(),
                    [requestor](const ClipboardTransfer& t) { return t.requestor == requestor; });
    if (more)
        return;
    const uint32_t events = XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(m_connection, requestor, XCB_CW_EVENT_MASK, &events);
    xcb_flush(m_connection);
}

} // namespace framora

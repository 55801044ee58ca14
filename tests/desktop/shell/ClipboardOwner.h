#pragma once

#include <QByteArray>
#include <QString>

#include <atomic>
#include <thread>
#include <xcb/xcb.h>

namespace framora {

/// Owns CLIPBOARD with a PNG until this goes away, and answers every request with a time of its own choice in
/// place of the request's.
class ClipboardOwner {
public:
    ClipboardOwner(const QString& displayName, QByteArray png, xcb_timestamp_t answeredTime);
    ~ClipboardOwner();

private:
    xcb_atom_t atom(const char* name);
    void serve();
    void answer(const xcb_selection_request_event_t& request);

    const QByteArray m_png;
    const xcb_timestamp_t m_answeredTime;
    xcb_connection_t* m_connection;
    xcb_window_t m_window;
    xcb_atom_t m_targets;
    xcb_atom_t m_pngType;
    std::atomic<bool> m_ending = false;
    std::thread m_thread;
};

} // namespace framora

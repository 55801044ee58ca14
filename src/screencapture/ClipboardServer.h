#pragma once

#include "screencapture/ClipboardOwner.h"
#include "screencapture/ClipboardTransfer.h"

#include <chrono>
#include <cstdint>
#include <vector>
#include <xcb/xcb.h>

namespace framora {

/// Owns CLIPBOARD and answers every client that asks for the picture, by the rules of the window system's
/// inter-client conventions: TARGETS, TIMESTAMP, MULTIPLE, SAVE_TARGETS and image/png, large pictures in
/// parts.
class ClipboardServer : public ClipboardOwner {
public:
    /// `png` is kept; the connection belongs to the caller and outlives the server. A client that takes
    /// nothing for as long as `patience` is given up.
    ClipboardServer(xcb_connection_t* connection, std::vector<uint8_t> png,
                    std::chrono::milliseconds patience = std::chrono::seconds(10));

    /// Takes the clipboard. False when it could not be taken within two seconds.
    bool own() override;
    /// Serves until another client owns the clipboard and what was under way has been taken, or until the
    /// connection is lost.
    void run() override;

private:
    using Clock = std::chrono::steady_clock;

    struct Atoms {
        xcb_atom_t clipboard = XCB_ATOM_NONE;
        xcb_atom_t targets = XCB_ATOM_NONE;
        xcb_atom_t timestamp = XCB_ATOM_NONE;
        xcb_atom_t multiple = XCB_ATOM_NONE;
        xcb_atom_t atomPair = XCB_ATOM_NONE;
        xcb_atom_t saveTargets = XCB_ATOM_NONE;
        xcb_atom_t incr = XCB_ATOM_NONE;
        xcb_atom_t null = XCB_ATOM_NONE;
        xcb_atom_t png = XCB_ATOM_NONE;
    };

    bool internAtoms();
    bool ownAt(xcb_timestamp_t time);
    void handle(const xcb_generic_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    /// Writes what `target` stands for into the property; false when there is no such target.
    bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
    void writePicture(xcb_window_t requestor, xcb_atom_t property);
    /// True when the last part is with the client.
    bool sendPart(ClipboardTransfer& transfer);
    void propertyTaken(xcb_window_t requestor, xcb_atom_t property);
    void drop(xcb_window_t requestor);
    void dropOverdue();
    void stopListening(xcb_window_t requestor);
    int waitTime() const;

    xcb_connection_t* m_connection;
    std::vector<uint8_t> m_png;
    Atoms m_atoms;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_timestamp_t m_since = XCB_CURRENT_TIME;
    bool m_owner = false;
    std::size_t m_partBytes;
    std::chrono::milliseconds m_patience;
    std::vector<ClipboardTransfer> m_transfers;
};

} // namespace framora

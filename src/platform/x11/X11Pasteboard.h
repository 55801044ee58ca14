#pragma once

#include "platform/Pasteboard.h"
#include "platform/x11/X11Connection.h"

#include <QByteArray>
#include <QImage>
#include <functional>
#include <vector>

namespace framora {

/// The CLIPBOARD selection. Changes are counted and foreign content is read over the program's own
/// connection; what the program offers goes through Qt. When the program quits, a small process takes over
/// and serves it until somebody else copies something.
class X11Pasteboard final : public Pasteboard {
public:
    /// A file's picture with its pixel ratio; null when it cannot be read.
    using DecodePicture = std::function<QImage(const QByteArray& file)>;

    X11Pasteboard(X11Connection& connection, DecodePicture decodePicture);

    std::int64_t changeCount() override;
    QImage readImage() override;
    void writePng(const QByteArray& png) override;
    /// The same: an X server lets every program offer at any time.
    void adoptPicture(const QByteArray& png) override { writePng(png); }

private:
    /// For a server that tells of no changes: another owner than at the last look is one.
    void lookAtOwner();
    void handOver();
    void handleEvent(const xcb_generic_event_t& event);
    QByteArray readTarget(xcb_atom_t target);
    bool answersRequest(const xcb_selection_notify_event_t& notify) const;
    /// A late answer to the present question must not pass for one to the next.
    void giveUpRequest();
    /// Serves the connection until `done`. False after `milliseconds`, or when the owner or the server has
    /// gone.
    bool waitUntil(const bool& done, int milliseconds);
    /// The property the owner wrote, which it is then told to be rid of. Sets `type`.
    QByteArray takeProperty(xcb_atom_t& type);
    std::vector<xcb_atom_t> offeredTargets();

    X11Connection& m_connection;
    DecodePicture m_decodePicture;
    std::unique_ptr<QObject> m_untilQuit; ///< Context of what waits for the program's end.
    xcb_window_t m_window = 0;
    std::uint8_t m_xfixesFirstEvent = 0;
    std::int64_t m_changeCount = 0;
    xcb_window_t m_seenOwner = XCB_NONE; ///< Where the server tells of no changes.
    xcb_atom_t m_clipboard = 0;
    xcb_atom_t m_property = 0;
    xcb_atom_t m_incr = 0;
    xcb_atom_t m_targets = 0;

    // The conversion that is under way, and the times of those that were given up.
    xcb_atom_t m_requestTarget = 0;
    std::vector<xcb_timestamp_t> m_givenUp;
    xcb_timestamp_t m_serverTime = XCB_CURRENT_TIME;
    xcb_timestamp_t m_requestTime = XCB_CURRENT_TIME;
    bool m_answered = false;
    bool m_refused = false;
    bool m_newChunk = false;
    bool m_ownerIsAsked = false; ///< Nobody has taken the clipboard since it was asked.
    bool m_ownerIsGone = false;  ///< The owner that was asked answers no more.
};

} // namespace framora

#pragma once

#include "screencapture/FrozenScreen.h"
#include "screencapture/OverlayPainter.h"
#include "screencapture/OverlayScene.h"
#include "screencapture/PictureFormats.h"

#include <map>
#include <memory>
#include <vector>
#include <xcb/xcb.h>

namespace framora {

class XConnection;

/// The opaque window over the whole screen that shows the frozen picture, dimmed, and what is selected of it.
/// It repaints only what changed, and never draws faster than the server takes it. Monitors may differ in
/// their ratio, device pixels a point: each scene is drawn at the one it is given with.
class Overlay {
public:
    /// `frozen` outlives the overlay.
    Overlay(const XConnection& connection, FrozenScreen& frozen, const PictureFormats& formats);
    ~Overlay();
    Overlay(const Overlay&) = delete;
    Overlay& operator=(const Overlay&) = delete;

    xcb_window_t window() const { return m_window; }
    /// Puts the window up with the screen dimmed and nothing else on it. The server draws that by itself
    /// where it can. False when memory is missing.
    bool show();
    /// Fetches what every further drawing needs. False when memory is missing. The other functions do it as
    /// well.
    bool prepare();
    /// Takes the window away at once.
    void hide();
    /// What should be seen; drawn by flush().
    void setScene(const OverlayScene& scene, double ratio) { m_wanted = {scene, ratio}; }
    /// Draws what changed when the server has taken the frame before.
    void flush();
    /// True when the event was the overlay's.
    bool handleEvent(const xcb_generic_event_t& event);
    /// The font and other things that are better loaded when nobody waits.
    void warmUp(double ratio);
    bool busy() const { return m_framesUnderway > 0; }
    /// A size label of that selection in its place beside `corner` on `monitor`.
    OverlayScene::Label labelFor(const Rect& selection, Point corner, const Rect& monitor, double ratio);

private:
    struct Drawing {
        OverlayScene scene;
        double ratio = 1;
        bool operator==(const Drawing&) const = default;
    };
    OverlayPainter& painter(double ratio);
    std::vector<Rect> difference();
    void showByServer(const Rect& whole);
    void put(const Rect& part, bool notify);

    const XConnection& m_connection;
    FrozenScreen& m_frozen;
    xcb_render_pictformat_t m_rootFormat;
    std::unique_ptr<ServerImage> m_frame;
    std::map<double, OverlayPainter> m_painters; // by their ratio
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_gcontext_t m_gc = XCB_NONE;
    uint8_t m_completionEvent = 0;
    Drawing m_shown;
    Drawing m_wanted;
    int m_framesUnderway = 0;
    int m_raisesLeft = 50; // against another window that wants to be on top as well
};

} // namespace framora

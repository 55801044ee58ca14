#pragma once

#include "screencapture/CaptureMode.h"
#include "screencapture/PictureFormats.h"

#include <xcb/xproto.h>

namespace framora {

class XConnection;

/// The pointers of the two modes: a fine cross with an open middle, and a camera. Drawn at the screen's ratio
/// where the server takes pictures as cursors, else out of the server's own cursor font.
class CaptureCursor {
public:
    CaptureCursor(const XConnection& connection, const PictureFormats& formats, double ratio);

    /// Made at the first call of a mode.
    xcb_cursor_t forMode(CaptureMode mode);

private:
    xcb_cursor_t drawn(CaptureMode mode) const;
    xcb_cursor_t fromFont(CaptureMode mode) const;

    const XConnection& m_connection;
    xcb_render_pictformat_t m_format;
    double m_ratio;
    xcb_cursor_t m_area = XCB_CURSOR_NONE;
    xcb_cursor_t m_window = XCB_CURSOR_NONE;
};

} // namespace framora

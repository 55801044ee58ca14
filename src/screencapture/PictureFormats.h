#pragma once

#include <xcb/render.h>

namespace framora {

class XConnection;

/// The server's formats for drawing with alpha; XCB_NONE where it has none.
struct PictureFormats {
    xcb_render_pictformat_t argb = XCB_NONE; ///< 32 bits, premultiplied, blue lowest
    xcb_render_pictformat_t root = XCB_NONE; ///< of the root window's visual

    static PictureFormats of(const XConnection& connection);
};

} // namespace framora

#pragma once

#include "screencapture/PixelFormat.h"
#include "screencapture/ServerImage.h"

#include <memory>
#include <xcb/xproto.h>

namespace framora {

class XConnection;

/// The screen as it was at one moment. The server copies it at once; its pixels come here when they are asked
/// for, which the first picture of the overlay does not need.
class FrozenScreen {
public:
    explicit FrozenScreen(const XConnection& connection);
    ~FrozenScreen();
    FrozenScreen(const FrozenScreen&) = delete;
    FrozenScreen& operator=(const FrozenScreen&) = delete;

    /// False when the server has no memory for the copy, or pixels this program cannot read.
    bool valid() const { return m_pixmap != XCB_NONE || m_image; }
    const PixelFormat& format() const { return m_format; }
    /// The server's copy, of the root window's size; none once image() was called.
    xcb_pixmap_t pixmap() const { return m_pixmap; }
    /// The pixels, fetched at the first call; null when that fails. The fourth byte of a pixel means nothing.
    ServerImage* image();
    std::unique_ptr<ServerImage> takeImage();

private:
    void freePixmap();

    const XConnection& m_connection;
    PixelFormat m_format;
    xcb_pixmap_t m_pixmap = XCB_NONE;
    std::unique_ptr<ServerImage> m_image;
};

} // namespace framora

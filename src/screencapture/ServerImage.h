#pragma once

#include "screencapture/Geometry.h"
#include "screencapture/PixelFormat.h"
#include "screencapture/PixelImage.h"

#include <memory>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace framora {

class XConnection;

/// A picture that the X server reads and writes directly where it can share memory; otherwise the pixels
/// travel through the connection.
class ServerImage : public PixelImage {
public:
    /// Null when a side is not 1...32767 or when memory runs out. The pixels are zero.
    static std::unique_ptr<ServerImage> create(const XConnection& connection, int width, int height);
    ~ServerImage() override;

    /// Fills the whole image from a drawable's top left corner. The fourth byte is unspecified where the
    /// format has no alpha. False when the server refuses.
    bool read(xcb_drawable_t drawable, const PixelFormat& format);
    /// Draws `part` at the same place of a drawable. With `notify`, an image shared with the server answers
    /// with one completion event, until which the pixels should stay; the return value says whether that
    /// event will come.
    bool put(xcb_drawable_t drawable, xcb_gcontext_t gc, int depth, const PixelFormat& format,
             const Rect& part, bool notify) const;
    /// Gives the memory back without a word to the server: for a forked process, whose connection it is not.
    void abandon();

private:
    ServerImage(const XConnection& connection, int width, int height)
        : PixelImage(width, height), m_connection(connection) {}

    bool allocate();

    const XConnection& m_connection;
    xcb_shm_seg_t m_segment = XCB_NONE;
    bool m_sharedMemory = false;
};

} // namespace framora

#pragma once

#include "screencapture/Geometry.h"
#include "screencapture/PixelFormat.h"

#include <cstdint>
#include <memory>
#include <xcb/shm.h>
#include <xcb/xcb.h>

namespace framora {

class XConnection;

/// A picture in memory, 32-bit BGRA without padding, that the X server reads and writes directly where it can
/// share memory; otherwise the pixels travel through the connection.
class ServerImage {
public:
    /// Null when a side is not 1...32767 or when memory runs out. The pixels are zero.
    static std::unique_ptr<ServerImage> create(const XConnection& connection, int width, int height);
    ~ServerImage();
    ServerImage(const ServerImage&) = delete;
    ServerImage& operator=(const ServerImage&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t strideBytes() const { return static_cast<std::size_t>(m_width) * 4; }
    uint32_t* row(int y) {
        return m_pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width);
    }
    const uint32_t* row(int y) const {
        return m_pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width);
    }

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
        : m_connection(connection), m_width(width), m_height(height) {}

    bool allocate();
    std::size_t byteCount() const { return strideBytes() * static_cast<std::size_t>(m_height); }

    const XConnection& m_connection;
    int m_width;
    int m_height;
    uint32_t* m_pixels = nullptr;
    xcb_shm_seg_t m_segment = XCB_NONE;
    bool m_sharedMemory = false;
};

} // namespace framora

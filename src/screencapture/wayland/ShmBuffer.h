#pragma once

#include "screencapture/MemoryImage.h"

#include <cstdint>
#include <memory>

struct wl_buffer;
struct wl_shm;

namespace framora {

/// Pixels that the compositor reads or writes while it holds them.
class ShmBuffer {
public:
    /// A buffer of the image's pixels in this wl_shm.format of 32 bits. `image` is one of createShared().
    ShmBuffer(wl_shm* shm, std::unique_ptr<MemoryImage> image, uint32_t format);
    /// The same with the lines of another format: `height` lines of `stride` bytes, which fit into the image.
    ShmBuffer(wl_shm* shm, std::unique_ptr<MemoryImage> image, uint32_t format, int width, int height,
              int stride);
    ~ShmBuffer();
    ShmBuffer(const ShmBuffer&) = delete;
    ShmBuffer& operator=(const ShmBuffer&) = delete;

    operator wl_buffer*() const { return m_buffer; }
    MemoryImage& image() { return *m_image; }
    std::unique_ptr<MemoryImage> takeImage() { return std::move(m_image); }

    /// From attaching it until the compositor lets go of it.
    bool held() const { return m_held; }
    void setHeld() { m_held = true; }

private:
    std::unique_ptr<MemoryImage> m_image;
    wl_buffer* m_buffer;
    bool m_held = false;
};

} // namespace framora

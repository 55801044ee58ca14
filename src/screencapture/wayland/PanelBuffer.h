#pragma once

#include "screencapture/PixelFormat.h"
#include "screencapture/wayland/Output.h"
#include "screencapture/wayland/ShmBuffer.h"

#include <optional>

namespace framora {

/// The memory that the compositor copies an output into, in one of the layouts that it offers.
class PanelBuffer {
public:
    /// The layout is one that can be read, of sizes that can be held. The first one counts; `stride` is in
    /// bytes, 0 for the least there is.
    void offer(uint32_t shmFormat, uint32_t width, uint32_t height, uint32_t stride);

    int width() const { return m_width; }
    int height() const { return m_height; }

    /// The buffer in that layout; null when there is no such layout, or no memory.
    wl_buffer* allocate(wl_shm* shm);
    /// All of it, before the compositor has to.
    void touch() { m_buffer->image().touch(); }
    void setBottomUp(bool bottomUp) { m_bottomUp = bottomUp; }

    /// What the compositor wrote, as the user sees it: null when that is not the output's size.
    std::unique_ptr<PixelImage> takeUpright(const Output& output, int transform);

private:
    std::optional<PixelFormat> m_format;
    uint32_t m_shmFormat = 0;
    int m_width = 0; // pixels of the panel
    int m_height = 0;
    int m_stride = 0; // bytes
    bool m_bottomUp = false;
    std::unique_ptr<ShmBuffer> m_buffer;
};

} // namespace framora

#include "screencapture/wayland/PanelBuffer.h"

#include "screencapture/wayland/UprightPixels.h"

#include <wayland-client-protocol.h>

namespace framora {

void PanelBuffer::offer(uint32_t shmFormat, uint32_t width, uint32_t height, uint32_t stride) {
    constexpr uint32_t kMost = 32767;
    const auto layout = shmPixelFormat(shmFormat);
    if (m_format || !layout || width > kMost || height > kMost)
        return;
    const uint32_t least = width * static_cast<uint32_t>(layout->bitsPerPixel) / 8;
    if (stride == 0)
        stride = (least + 3) / 4 * 4;
    if (stride < least || stride > 4 * kMost || uint64_t{stride} * height > INT32_MAX)
        return;
    m_format = layout;
    m_shmFormat = shmFormat;
    m_width = static_cast<int>(width);
    m_height = static_cast<int>(height);
    m_stride = static_cast<int>(stride);
}

wl_buffer* PanelBuffer::allocate(wl_shm* shm) {
    auto image = m_format ? MemoryImage::createShared((m_stride + 3) / 4, m_height) : nullptr;
    if (!image)
        return nullptr;
    m_buffer = std::make_unique<ShmBuffer>(shm, std::move(image), m_shmFormat, m_width, m_height, m_stride);
    return *m_buffer;
}

std::unique_ptr<PixelImage> PanelBuffer::takeUpright(const Output& output, int transform) {
    const bool onItsSide = transform % 2 == 1;
    if (!m_buffer || (onItsSide ? m_height : m_width) != output.pixelWidth ||
        (onItsSide ? m_width : m_height) != output.pixelHeight)
        return nullptr;
    auto filled = m_buffer->takeImage();
    if (m_format->native() && !m_bottomUp && transform == WL_OUTPUT_TRANSFORM_NORMAL &&
        m_stride == m_width * 4)
        return filled;
    auto upright = MemoryImage::create(output.pixelWidth, output.pixelHeight);
    if (upright)
        copyUpright({reinterpret_cast<const uint8_t*>(filled->row(0)), m_width, m_height,
                     static_cast<std::size_t>(m_stride), *m_format, m_bottomUp, transform},
                    *upright);
    return upright;
}

} // namespace framora

#include "editor/render/raster/PixelBuffer.h"

#include <limits>

namespace framora::raster {

PixelBuffer PixelBuffer::create(int width, int height) {
    constexpr std::size_t alignment = 64;
    PixelBuffer buffer;
    if (width <= 0 || height <= 0)
        return buffer;
    const std::size_t stride = (std::size_t(width) * 4 + alignment - 1) / alignment * alignment;
    if (std::size_t(height) > std::numeric_limits<std::size_t>::max() / 2 / stride)
        return buffer;
    auto* data = static_cast<std::byte*>(std::aligned_alloc(alignment, stride * std::size_t(height)));
    if (!data)
        return buffer;
    buffer.m_data.reset(data);
    buffer.m_view = {data, width, height, std::ptrdiff_t(stride)};
    return buffer;
}

} // namespace framora::raster

#pragma once

#include <cstddef>
#include <cstdint>

namespace framora {

/// A picture in memory: 32-bit BGRA (blue in the lowest byte) without padding. Who owns the memory, and who
/// else sees it, is told by the derived types.
class PixelImage {
public:
    virtual ~PixelImage() = default;
    PixelImage(const PixelImage&) = delete;
    PixelImage& operator=(const PixelImage&) = delete;

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::size_t strideBytes() const { return static_cast<std::size_t>(m_width) * 4; }
    uint32_t* row(int y) {
        return m_pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width);
    }
    const uint32_t* row(int y) const {
        return m_pixels + static_cast<std::size_t>(y) * static_cast<std::size_t>(m_width);
    }

protected:
    PixelImage(int width, int height) : m_width(width), m_height(height) {}

    std::size_t byteCount() const { return strideBytes() * static_cast<std::size_t>(m_height); }

    int m_width;
    int m_height;
    uint32_t* m_pixels = nullptr;
};

} // namespace framora

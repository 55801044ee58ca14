#pragma once

#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/Paint.h"

#include <memory>

namespace framora::raster {

/// A block of pixels being mixed that is made before the picture is. Beyond it nothing is there.
class MixBuffer {
public:
    /// Where it lies in the output. Its pixels are still to be written.
    explicit MixBuffer(const TileRect& area)
        : m_area(area), m_pixels(std::make_unique_for_overwrite<MixPixel[]>(area.area())) {}

    const TileRect& area() const { return m_area; }
    MixPixel* row(int y) { return m_pixels.get() + std::size_t(y) * std::size_t(m_area.width); }
    const MixPixel* row(int y) const { return m_pixels.get() + std::size_t(y) * std::size_t(m_area.width); }

private:
    TileRect m_area;
    std::unique_ptr<MixPixel[]> m_pixels;
};

/// Shows a block where it lies.
class MixBufferPaint : public Paint {
public:
    explicit MixBufferPaint(std::shared_ptr<const MixBuffer> buffer) : m_buffer(std::move(buffer)) {}

    const TileRect& area() const { return m_buffer->area(); }
    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return false; }

private:
    std::shared_ptr<const MixBuffer> m_buffer;
};

} // namespace framora::raster

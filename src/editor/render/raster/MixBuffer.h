#pragma once

#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelView.h"

#include <memory>
#include <vector>

namespace framora::raster {

/// A block of pixels being mixed that is made before the picture is. Beyond it nothing is there.
class MixBuffer {
public:
    /// The pixels of `picture`; its first one lies at (x, y) in the output.
    MixBuffer(PixelView picture, int x, int y);

    const TileRect& area() const { return m_area; }
    MixPixel* row(int y) { return m_pixels.data() + std::size_t(y) * std::size_t(m_area.width); }
    const MixPixel* row(int y) const { return m_pixels.data() + std::size_t(y) * std::size_t(m_area.width); }
    std::size_t size() const { return m_area.area(); }

    /// Scales every channel by 0...1.
    void fade(double opacity);
    /// A Gaussian blur of so many pixels. What reaches beyond the block is lost.
    void blur(double deviation);
    /// Puts `above`, a block of the same area, over it.
    void put(const MixBuffer& above);

private:
    TileRect m_area;
    std::vector<MixPixel> m_pixels; ///< One more is readable behind the last one.
};

/// Shows a block where it lies.
class MixBufferPaint : public Paint {
public:
    explicit MixBufferPaint(std::shared_ptr<const MixBuffer> buffer) : m_buffer(std::move(buffer)) {}

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return false; }

private:
    std::shared_ptr<const MixBuffer> m_buffer;
};

} // namespace framora::raster

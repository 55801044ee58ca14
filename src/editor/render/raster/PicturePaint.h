#pragma once

#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PicturePyramid.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/ProjectiveSampler.h"
#include "editor/render/raster/SeparableSampler.h"
#include "editor/render/raster/ShadeCache.h"

#include <memory>

namespace framora::raster {

/// A picture stretched over a rectangle about the origin of the layer's points. Beyond the rectangle its edge
/// repeats: what shows where is the layer's shape alone.
class PicturePaint : public Paint {
public:
    /// The rectangle is `width` x `height` points; the output has `outputWidth` x `outputHeight` pixels. With
    /// a `cache`, which is this picture's own and lives as long as the paint, each row is shaded by one
    /// thread at a time.
    PicturePaint(std::shared_ptr<const PicturePyramid> picture, double width, double height,
                 const Placement& placement, int outputWidth, int outputHeight, ShadeCache* cache = nullptr);

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool draw(const TileRect& tile, MutablePixelView out, Storing storing) const override;
    bool isOpaque() const override { return m_picture->isOpaque(); }
    bool prefersSquareTiles() const override { return !m_separable; }
    std::optional<BlockCorner> blockCorner() const override;

private:
    /// mix() from the layer's origin, without the cache.
    void filter(const TileRect& tile, MixPixel* out) const;

    std::shared_ptr<const PicturePyramid> m_picture;
    int m_originX;
    int m_originY;
    ProjectiveSampler m_projective;
    std::shared_ptr<const SeparableSampler> m_separable; ///< Null for a map that turns or tilts.
    ShadeCache* m_cache = nullptr;
};

} // namespace framora::raster

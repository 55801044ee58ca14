#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Paint.h"

#include <memory>
#include <vector>

namespace framora::raster {

/// White diagonal stripes over another paint, as a window's light falls: 20 points wide and 40 points apart,
/// measured along x, from the top left to the bottom right. They start in the bottom left corner of the
/// canvas.
class ScenePaint : public Paint {
public:
    /// The canvas has its origin in the middle and its `height` in points; `toCanvas` maps the output's
    /// pixels, of which there are `outputWidth` x `outputHeight`, to it by one scale and a movement. `under`
    /// may be null.
    ScenePaint(std::shared_ptr<const Paint> under, double width, double height, const Homography& toCanvas,
               int outputWidth, int outputHeight);

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return false; }

private:
    /// What the stripes cover of the pixels on one falling diagonal: those with the same x - y.
    double coverage(int diagonal) const;

    std::shared_ptr<const Paint> m_under;
    double m_pixel; ///< In points.
    double
        m_start; ///< How far right of the bottom left corner's stripe the diagonal 0 runs, in points along x.
    int m_firstDiagonal;
    std::vector<MixPixel> m_stripes; ///< White, by the diagonal.
};

} // namespace framora::raster

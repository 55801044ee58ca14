#pragma once

#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PicturePyramid.h"
#include "editor/render/raster/ProjectiveSampler.h"
#include "editor/render/raster/SeparableSampler.h"

#include <memory>
#include <optional>

namespace framora::raster {

/// A picture stretched over a rectangle about the origin of the layer's points. Beyond the rectangle its edge
/// repeats: what shows where is the layer's shape alone.
class PicturePaint : public Paint {
public:
    /// The rectangle is `width` x `height` points; `toOutput` maps points to output pixels, of which there
    /// are `outputWidth` x `outputHeight`.
    PicturePaint(std::shared_ptr<const PicturePyramid> picture, double width, double height,
                 const Homography& toOutput, int outputWidth, int outputHeight);

    void shade(int x, int y, int count, Float4* out) const override;
    bool isOpaque() const override { return m_picture->isOpaque(); }

private:
    std::shared_ptr<const PicturePyramid> m_picture;
    ProjectiveSampler m_projective;
    std::optional<SeparableSampler> m_separable;
};

} // namespace framora::raster

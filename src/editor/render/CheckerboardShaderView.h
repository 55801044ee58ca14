#pragma once

#include "editor/render/raster/CheckerboardPaint.h"

#include <memory>

namespace framora {

/// The "checkerboard" effect: alternating squares of two light greys over a whole rectangle.
struct CheckerboardShaderView {
    double squareSize = 0; ///< Points.

    static constexpr float lightGrey = 0xff / 255.0f;
    static constexpr float darkGrey = 0xe6 / 255.0f;

    /// A light square has its top left corner at the origin; `toLocal` maps output pixels to points.
    std::shared_ptr<const raster::Paint> paint(const raster::Homography& toLocal) const {
        return std::make_shared<raster::CheckerboardPaint>(squareSize, toLocal, lightGrey, darkGrey);
    }
};

} // namespace framora

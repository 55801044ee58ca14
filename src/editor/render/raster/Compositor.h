#pragma once

#include "editor/render/raster/Paint.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"

#include <memory>
#include <optional>
#include <vector>

namespace framora::raster {

/// One shape filled with one paint.
struct Layer {
    RoundedRect shape;
    std::optional<RoundedRect> hole; ///< Left out of the shape; it lies inside.
    Placement placement;
    std::shared_ptr<const Paint> paint;

    struct Adjustment {
        float saturation = 1;
        float brightness = 0;
    };
    std::optional<Adjustment> adjustment; ///< Of the paint's colours.

    struct Noise {
        float intensity = 0;
        int originX = 0; ///< The output pixel where the grain's own grid starts.
        int originY = 0;
    };
    std::optional<Noise> noise; ///< Over the paint's colours.
};

/// Draws the layers, the first one undermost, over nothing, and overwrites all of `output`. Colours are mixed
/// as floats and rounded once at the end. The pixels do not depend on the number of threads.
void compose(MutablePixelView output, const std::vector<Layer>& layers);

} // namespace framora::raster

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

    float opacity = 1; ///< 0...1.

    enum class Blend {
        normal,
        overlay ///< Darkens what is dark under it and lightens what is light.
    };
    Blend blend = Blend::normal;
};

/// Whether nothing shows through where the layer covers a pixel whole.
bool hidesWhatLiesUnder(const Layer& layer);

/// Draws the layers, the first one undermost, over nothing, and overwrites all of `output`. Colours are mixed
/// with fifteen bits and rounded once at the end. The pixels depend neither on the number of threads nor on
/// the kind of vector unit.
void compose(MutablePixelView output, const std::vector<Layer>& layers);

namespace plain {
/// The same in floats, row by row, from what Paint::shade() gives: what compose() is held to, within one step
/// of 255.
void compose(MutablePixelView output, const std::vector<Layer>& layers);
} // namespace plain

} // namespace framora::raster

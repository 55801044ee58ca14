#pragma once

#include "editor/render/raster/Compositor.h"

namespace framora {

/// Grain over a layer's colours.
struct NoiseOverlayModifier {
    double intensity = 0; ///< 0...1; not above 0 adds nothing.

    bool isActive() const { return intensity > 0; }
    /// The grain's own grid starts at the output pixel (originX, originY).
    void apply(raster::Layer& layer, int originX, int originY) const {
        if (isActive())
            layer.noise = raster::Layer::Noise{float(intensity), originX, originY};
    }
};

} // namespace framora

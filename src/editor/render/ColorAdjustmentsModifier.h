#pragma once

#include "editor/render/raster/Compositor.h"

#include <cmath>

namespace framora {

/// Saturation (1 leaves it) and brightness (0 leaves it) of a layer's colours.
struct ColorAdjustmentsModifier {
    double saturation = 1;
    double brightness = 0;

    /// Exactly the neutral values leave the layer alone; so do values that are no numbers.
    bool isActive() const {
        return (saturation != 1.0 || brightness != 0.0) && std::isfinite(saturation) &&
               std::isfinite(brightness);
    }
    void apply(raster::Layer& layer) const {
        if (isActive())
            layer.adjustment = raster::Layer::Adjustment{float(saturation), float(brightness)};
    }
};

} // namespace framora

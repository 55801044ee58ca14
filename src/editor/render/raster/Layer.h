#pragma once

#include "editor/render/raster/EffectKernels.h"
#include "editor/render/raster/Paint.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"

#include <memory>
#include <optional>

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
        /// Whether adjustPixels() does it.
        bool isUsual() const {
            return saturation >= 0 && saturation <= mostSaturation && brightness >= -1 && brightness <= 1;
        }
        bool operator==(const Adjustment&) const = default;
    };
    std::optional<Adjustment> adjustment; ///< Of the paint's colours.

    struct Noise {
        float intensity = 0;
        int originX = 0; ///< The output pixel where the grain's own grid starts.
        int originY = 0;
        bool operator==(const Noise&) const = default;
    };
    std::optional<Noise> noise; ///< Over the paint's colours.

    float opacity = 1; ///< 0...1.

    enum class Blend {
        normal,
        overlay, ///< Darkens what is dark under it and lightens what is light.
        replace  ///< Takes the place of what lies under it, also where it is not opaque.
    };
    Blend blend = Blend::normal;
    /// Whether a layer further down has the same outline: then no fringe of it shows at the edge. Not for
    /// Blend::replace.
    bool sharesEdge = false;
    /// Whether both draw the same, and with the same paint.
    bool operator==(const Layer&) const = default;
};

/// Whether nothing shows through where the layer covers a pixel whole.
inline bool hidesWhatLiesUnder(const Layer& layer) {
    return layer.opacity == 1 && (layer.blend == Layer::Blend::replace ||
                                  (layer.blend == Layer::Blend::normal && layer.paint->isOpaque()));
}

} // namespace framora::raster

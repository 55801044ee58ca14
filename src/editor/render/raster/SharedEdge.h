#pragma once

#include "editor/render/raster/Float4.h"

#include <algorithm>

namespace framora::raster {

/// The overlay mode on premultiplied colours.
inline Float4 overlaid(Float4 under, Float4 over) {
    const Float4 dark = splat(2) * over * under;
    const Float4 light =
        splat(over[3] * under[3]) - splat(2) * (splat(under[3]) - under) * (splat(over[3]) - over);
    Float4 result = over * splat(1 - under[3]) + under * splat(1 - over[3]);
    result += splat(2) * under <= splat(under[3]) ? dark : light;
    result[3] = over[3] + under[3] * (1 - over[3]);
    return result;
}

/// Mixes `source` onto a pixel of which `coverage`, above 0, lies within an outline that what is there
/// already shares: it is inside as far as there is room, and the source falls on it, not beside it.
inline Float4 mixedInside(Float4 under, Float4 source, float coverage, bool isOverlay) {
    const Float4 inside = under * splat(1 / std::max(coverage, under[3]));
    const Float4 mixed = isOverlay ? overlaid(inside, source) : source + inside * splat(1 - source[3]);
    return under + (mixed - inside) * splat(coverage);
}

} // namespace framora::raster

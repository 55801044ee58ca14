#pragma once

#include "editor/model/Color.h"
#include "editor/render/raster/Float4.h"

namespace framora {

inline raster::Float4 rasterColor(const Color& color) {
    return raster::premultiplied(color.red, color.green, color.blue, color.alpha);
}

} // namespace framora

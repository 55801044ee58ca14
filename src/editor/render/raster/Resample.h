#pragma once

#include "editor/render/raster/PixelView.h"

namespace framora::raster {

/// Scales all of `source` to fill `target`. Neither is empty.
void resample(PixelView source, MutablePixelView target);

} // namespace framora::raster

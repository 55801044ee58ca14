#pragma once

#include "editor/render/raster/Float4.h"

namespace framora::raster {

/// Mixes the colours with their Rec. 709 luma (saturation 0 is grey, 1 leaves them, more deepens them), then
/// adds `brightness`, then clamps. Alpha stays.
void adjustColors(Float4* pixels, int count, float saturation, float brightness);

/// Adds grey grain of up to +-`intensity` / 2 to the `count` pixels from (x, y) to the right. The grain is a
/// function of the position alone. Alpha stays.
void addNoise(Float4* pixels, int count, int x, int y, float intensity);

} // namespace framora::raster

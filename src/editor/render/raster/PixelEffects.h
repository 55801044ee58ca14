#pragma once

#include "editor/render/raster/Float4.h"

namespace framora::raster {

/// Mixes the colours with their Rec. 709 luma (saturation 0 is grey, 1 leaves them, more deepens them), then
/// adds `brightness`, then clamps. Alpha stays.
void adjustColors(Float4* pixels, int count, float saturation, float brightness);

/// Well mixed bits of a position: the grain's.
inline std::uint32_t grainBits(std::uint32_t x, std::uint32_t y) {
    std::uint32_t h = x * 0x9e3779b1u ^ (y * 0x85ebca77u + 0x165667b1u);
    h = (h ^ h >> 15) * 0x2c1b3c6du;
    h = (h ^ h >> 12) * 0x297a2d39u;
    return h ^ h >> 15;
}

/// Adds grey grain of up to +-`intensity` / 2 to the `count` pixels from (x, y) to the right. The grain is a
/// function of the position alone. Alpha stays.
void addNoise(Float4* pixels, int count, int x, int y, float intensity);

} // namespace framora::raster

#pragma once

#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// adjustColors() for pixels being mixed, to within a fraction of a step of 255; `plain` holds a twin that
/// gives the same bytes. `saturation` is 0...mostSaturation and `brightness` -1...1; what lies outside is
/// clamped to them.
inline constexpr float mostSaturation = 3;
void adjustPixels(MixPixel* pixels, std::size_t count, float saturation, float brightness);

/// addNoise() for pixels being mixed, likewise. `intensity` is 0...1.
void grainPixels(MixPixel* pixels, std::size_t count, int x, int y, float intensity);

namespace plain {
void adjustPixels(MixPixel* pixels, std::size_t count, float saturation, float brightness);
void grainPixels(MixPixel* pixels, std::size_t count, int x, int y, float intensity);
} // namespace plain

/// The adjustment as the kernels apply it.
struct FixedAdjustment {
    std::int16_t saturation; ///< In 8192ths.
    std::int16_t brightness; ///< In 32767ths.
};
FixedAdjustment fixedAdjustment(float saturation, float brightness);

/// Half an intensity, in 32768ths.
std::int16_t fixedIntensity(float intensity);

/// Rec. 709, in 32768ths: blue, green, red, alpha.
inline constexpr std::int16_t lumaWeights[4] = {2366, 23436, 6966, 0};

} // namespace framora::raster

#include "editor/render/raster/EffectKernels.h"
#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/PixelEffects.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

FixedAdjustment fixedAdjustment(float saturation, float brightness) {
    return {std::int16_t(std::lround(std::clamp(saturation, 0.0f, mostSaturation) * 8192)),
            std::int16_t(std::lround(std::clamp(brightness, -1.0f, 1.0f) * 32767))};
}

std::int16_t fixedIntensity(float intensity) {
    return std::int16_t(std::lround(std::clamp(intensity, 0.0f, 1.0f) * 16384));
}

namespace plain {

void adjustPixels(MixPixel* pixels, std::size_t count, float saturation, float brightness) {
    const FixedAdjustment adjustment = fixedAdjustment(saturation, brightness);
    for (std::size_t i = 0; i < count; ++i) {
        std::int16_t* channel = pixels[i].channel;
        int luma = 0;
        for (int c = 0; c < 4; ++c)
            luma += mulFixed(channel[c], lumaWeights[c]);
        const std::int16_t alpha = channel[3];
        const std::int16_t light = mulFixed(alpha, adjustment.brightness);
        for (int c = 0; c < 3; ++c) {
            const std::int16_t quarter = mulFixed(std::int16_t(channel[c] - luma), adjustment.saturation);
            const int sum = addSaturated(quarter, std::int16_t((luma >> 2) + (light >> 2)));
            channel[c] = std::min(std::int16_t(std::clamp(sum, 0, mixOne / 4) * 4), alpha);
        }
    }
}

void grainPixels(MixPixel* pixels, std::size_t count, int x, int y, float intensity) {
    const std::int16_t half = fixedIntensity(intensity);
    for (std::size_t i = 0; i < count; ++i) {
        std::int16_t* channel = pixels[i].channel;
        const int bits = int(grainBits(std::uint32_t(x) + std::uint32_t(i), std::uint32_t(y)) >> 16);
        const std::int16_t grain = mulFixed(mulFixed(std::int16_t(bits - 32768), half), channel[3]);
        for (int c = 0; c < 3; ++c)
            channel[c] = std::min(std::max(addSaturated(channel[c], grain), std::int16_t(0)), channel[3]);
    }
}

} // namespace plain
} // namespace framora::raster

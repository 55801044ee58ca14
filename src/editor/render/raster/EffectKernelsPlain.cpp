#include "editor/render/raster/EffectKernels.h"
#include "editor/render/raster/FixedPoint.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

FixedAdjustment fixedAdjustment(float saturation, float brightness) {
    return {std::int16_t(std::lround(std::clamp(saturation, 0.0f, mostSaturation) * 8192)),
            std::int16_t(std::lround(std::clamp(brightness, -1.0f, 1.0f) * 32767))};
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

} // namespace plain
} // namespace framora::raster

#include "editor/render/raster/PixelEffects.h"

namespace framora::raster {
namespace {

Float4 clampedToAlpha(Float4 pixel, float alpha) {
    Float4 clamped = min(max(pixel, splat(0)), splat(alpha));
    clamped[3] = alpha;
    return clamped;
}

} // namespace

void adjustColors(Float4* pixels, int count, float saturation, float brightness) {
    for (int i = 0; i < count; ++i) {
        const Float4 pixel = pixels[i];
        const float alpha = pixel[3];
        const float luma = 0.2126f * pixel[2] + 0.7152f * pixel[1] + 0.0722f * pixel[0];
        const Float4 adjusted =
            splat(luma) + (pixel - splat(luma)) * splat(saturation) + splat(brightness * alpha);
        pixels[i] = clampedToAlpha(adjusted, alpha);
    }
}

void addNoise(Float4* pixels, int count, int x, int y, float intensity) {
    for (int i = 0; i < count; ++i) {
        const float grain = float(grainBits(std::uint32_t(x + i), std::uint32_t(y)) >> 8) * 0x1p-24f - 0.5f;
        const float alpha = pixels[i][3];
        pixels[i] = clampedToAlpha(pixels[i] + splat(grain * intensity * alpha), alpha);
    }
}

} // namespace framora::raster

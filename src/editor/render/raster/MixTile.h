#pragma once

#include "editor/render/raster/Float4.h"

#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// One step of 255 while layers are mixed: pixels hold seven more bits than a picture.
inline constexpr int mixStep = 128;
/// 1.0 while layers are mixed.
inline constexpr int mixOne = 255 * mixStep;

/// A pixel while layers are mixed by the fast kernels: blue, green, red, alpha, premultiplied, 0...mixOne.
/// Integers, so that every kind of vector unit gives the same bytes.
struct MixPixel {
    std::int16_t channel[4];
    bool operator==(const MixPixel&) const = default;
};

/// A block of output pixels.
struct TileRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    constexpr std::size_t area() const { return std::size_t(width) * std::size_t(height); }
};

/// Rows of a block of them.
struct MixRows {
    const MixPixel* first;
    std::ptrdiff_t stride; ///< From one to the next, in pixels.
    bool isOpaque;         ///< All of them are, for sure.
};

/// To the nearest MixPixel. The channels are 0...1.
inline MixPixel toMix(Float4 pixel) {
    const Float4 scaled = min(max(pixel, splat(0)), splat(1)) * splat(float(mixOne)) + splat(0.5f);
    return {
        {std::int16_t(scaled[0]), std::int16_t(scaled[1]), std::int16_t(scaled[2]), std::int16_t(scaled[3])}};
}

} // namespace framora::raster

#pragma once

#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// The pixels of a row in a gradient. Each function has a plain twin in `plain`, which gives the same bytes.

/// The point of the first pixel of a row and the step to the next, in the gradient's own units.
struct GradientRow {
    float x;
    float y;
    float stepX;
    float stepY;
};

/// A ramp's first entry is its first colour and its last one its last.
inline constexpr int rampSize = 4096;

/// The arc tangent of 0...1 in turns, by rising odd powers; within a two-millionth of a turn.
inline constexpr float arcTangent[] = {0.15915412f,   -0.05299177f, 0.031090375f,
                                       -0.019169988f, 0.009006576f, -0.0020897652f};
/// What stands for a distance of 0.
inline constexpr float arcTangentLeast = 1e-30f;

/// Pixels whose channels grow by the same step each, in 65536ths of a MixPixel's, and by half of one more.
struct ColorRun {
    static constexpr int one = 1 << 16;
    alignas(16) std::int32_t first[4];
    alignas(16) std::int32_t step[4];
};

/// The colours of a run, dithered for the pixels from (x, y): what lies between two steps of 255 becomes a
/// fine pattern instead of a band. The run stays between 0 and mixOne.
void paintRun(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out);

/// By the distance from the origin.
void radialPositions(const GradientRow& row, std::size_t count, std::int32_t* out);
/// By the direction from the origin, clockwise from up, `start` turns later.
void angularPositions(const GradientRow& row, float start, std::size_t count, std::int32_t* out);

/// The ramp's entries 0...rampSize at `positions`, dithered like a run.
void paintRamp(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
               MixPixel* out);

namespace plain {
void paintRun(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out);
void radialPositions(const GradientRow& row, std::size_t count, std::int32_t* out);
void angularPositions(const GradientRow& row, float start, std::size_t count, std::int32_t* out);
void paintRamp(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
               MixPixel* out);
} // namespace plain

} // namespace framora::raster

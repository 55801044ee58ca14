#include "editor/render/raster/Dither.h"
#include "editor/render/raster/GradientKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster::plain {
namespace {

std::int32_t entry(float position) {
    return std::int32_t(std::min(std::max(position * float(rampSize) + 0.5f, 0.0f), float(rampSize)));
}

} // namespace

void paintRun(const ColorRun& run, int x, int y, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel& offset = *Dither::row(x + int(i), y);
        const auto at = [&](int c) { return (run.first[c] + int(i) * run.step[c]) / ColorRun::one; };
        const int alpha = at(3);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(std::clamp(at(c) + offset.channel[c], 0, alpha));
    }
}

void radialPositions(const GradientRow& row, std::size_t count, std::int32_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const float x = row.x + float(i) * row.stepX;
        const float y = row.y + float(i) * row.stepY;
        out[i] = entry(std::sqrt(x * x + y * y));
    }
}

void angularPositions(const GradientRow& row, float start, std::size_t count, std::int32_t* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const float x = row.x + float(i) * row.stepX;
        const float y = row.y + float(i) * row.stepY;
        const float longSide = std::max(std::abs(x), std::abs(y));
        const float ratio = std::min(std::abs(x), std::abs(y)) / std::max(longSide, arcTangentLeast);
        const float square = ratio * ratio;
        float turns = arcTangent[std::size(arcTangent) - 1];
        for (std::size_t term = std::size(arcTangent) - 1; term-- > 0;)
            turns = turns * square + arcTangent[term];
        turns = turns * ratio;
        if (std::abs(x) > std::abs(y))
            turns = 0.25f - turns;
        if (y > 0)
            turns = 0.5f - turns;
        if (x < 0)
            turns = 1.0f - turns;
        turns = turns - start;
        out[i] = entry(turns - std::floor(turns));
    }
}

void paintRamp(const MixPixel* ramp, const std::int32_t* positions, int x, int y, std::size_t count,
               MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel color = ramp[positions[i]];
        const MixPixel& offset = *Dither::row(x + int(i), y);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] =
                std::int16_t(std::clamp(color.channel[c] + offset.channel[c], 0, int(color.channel[3])));
    }
}

} // namespace framora::raster::plain

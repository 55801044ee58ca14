#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/GlassKernels.h"

namespace framora::raster::plain {

void meansOfFour(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i, upper += 2, lower += 2)
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(
                (upper[0].channel[c] + upper[1].channel[c] + lower[0].channel[c] + lower[1].channel[c]) >> 2);
}

void interpolate(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                 MixPixel* out) {
    const MixPixel all{{part, part, part, part}};
    for (std::size_t i = 0; i < count; ++i)
        plain::interpolate(from + i, to + i, &all, 1, out + i);
}

void interpolate(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                 MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            const std::int16_t start = from[i].channel[c];
            const auto way = std::int16_t(to[i].channel[c] - start);
            out[i].channel[c] = std::int16_t(start + mulFixed(way, parts[i].channel[c]));
        }
}

} // namespace framora::raster::plain

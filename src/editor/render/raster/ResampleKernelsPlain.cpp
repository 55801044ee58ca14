#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>

namespace framora::raster::plain {

void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t((pixels[i] >> (8 * c) & 255) << sourceShift);
}

void weighRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
               MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            int sum = 0;
            for (int tap = 0; tap < taps; ++tap)
                sum += mulFixed(std::int16_t((rows[tap][i] >> (8 * c) & 255) << sourceShift), weights[tap]);
            out[i].channel[c] = std::int16_t(sum);
        }
}

void weighColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                  MixPixel* out) {
    for (int i = 0; i < count; ++i) {
        const MixPixel* from = source + (taps.start(index + i) - taps.start(index));
        int sums[4] = {};
        for (int tap = 0; tap < taps.taps(); ++tap)
            for (int c = 0; c < 4; ++c)
                sums[c] += mulFixed(from[tap].channel[c], taps.weight(index + i, tap));
        const int most = alpha == Alpha::opaque ? filterOne : std::clamp(sums[3], 0, filterOne);
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t(std::clamp(sums[c], 0, most) * 4);
        if (alpha == Alpha::opaque)
            out[i].channel[3] = mixOne;
    }
}

} // namespace framora::raster::plain

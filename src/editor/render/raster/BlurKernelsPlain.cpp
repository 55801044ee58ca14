#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/Dither.h"
#include "editor/render/raster/FixedPoint.h"

#include <algorithm>

namespace framora::raster::plain {
namespace {

std::int16_t rounded(std::int32_t sum, int shift) {
    return std::int16_t(std::clamp((sum + (1 << (shift - 1))) >> shift, -32768, 32767));
}

} // namespace

void sumRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift, std::size_t count,
             MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            std::int32_t sum = 0;
            for (int tap = 0; tap < taps; ++tap)
                sum += rows[tap][i].channel[c] * weights[tap];
            out[i].channel[c] = rounded(sum, shift);
        }
}

void sumRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
             std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c) {
            std::int32_t sum = 0;
            for (int tap = 0; tap < taps; ++tap)
                sum += std::int32_t(rows[tap][i] >> (8 * c) & 255) * weights[tap];
            out[i].channel[c] = rounded(sum, shift - 7);
        }
}

void sumRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out) {
    for (int i = 0; i < count; ++i) {
        const BlurTaps::Taps run = taps.taps(index + i);
        std::int32_t sums[4] = {};
        for (int tap = 0; tap < run.count; ++tap)
            for (int c = 0; c < 4; ++c)
                sums[c] += sources[run.first + tap].channel[c] * run.weights[tap];
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = rounded(sums[c], taps.shift());
    }
}

void ditherPixels(MixPixel* pixels, int x, int y, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const MixPixel& pattern = *Dither::row(x + int(i), y);
        std::int16_t* channel = pixels[i].channel;
        const int alpha = std::clamp<int>(channel[3], 0, mixOne);
        for (int c = 0; c < 4; ++c) {
            const auto weak = std::int16_t(pattern.channel[c] - (pattern.channel[c] >> 2));
            channel[c] = std::int16_t(std::clamp<int>(addSaturated(channel[c], weak), 0, alpha));
        }
    }
}

} // namespace framora::raster::plain

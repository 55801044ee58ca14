#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>
#include <vector>

namespace framora::raster::plain {

void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out) {
    for (std::size_t i = 0; i < count; ++i)
        for (int c = 0; c < 4; ++c)
            out[i].channel[c] = std::int16_t((pixels[i] >> (8 * c) & 255) << sourceShift);
}

void weighRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out) {
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            for (int c = 0; c < 4; ++c) {
                int sum = 0;
                for (int tap = 0; tap < taps.taps(); ++tap) {
                    const int row = std::min(taps.start(index + y) + tap, picture.height - 1);
                    const std::uint32_t channel = picture.row(row)[column + x] >> (8 * c) & 255;
                    sum += mulFixed(std::int16_t(channel << sourceShift), taps.weight(index + y, tap));
                }
                out.row(y)[x].channel[c] = std::int16_t(sum);
            }
}

void weighColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha,
                  const MixBlock& out) {
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            const MixPixel* from = source.row(y) + (taps.start(index + x) - taps.start(index));
            MixPixel& pixel = out.row(y)[x];
            int sums[4] = {};
            for (int tap = 0; tap < taps.taps(); ++tap)
                for (int c = 0; c < 4; ++c)
                    sums[c] += mulFixed(from[tap].channel[c], taps.weight(index + x, tap));
            const int most = alpha == Alpha::opaque ? filterOne : std::clamp(sums[3], 0, filterOne);
            for (int c = 0; c < 4; ++c)
                pixel.channel[c] = std::int16_t(std::clamp(sums[c], 0, most) * 4);
            if (alpha == Alpha::opaque)
                pixel.channel[3] = mixOne;
        }
}

void packColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out) {
    std::vector<MixPixel> mixed(static_cast<std::size_t>(out.width));
    for (int y = 0; y < out.height; ++y) {
        const MixBlock row{source.row(y), source.stride, source.width, 1};
        plain::weighColumns(row, taps, index, Alpha::opaque, {mixed.data(), mixed.size(), out.width, 1});
        plain::packPixels(mixed.data(), mixed.size(), out.row(y));
    }
}

} // namespace framora::raster::plain

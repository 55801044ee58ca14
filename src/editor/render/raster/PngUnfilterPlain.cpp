#include "editor/render/raster/PaethPredictor.h"
#include "editor/render/raster/PngUnfilter.h"

namespace framora::raster::plain {
namespace {

std::uint32_t timesAlpha(std::uint32_t colour, std::uint32_t alpha) {
    const std::uint32_t product = colour * alpha + 0x80;
    return (product + (product >> 8)) >> 8;
}

} // namespace

void undoPngFilter(PngFilter filter, const FilteredPngRow& row) {
    for (std::size_t i = 0; i < row.size; ++i) {
        const bool isFirst = i < row.pixelBytes;
        const int left = isFirst ? 0 : row.out[i - row.pixelBytes];
        const int up = row.above[i];
        const int upLeft = isFirst ? 0 : row.above[i - row.pixelBytes];
        int predicted = 0;
        switch (filter) {
        case PngFilter::none:
            break;
        case PngFilter::sub:
            predicted = left;
            break;
        case PngFilter::up:
            predicted = up;
            break;
        case PngFilter::average:
            predicted = (left + up) / 2;
            break;
        case PngFilter::paeth:
            predicted = paethPredictor(left, up, upLeft);
            break;
        }
        row.out[i] = std::uint8_t(row.data[i] + predicted);
    }
}

void unpackRgb(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    for (std::size_t i = 0; i < count; ++i, samples += 3)
        pixels[i] =
            0xff000000u | std::uint32_t(samples[0]) << 16 | std::uint32_t(samples[1]) << 8 | samples[2];
}

void unpackRgba(const std::uint8_t* samples, std::size_t count, std::uint32_t* pixels) {
    for (std::size_t i = 0; i < count; ++i, samples += 4) {
        const std::uint32_t alpha = samples[3];
        pixels[i] = alpha << 24 | timesAlpha(samples[0], alpha) << 16 | timesAlpha(samples[1], alpha) << 8 |
                    timesAlpha(samples[2], alpha);
    }
}

} // namespace framora::raster::plain

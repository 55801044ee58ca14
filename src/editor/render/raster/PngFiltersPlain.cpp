#include "editor/render/raster/PaethPredictor.h"
#include "editor/render/raster/PngFilters.h"

#include <algorithm>

namespace framora::raster::plain {
namespace {

std::uint8_t residual(PngFilter filter, const PngRow& row, std::size_t i) {
    const std::uint8_t value = row.data[i];
    const std::uint8_t left = *(row.data + i - row.pixelBytes);
    const std::uint8_t up = row.above[i];
    switch (filter) {
    case PngFilter::none:
        return value;
    case PngFilter::sub:
        return std::uint8_t(value - left);
    case PngFilter::up:
        return std::uint8_t(value - up);
    case PngFilter::average:
        return std::uint8_t(value - (left + up) / 2);
    case PngFilter::paeth:
        return std::uint8_t(value - paethPredictor(left, up, *(row.above + i - row.pixelBytes)));
    }
    return 0;
}

/// round(255 c / a) = (c * reciprocal[a] + half) >> 24 for every c <= a; the tests try them all.
struct Reciprocals {
    std::array<std::uint32_t, 256> value{};
    constexpr Reciprocals() {
        for (std::uint32_t a = 1; a < 256; ++a)
            value[a] = ((255u << 24) + a - 1) / a;
    }
};
constexpr Reciprocals reciprocals;

std::uint8_t unpremultiplied(std::uint32_t colour, std::uint32_t alpha) {
    // A colour above its alpha is no valid pixel; it saturates.
    const std::uint64_t scaled =
        std::uint64_t(std::min(colour, alpha)) * reciprocals.value[alpha] + (1u << 23);
    return std::uint8_t(std::min<std::uint64_t>(scaled >> 24, 255));
}

std::uint64_t bits(std::uint8_t value) {
    const int size = value < 128 ? value : 256 - value;
    if (size < 2)
        return size == 0 ? 0 : 3;
    return size < 4 ? 4 : size < 8 ? 5 : size < 16 ? 6 : size < 32 ? 7 : 8;
}

} // namespace

std::array<std::uint64_t, pngFilterCount> pngFilterCosts(const PngRow& row) {
    std::array<std::uint64_t, pngFilterCount> costs{};
    for (std::size_t filter = 0; filter < costs.size(); ++filter)
        for (std::size_t i = 0; i < row.size; ++i)
            if (row.size <= wholePngRow || i % pngCostStep < pngCostSample)
                costs[filter] += bits(residual(PngFilter(filter), row, i));
    return costs;
}

void applyPngFilter(PngFilter filter, const PngRow& row, std::uint8_t* out) {
    for (std::size_t i = 0; i < row.size; ++i)
        out[i] = residual(filter, row, i);
}

void packRgb(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i, out += 3) {
        out[0] = std::uint8_t(pixels[i] >> 16);
        out[1] = std::uint8_t(pixels[i] >> 8);
        out[2] = std::uint8_t(pixels[i]);
    }
}

void packRgba(const std::uint32_t* pixels, std::size_t count, std::uint8_t* out) {
    for (std::size_t i = 0; i < count; ++i, out += 4) {
        const std::uint32_t alpha = pixels[i] >> 24;
        for (int c = 0; c < 3; ++c) {
            const std::uint32_t colour = pixels[i] >> (16 - 8 * c) & 255;
            out[c] = alpha == 255 ? std::uint8_t(colour) : unpremultiplied(colour, alpha);
        }
        out[3] = std::uint8_t(alpha);
    }
}

} // namespace framora::raster::plain

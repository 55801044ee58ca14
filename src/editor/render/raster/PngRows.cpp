#include "editor/render/raster/PngRows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace framora::raster {
namespace {

constexpr std::size_t zerosBefore = 16; // at least a pixel; keeps the rows aligned

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

void packRgba(const std::uint32_t* row, std::size_t width, std::uint8_t* out) {
    for (std::size_t x = 0; x < width; ++x, out += 4) {
        const std::uint32_t pixel = row[x];
        const std::uint32_t alpha = pixel >> 24;
        if (alpha == 255) {
            out[0] = std::uint8_t(pixel >> 16);
            out[1] = std::uint8_t(pixel >> 8);
            out[2] = std::uint8_t(pixel);
        } else {
            out[0] = unpremultiplied(pixel >> 16 & 255, alpha);
            out[1] = unpremultiplied(pixel >> 8 & 255, alpha);
            out[2] = unpremultiplied(pixel & 255, alpha);
        }
        out[3] = std::uint8_t(alpha);
    }
}

PngFilter leastSumFilter(const PngRow& row) {
    std::vector<std::uint8_t> residuals(row.size + pngRowPadding);
    PngFilter best = PngFilter::none;
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (std::size_t filter = 0; filter < pngFilterCount; ++filter) {
        applyPngFilter(PngFilter(filter), row, residuals.data());
        std::uint64_t sum = 0;
        for (std::size_t i = 0; i < row.size; ++i)
            sum += std::min<unsigned>(residuals[i], 256 - residuals[i]);
        if (sum < least) {
            least = sum;
            best = PngFilter(filter);
        }
    }
    return best;
}

PngFilter cheapestFilter(const PngRow& row) {
    // Large parts of a screenshot repeat the row above.
    if (std::memcmp(row.data, row.above, row.size) == 0)
        return PngFilter::up;
    const std::array<std::uint64_t, pngFilterCount> costs = pngFilterCosts(row);
    PngFilter best = PngFilter::up;
    for (const PngFilter filter : {PngFilter::paeth, PngFilter::sub, PngFilter::average, PngFilter::none})
        if (costs[std::size_t(filter)] < costs[std::size_t(best)])
            best = filter;
    return best;
}

PngFilter chooseFilter(PngFiltering filtering, const PngRow& row) {
    switch (filtering) {
    case PngFiltering::cheapest:
        return cheapestFilter(row);
    case PngFiltering::leastSum:
        return leastSumFilter(row);
    case PngFiltering::none:
        return PngFilter::none;
    case PngFiltering::up:
        return PngFilter::up;
    }
    return PngFilter::up;
}

} // namespace

std::vector<std::uint8_t> filteredPngRows(PixelView picture, PngRowFormat format, int firstRow, int endRow) {
    const std::size_t rowBytes = format.rowBytes(picture.width);
    const auto pack = [&](int y, std::uint8_t* out) {
        (format.isOpaque ? packRgb : packRgba)(picture.row(y), std::size_t(picture.width), out);
    };
    std::vector<std::uint8_t> above(zerosBefore + rowBytes + pngRowPadding);
    std::vector<std::uint8_t> current(above.size());
    if (firstRow > 0)
        pack(firstRow - 1, above.data() + zerosBefore);
    const std::size_t size = std::size_t(endRow - firstRow) * rowBytes;
    std::vector<std::uint8_t> filtered(size + pngRowPadding);
    std::uint8_t* out = filtered.data();
    for (int y = firstRow; y < endRow; ++y, out += rowBytes) {
        pack(y, current.data() + zerosBefore);
        const PngRow row{.data = current.data() + zerosBefore,
                         .above = above.data() + zerosBefore,
                         .size = rowBytes - 1,
                         .pixelBytes = format.pixelBytes()};
        const PngFilter filter = chooseFilter(format.filtering, row);
        out[0] = std::uint8_t(filter);
        applyPngFilter(filter, row, out + 1);
        current.swap(above);
    }
    filtered.resize(size);
    return filtered;
}

} // namespace framora::raster

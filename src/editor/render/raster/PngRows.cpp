#include "editor/render/raster/PngRows.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace framora::raster {
namespace {

constexpr std::size_t zerosBefore = 16; // at least a pixel; keeps the rows aligned

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

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

PngRowFilter::PngRowFilter(PngRowFormat format, int width)
    : m_format(format), m_width(width), m_above(zerosBefore + format.rowBytes(width) + pngRowPadding),
      m_current(m_above.size()) {}

void PngRowFilter::pack(const std::uint32_t* pixels, std::vector<std::uint8_t>& row) const {
    (m_format.isOpaque ? packRgb : packRgba)(pixels, std::size_t(m_width), row.data() + zerosBefore);
}

void PngRowFilter::startBelow(const std::uint32_t* row) {
    pack(row, m_above);
}

void PngRowFilter::add(PixelView rows, std::uint8_t* out) {
    const std::size_t rowBytes = m_format.rowBytes(m_width);
    for (int y = 0; y < rows.height; ++y, out += rowBytes) {
        pack(rows.row(y), m_current);
        const PngRow row{.data = m_current.data() + zerosBefore,
                         .above = m_above.data() + zerosBefore,
                         .size = rowBytes - 1,
                         .pixelBytes = m_format.pixelBytes()};
        const PngFilter filter = chooseFilter(m_format.filtering, row);
        out[0] = std::uint8_t(filter);
        applyPngFilter(filter, row, out + 1);
        m_current.swap(m_above);
    }
}

} // namespace framora::raster

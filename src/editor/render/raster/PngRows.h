#pragma once

#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/PngFilters.h"

#include <cstdint>
#include <vector>

namespace framora::raster {

/// Which filter a row gets.
enum class PngFiltering : std::uint8_t {
    cheapest, ///< The one whose result should take the fewest bits, for every row anew.
    leastSum, ///< The one whose residuals have the least sum, either sign: slower to find, at times better.
    none,     ///< None for all rows: best where there are few colours, as in plain text.
    up,       ///< "Up" for all rows: the least work.
};

/// How the rows of one PNG are made.
struct PngRowFormat {
    bool isOpaque = true; ///< R, G, B; otherwise R, G, B, A with the colours divided by their alpha.
    PngFiltering filtering = PngFiltering::cheapest;

    std::size_t pixelBytes() const { return isOpaque ? 3 : 4; }
    /// One row with the number of its filter.
    std::size_t rowBytes(int width) const { return std::size_t(width) * pixelBytes() + 1; }
};

/// The rows [firstRow, endRow) of the picture as PNG rows, each behind its filter's number. A row comes out
/// the same whichever range it is in.
std::vector<std::uint8_t> filteredPngRows(PixelView picture, PngRowFormat format, int firstRow, int endRow);

} // namespace framora::raster

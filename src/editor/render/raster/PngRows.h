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

/// Makes a picture's pixels to PNG rows, from the top or from any row on. A row comes out the same wherever
/// that was.
class PngRowFilter {
public:
    PngRowFilter(PngRowFormat format, int width);

    /// Starts below this row of the picture instead of at its top.
    void startBelow(const std::uint32_t* row);
    /// Writes the next rows, each behind its filter's number, and past their end up to pngRowPadding bytes.
    void add(PixelView rows, std::uint8_t* out);

private:
    void pack(const std::uint32_t* pixels, std::vector<std::uint8_t>& row) const;

    const PngRowFormat m_format;
    const int m_width;
    std::vector<std::uint8_t> m_above;
    std::vector<std::uint8_t> m_current;
};

} // namespace framora::raster

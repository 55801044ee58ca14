#pragma once

#include "editor/render/raster/CubicTaps.h"
#include "editor/render/raster/FootprintKernels.h"

#include <cstddef>
#include <cstdint>

namespace framora::raster {

/// Reading a picture for rows of output pixels that lie on straight lines in it, nearly along its rows: the
/// picture is interpolated first where the line crosses each of its columns, then along the line. That is
/// half of the work that four by four pixels around every place are, and less where the picture becomes
/// larger. Where the lines are nearly along columns, rows and columns change their parts. Each function has
/// a plain twin in `plain`, which gives the same bytes.

/// A part of a picture, column by column.
struct ColumnBox {
    const MixPixel* pixels = nullptr;
    int columns = 0; ///< At least 4, like the rows.
    int rows = 0;    ///< Pixels of a column; there are no gaps between columns.

    static constexpr int mostColumns = 256;
    static constexpr int mostRows = 256;
    static constexpr int mostPixels = 1 << 16;
    /// Readable columns that the kernels want behind the last one.
    static constexpr int slack = 3;
};

/// A row of output pixels on its line. Columns and rows of the picture count from the first of the four that
/// a place reads.
struct ShearedRow {
    /// Pixel i lies in column (x + i stepX) / (1 + i stepW).
    float x;
    float stepX;
    float stepW;
    float downX; ///< What x and the 1 grow by from row to row.
    float downW;
    /// Where the line crosses the middle of column 0, in 2^-lineBits of a CubicTaps phase, and what that
    /// grows by from column to column.
    std::int32_t line;
    std::int32_t lineStep;
    /// The square of a pixel's extent down a column, at column 0 and from column to column.
    float square;
    float squareStep;

    static constexpr int lineBits = 11;
    /// Whether depths differ by so little that a few products give their reciprocals, to a millionth.
    bool isNearlyEven() const { return stepW < 1.0f / 1024 && stepW > -1.0f / 1024; }
};

/// Which of a row's pixels are read where in a picture.
struct ShearedPart {
    std::size_t first; ///< The pixels [first, end), FootprintPlaces::most at most.
    std::size_t end;
    int column; ///< Where the box begins.
    int row;
    int most; ///< The largest index of a width; with 0 the widths do not matter.
};

/// The colours of a part of some rows, mostShearedRows at most, 0...mixOne, valid pixels. The rows in `out`
/// are `stride` pixels apart. Places are kept inside the box.
void interpolateSheared(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                        const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride);
inline constexpr std::size_t mostShearedRows = 8;

/// Rows of a picture, four at least, column by column: pixel x of row y goes to out[x rowCount + y], as
/// widenRow() has it.
void widenColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                  MixPixel* out);

namespace plain {

/// Where the pixels of a row read a box.
struct ShearedPlaces {
    /// For each pixel the first of its columns, and the entry of CubicTaps for them.
    int columns[FootprintPlaces::most];
    int across[FootprintPlaces::most];
    /// For each column the first of its rows, and the entry for them.
    int rows[ColumnBox::mostColumns];
    int down[ColumnBox::mostColumns];
};
ShearedPlaces placeSheared(const ColumnBox& box, const ShearedRow& row, const ShearedPart& part);

void interpolateSheared(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                        const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride);
void widenColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                  MixPixel* out);

} // namespace plain

} // namespace framora::raster

#include "editor/render/raster/FixedPoint.h"
#include "editor/render/raster/ResampleKernels.h"
#include "editor/render/raster/ShearedKernels.h"

#include <algorithm>
#include <cmath>

namespace framora::raster::plain {
namespace {

constexpr int fraction = CubicTaps::phases - 1;

/// Four pixels, each channel's sum.
void weighFour(const MixPixel* pixels, std::int32_t entry, std::int16_t* sums) {
    const std::int16_t* weights = CubicTaps::weights() + std::ptrdiff_t(entry) * 4;
    for (int c = 0; c < 4; ++c) {
        int sum = 0;
        for (int i = 0; i < 4; ++i)
            sum += mulFixed(pixels[i].channel[c], weights[i]);
        sums[c] = std::int16_t(sum);
    }
}

} // namespace

ShearedPlaces placeSheared(const ColumnBox& box, const ShearedRow& row, const ShearedPart& part) {
    const int lastColumn = (box.columns - 3) * CubicTaps::phases - 1;
    const int lastRow = (box.rows - 3) * CubicTaps::phases - 1;
    ShearedPlaces out;
    for (std::size_t i = part.first; i < part.end; ++i) {
        const auto index = float(i);
        const float farther = index * row.stepW;
        const float near = row.isNearlyEven()
                               ? 1.0f - farther * (1.0f - farther * (1.0f - farther * (1.0f - farther)))
                               : 1.0f / (1.0f + farther);
        const float at = (row.x + index * row.stepX) * near;
        const float inside = std::min(std::max(at, -farthestPlace), farthestPlace);
        const int place = std::clamp(std::int32_t(std::lrint(inside * float(CubicTaps::phases))) -
                                         part.column * CubicTaps::phases,
                                     0, lastColumn);
        const float stepX = (row.stepX - at * row.stepW) * near;
        const float downX = (row.downX - at * row.downW) * near;
        const int width = FootprintTaps::index(stepX * stepX + downX * downX, part.most);
        out.columns[i] = place >> CubicTaps::phaseBits;
        out.across[i] = width << CubicTaps::phaseBits | (place & fraction);
    }
    for (int column = 0; column < box.columns; ++column) {
        const int from = column + part.column;
        const int place = std::clamp(((row.line + from * row.lineStep) >> ShearedRow::lineBits) -
                                         part.row * CubicTaps::phases,
                                     0, lastRow);
        const int width = FootprintTaps::index(row.square + float(from) * row.squareStep, part.most);
        out.rows[column] = place >> CubicTaps::phaseBits;
        out.down[column] = width << CubicTaps::phaseBits | (place & fraction);
    }
    return out;
}

void interpolateSheared(const ColumnBox& box, const ShearedRow* rows, std::size_t rowCount,
                        const ShearedPart& part, MixPixel* out, std::ptrdiff_t stride) {
    for (std::size_t y = 0; y < rowCount; ++y, out += stride) {
        const ShearedPlaces places = placeSheared(box, rows[y], part);
        MixPixel line[ColumnBox::mostColumns];
        for (int column = 0; column < box.columns; ++column)
            weighFour(box.pixels + std::ptrdiff_t(column) * box.rows + places.rows[column],
                      places.down[column], line[column].channel);
        for (std::size_t i = part.first; i < part.end; ++i) {
            std::int16_t sums[4];
            weighFour(line + places.columns[i], places.across[i], sums);
            const int alpha = std::clamp<int>(sums[3], 0, filterOne);
            for (int c = 0; c < 4; ++c)
                out[i - part.first].channel[c] = std::int16_t(std::clamp<int>(sums[c], 0, alpha) * 4);
        }
    }
}

void widenColumns(const std::uint32_t* const* rows, std::size_t rowCount, std::size_t columnCount,
                  MixPixel* out) {
    for (std::size_t x = 0; x < columnCount; ++x)
        for (std::size_t y = 0; y < rowCount; ++y, ++out)
            for (int c = 0; c < 4; ++c)
                out->channel[c] = std::int16_t((rows[y][x] >> (8 * c) & 255) << sourceShift);
}

} // namespace framora::raster::plain

#pragma once

#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

#include <array>
#include <cstdint>

namespace framora::raster {

/// The halves of reading a magnified picture under a projective map. Each function has a plain twin in
/// `plain`, which gives the same bytes.

/// A part of a picture as the kernels read it: channels of 0...255 << 7, rows without gaps.
struct SourceBox {
    const MixPixel* pixels = nullptr;
    int width = 0; ///< At least 4, like the height.
    int height = 0;
};

/// Fills `pixels` with what a box holds from (firstColumn, firstRow) of a picture on; beyond the picture its
/// edge repeats.
void widenBox(PixelView picture, int firstColumn, int firstRow, const SourceBox& box, MixPixel* pixels);

/// Steps of a source position between two pixels.
inline constexpr int positionBits = 10;

/// A row of output pixels on its way to a box: pixel i lies at
/// ((x + i stepX) / (w + i stepW), (y + i stepY) / (w + i stepW)), counted from the box's first corner.
struct ProjectiveRow {
    float x;
    float y;
    float w;
    float stepX;
    float stepY;
    float stepW;
};

/// Where the four by four neighbours of `count` pixels start, in 1024ths of a pixel: between 0 and what keeps
/// them inside the box.
void projectRow(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
                std::int32_t* rows);

/// The cubic interpolation at those positions, 0...mixOne, valid pixels.
void interpolateRow(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                    std::size_t count, MixPixel* out);

/// What the four neighbours weigh, in 16384ths, for a position between the inner two.
const std::array<std::int16_t, 4>& cubicWeights(int position);

namespace plain {
void projectRow(const ProjectiveRow& row, const SourceBox& box, std::size_t count, std::int32_t* columns,
                std::int32_t* rows);
void interpolateRow(const SourceBox& box, const std::int32_t* columns, const std::int32_t* rows,
                    std::size_t count, MixPixel* out);
} // namespace plain

} // namespace framora::raster

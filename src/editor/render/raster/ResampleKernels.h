#pragma once

#include "editor/render/raster/FixedTaps.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

namespace framora::raster {

/// The two halves of scaling a picture. Each function has a plain twin in `plain`, which gives the same
/// bytes.

/// A channel comes as 0...255 << sourceShift. Each half takes a bit away, which leaves room for what the
/// cubic swings beyond: 0...filterOne at the end.
inline constexpr int sourceShift = 7;
inline constexpr int filterOne = 255 << (sourceShift - 2);
/// Readable pixels that the second half wants behind the last one it uses, beside FixedTaps::paddedTaps().
inline constexpr std::size_t filterSlack = 16;

/// The channels of a picture's pixels as the kernels read them, 0...255 << sourceShift.
void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out);

/// Rows of pixels being mixed, each `stride` pixels behind the one before.
struct MixBlock {
    MixPixel* first;
    std::size_t stride;
    int width;
    int height;

    MixPixel* row(int y) const { return first + std::size_t(y) * stride; }
};

/// Fills `out` with the outputs of `taps` from `index` on, a row each, of the picture's columns from `column`
/// on. Taps behind the picture's last row read that.
void weighRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out);

/// What a picture's pixels are: what is made of opaque ones is opaque, whatever was lost on the way.
enum class Alpha { any, opaque };

/// Fills each row of `out` with the outputs of `taps` from `index` on, clamped to valid pixels of 0...mixOne.
/// A row of `source` starts with the first pixel that they use.
void weighColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha, const MixBlock& out);
/// The same of opaque pixels, as packPixels() and streamPixels() write them.
void packColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out,
                 Storing storing);
/// The FixedTaps::reach() up to which this machine's second half wants weights by taps.
int mostSortableReach();

namespace plain {
void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out);
void weighRows(PixelView picture, int column, const FixedTaps& taps, int index, const MixBlock& out);
void weighColumns(const MixBlock& source, const FixedTaps& taps, int index, Alpha alpha, const MixBlock& out);
void packColumns(const MixBlock& source, const FixedTaps& taps, int index, MutablePixelView out);
} // namespace plain

} // namespace framora::raster

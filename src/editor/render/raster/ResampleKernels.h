#pragma once

#include "editor/render/raster/FixedTaps.h"
#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// The two halves of scaling a picture. Each function has a plain twin in `plain`, which gives the same
/// bytes.

/// A channel comes as 0...255 << sourceShift. Each half takes a bit away, which leaves room for what the
/// cubic swings beyond: 0...filterOne at the end.
inline constexpr int sourceShift = 7;
inline constexpr int filterOne = 255 << (sourceShift - 2);
/// Readable pixels that the second half wants behind the last one it uses.
inline constexpr std::size_t filterSlack = 8;

/// The channels of a picture's pixels as the kernels read them, 0...255 << sourceShift.
void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out);

/// out[i] = the sum of rows[t][i] * weights[t] over the taps, for `count` pixels. The rows are pixels of a
/// picture.
void weighRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
               MixPixel* out);

/// What a picture's pixels are: what is made of opaque ones is opaque, whatever was lost on the way.
enum class Alpha { any, opaque };

/// The outputs [index, index + count) of `taps`, clamped to valid pixels of 0...mixOne. `source` starts with
/// the first pixel that they use.
void weighColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                  MixPixel* out);

namespace plain {
void widenRow(const std::uint32_t* pixels, std::size_t count, MixPixel* out);
void weighRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, std::size_t count,
               MixPixel* out);
void weighColumns(const MixPixel* source, const FixedTaps& taps, int index, int count, Alpha alpha,
                  MixPixel* out);
} // namespace plain

} // namespace framora::raster

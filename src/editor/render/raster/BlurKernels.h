#pragma once

#include "editor/render/raster/BlurTaps.h"
#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// What blurs are made of. Each function has a plain twin in `plain`, which gives the same bytes. Sums are
/// exact and rounded once, halves up; what exceeds sixteen bits is clamped to them.

/// out[i] = the sum of rows[t][i] * weights[t] over the taps, an even number, for `count` pixels. `out` is no
/// part of the rows.
void sumRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift, std::size_t count,
             MixPixel* out);
/// The same of a picture's rows. `shift` is 7 or more.
void sumRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
             std::size_t count, MixPixel* out);
/// The outputs [index, index + count) of `taps`, each from its own sources. One pixel behind the last source
/// must be readable.
void sumRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out);
/// Makes valid pixels of 0...mixOne and dithers them, for the output pixels from (x, y). The pattern is
/// weakened so far that, whichever way a pixel is rounded then, it stays within one step of 255.
void ditherPixels(MixPixel* pixels, int x, int y, std::size_t count);

namespace plain {
void sumRows(const MixPixel* const* rows, const std::int16_t* weights, int taps, int shift, std::size_t count,
             MixPixel* out);
void sumRows(const std::uint32_t* const* rows, const std::int16_t* weights, int taps, int shift,
             std::size_t count, MixPixel* out);
void sumRuns(const MixPixel* sources, const BlurTaps& taps, int index, int count, MixPixel* out);
void ditherPixels(MixPixel* pixels, int x, int y, std::size_t count);
} // namespace plain

} // namespace framora::raster

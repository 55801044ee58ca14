#pragma once

#include "editor/render/raster/MixTile.h"

#include <cstddef>

namespace framora::raster {

/// What is seen through glass. Each function has a plain twin in `plain`, which gives the same bytes.

/// out[i] = the mean, rounded down, of the two by two pixels from 2 * i on in two rows.
void meansOfFour(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out);
/// What lies between pixels and others, so far on the way, in 32768ths. Both are 0...mixOne.
void interpolate(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                 MixPixel* out);
/// The same, each so far on its own way, which is told for each of its channels.
void interpolate(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                 MixPixel* out);

namespace plain {
void meansOfFour(const MixPixel* upper, const MixPixel* lower, std::size_t count, MixPixel* out);
void interpolate(const MixPixel* from, const MixPixel* to, std::int16_t part, std::size_t count,
                 MixPixel* out);
void interpolate(const MixPixel* from, const MixPixel* to, const MixPixel* parts, std::size_t count,
                 MixPixel* out);
} // namespace plain

} // namespace framora::raster

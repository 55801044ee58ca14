#pragma once

#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// What is done to a run of pixels while layers are mixed. Each function has a plain twin in `plain`, which
/// gives the same bytes.
///
/// A coverage is 0...32767 and comes once for each channel, four times a pixel.
inline constexpr int coverageOne = 32767;

/// `over` on `under`.
void blendOver(MixPixel* under, const MixPixel* over, std::size_t count);
/// `over` on `under`, where it covers.
void blendOver(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
/// The same with one coverage of them all.
void blendOver(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count);
/// `over` on `under`, where it covers, dark where `under` is dark and light where it is light (the overlay
/// mode of compositing).
void blendOverlay(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
void blendOverlay(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count);
/// `over` in the place of `under`, where it covers.
void blendInstead(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
/// Dithers black pixels: adds the alphas of `offsets`, of which there are Dither::period that repeat. What is
/// transparent stays so.
void ditherAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out);
/// Rounds to pixels of a picture.
void packPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out);
/// The same past the caches, for pictures too large for them. flushPixels() ends a thread's run of calls.
void streamPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out);
void flushPixels();

namespace plain {
void blendOver(MixPixel* under, const MixPixel* over, std::size_t count);
void blendOver(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
void blendOver(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count);
void blendOverlay(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
void blendOverlay(MixPixel* under, const MixPixel* over, std::int16_t coverage, std::size_t count);
void blendInstead(MixPixel* under, const MixPixel* over, const MixPixel* coverage, std::size_t count);
void ditherAlphas(const MixPixel* blacks, const MixPixel* offsets, std::size_t count, MixPixel* out);
void packPixels(const MixPixel* pixels, std::size_t count, std::uint32_t* out);
} // namespace plain

} // namespace framora::raster

#pragma once

#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

namespace framora::raster {

/// The pixels of a shadow scene: white stripes over a tint. Each function has a plain twin in `plain`, which
/// gives the same bytes.

/// What the pixels of a row are made of, from the first one on, in 32767ths.
struct SceneRow {
    /// Of the tint twice the premultiplied colour less its alpha; the alpha itself stays what it is. That is
    /// what the overlay mode adds to a colour, for each unit that it is away from black or white.
    const MixPixel* tint;
    /// How much of each pixel the stripes cover: from 0 to `covered`, the one negative number that multiplies
    /// without a rounding. stripesSlack more are readable behind the last one.
    const std::int16_t* stripes;
    const MixPixel* dither; ///< What is added to the tint; Dither::period entries.
    /// For the `strip` pixels from each one on, in how many rows, from this one on downwards, they have all
    /// the same of the stripes: nothing or nothing else. 0 where they have some of both. Only for
    /// overlayScene() and drawScene().
    const std::uint8_t* alike = nullptr;

    static constexpr std::int16_t covered = -32768;
    static constexpr std::size_t strip = 16;
    /// The last strip may begin at the last pixel, and its last pixels are read with a strip behind them.
    static constexpr std::size_t stripesSlack = 2 * strip;
};

/// The colours of the scene. `opacity` is that of the stripes, in 32767ths; the tint's is in its colours.
void paintScene(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out);
/// The same mixed in overlay mode onto so many rows, which are `stride` pixels apart.
void overlayScene(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width, MixPixel* under,
                  std::ptrdiff_t stride);
/// The same as packPixels() and streamPixels() write it: `out` is the rows, and `under` stays as it is. What
/// is streamed begins on a line of the cache in every row.
void drawScene(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out,
               Storing storing);

namespace plain {
void paintScene(const SceneRow& row, std::int16_t opacity, std::size_t count, MixPixel* out);
void overlayScene(const SceneRow* rows, int height, std::int16_t opacity, std::size_t width, MixPixel* under,
                  std::ptrdiff_t stride);
void drawScene(const SceneRow* rows, std::int16_t opacity, const MixRows& under, MutablePixelView out);
} // namespace plain

} // namespace framora::raster

#pragma once

#include "editor/render/raster/MixTile.h"

namespace framora::raster {

/// The pixels of a row in a shadow scene: white stripes over a tint. Each function has a plain twin in
/// `plain`, which gives the same bytes.

/// What the pixels are made of, from the first one on, in 32767ths.
struct SceneRow {
    /// Of the tint twice the premultiplied colour less its alpha; the alpha itself stays what it is. That is
    /// what the overlay mode adds to a colour, for each unit that it is away from black or white.
    const MixPixel* tint;
    /// How much of each pixel the stripes cover. stripesSlack more are readable behind the last one.
    const std::int16_t* stripes;
    std::int16_t opacity;   ///< Of the stripes; the tint's is in its colours.
    const MixPixel* dither; ///< What is added to the tint; Dither::period entries.

    static constexpr std::size_t stripesSlack = 8;
};

/// The colours of the scene.
void paintScene(const SceneRow& row, std::size_t count, MixPixel* out);
/// The same mixed onto `under` in overlay mode.
void overlayScene(const SceneRow& row, std::size_t count, MixPixel* under);

namespace plain {
void paintScene(const SceneRow& row, std::size_t count, MixPixel* out);
void overlayScene(const SceneRow& row, std::size_t count, MixPixel* under);
} // namespace plain

} // namespace framora::raster

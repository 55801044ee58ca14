#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

namespace framora::raster {

/// A part of a picture as the kernels read it: channels of 0...255 << 7, rows without gaps.
struct SourceBox {
    const MixPixel* pixels = nullptr;
    int width = 0; ///< At least 4, like the height.
    int height = 0;
};

/// The columns and rows of a picture that the pixels of `part` read four by four of, and `reach` more on all
/// sides. `toPicture` maps output pixels to the picture's.
TileRect neighbours(PixelView picture, const Homography& toPicture, const TileRect& part, int reach);

/// Fills `pixels` with what a box holds from (firstColumn, firstRow) of a picture on; beyond the picture its
/// edge repeats.
void widenBox(PixelView picture, int firstColumn, int firstRow, const SourceBox& box, MixPixel* pixels);

} // namespace framora::raster

#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"
#include "editor/render/raster/ShearedKernels.h"

#include <optional>

namespace framora::raster {

/// A block of output pixels whose rows lie nearly along the rows of a picture, or nearly along its columns.
/// Each row is read from what a cubic gives where its line crosses the picture's columns, with a cubic along
/// the line.
class ShearedBlock {
public:
    /// Columns that a row gets down while it gets along one, at most. Steeper, the finest detail that lies
    /// aslant the other way would be read less well than with four by four pixels.
    static constexpr double steepest = 0.25;

    /// `toPicture` maps output pixels to the picture's; they span a root of two of them at most, and all lie
    /// in front. `most` is the largest index of a width (CubicTaps). Nothing where rows lie too far aslant.
    static std::optional<ShearedBlock> make(PixelView picture, const Homography& toPicture,
                                            const TileRect& block, int most);

    /// The premultiplied colours, 0...255, of `count` pixels of row y of the output, the first one `skipped`
    /// from the block's left edge.
    void read(int y, int skipped, int count, Float4* out) const;
    /// The same for a part of the block, 0...mixOne. Its rows in `out` are `stride` pixels apart.
    void mix(const TileRect& part, MixPixel* out, int stride) const;

private:
    ShearedBlock(PixelView picture, const Homography& toPicture, const TileRect& block, int most);
    /// Has fetched what the block to the right of a part will read, beside what the part itself does, `read`.
    void fetchNext(const TileRect& part, const TileRect& read) const;
    /// Row y of the output. Filled in place: a copy would wait for what has only just been written.
    void describe(int y, ShearedRow& row) const;
    /// How far from its left end to its right end row y gets along the picture's rows and columns.
    Vec2 reach(int y) const;

    PixelView m_picture;
    Homography m_toPicture;
    TileRect m_block;
    int m_most;
    bool m_isTurned = false; ///< Rows lie along the picture's columns: the two change their parts.
    TileRect m_box;          ///< What the block reads of the picture.
    Homography m_toBox; ///< From the block's pixels to the first of four, columns and rows as they are read.
};

} // namespace framora::raster

#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/FootprintSampler.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PicturePyramid.h"

namespace framora::raster {

/// Reads a picture under any projective map, in blocks on a grid from the layer's origin, which are quartered
/// where footprints differ much.
class ProjectiveSampler {
public:
    /// `toSource` maps output pixels to pixels of the pyramid's picture. `pyramid` must live as long as this.
    ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource);

    /// The premultiplied colours of `count` output pixels from (x, y), 0...255.
    void read(int x, int y, int count, Float4* out) const;
    /// The same for a block, 0...mixOne. A pixel's colour does not depend on the block that asks for it.
    void mix(const TileRect& tile, MixPixel* out) const;

private:
    /// Whether a block's quarters are read each by a rule of its own.
    bool isQuartered(const TileRect& block) const;
    /// The block by whose rule a pixel is read.
    TileRect blockAround(int x, int y) const;
    /// mix() for what of `tile`, which begins at `out`, lies in a block.
    void mixBlock(const TileRect& block, const TileRect& tile, MixPixel* out) const;

    FootprintSampler m_footprints;
};

} // namespace framora::raster

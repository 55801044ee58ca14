#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/FootprintKernels.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/PicturePyramid.h"

namespace framora::raster {

/// Reads the blocks of a picture that a projective map makes smaller. Each pixel mixes what lies under its
/// footprint: with a cubic stretched along both axes of the reduction that fits the footprint's narrow side,
/// and where the footprint is long and lies aslant, with several of them along it.
class FootprintSampler {
public:
    /// Blocks are this high and wide at most.
    static constexpr int mostBlockWidth = 64;

    /// `toSource` maps output pixels to pixels of the pyramid's picture. `pyramid` must live as long as this.
    FootprintSampler(const PicturePyramid& pyramid, const Homography& toSource);

    /// The premultiplied colours, 0...255, of the `count` pixels from (x, y); they lie in `block`.
    void read(const TileRect& block, int x, int y, int count, Float4* out) const;
    /// The same for a part of a block, 0...mixOne. Its rows in `out` are `stride` pixels apart. False, and
    /// nothing done, where the picture is too small to be read fast.
    bool mix(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const;

    /// The square of a footprint: the source offsets d with d' m^-1 d = 1 lie on its border.
    struct Ellipse {
        double xx;
        double xy;
        double yy;
        /// Source pixels along its long side.
        double longest() const;
    };
    /// The source offsets under the output pixel that maps to `source`.
    static Ellipse ellipse(const Homography& toSource, Vec2 source, double depth);

private:
    /// How the pixels of a block are read.
    struct Plan {
        PixelView level;
        Homography toLevel;
        /// The pixel of the level that places are counted from.
        int originX = 0;
        int originY = 0;
        float share = 1;
        int most = 0; ///< The largest index of a width.
        FootprintLine line;
        int reach = 0; ///< Pixels of the level beyond a place that its reading may use.
    };
    Plan plan(const TileRect& block) const;
    /// The footprints of the first `count` pixels of row y of a block.
    void project(const Plan& plan, const TileRect& block, int y, int count, Footprint* out) const;

    const PicturePyramid& m_pyramid;
    Homography m_toSource;
};

} // namespace framora::raster

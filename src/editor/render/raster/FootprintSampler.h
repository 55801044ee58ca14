#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/FootprintKernels.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/PicturePyramid.h"
#include "editor/render/raster/ShearedBlock.h"

#include <array>
#include <optional>

namespace framora::raster {

/// Reads the blocks of a picture under a projective map. Each pixel mixes what lies under its footprint: with
/// a cubic along both axes of the reduction that fits the footprint, and where the footprint is long and lies
/// aslant, with several of them along it. Where the reduction fits so well everywhere in a block that four
/// pixels a side are enough, that is all they read (CubicTaps, by a ShearedBlock where rows lie along the
/// picture's), else as many as the widths want (FootprintTaps).
class FootprintSampler {
public:
    /// Blocks are this wide and this high at most.
    static constexpr int mostBlockWidth = int(FootprintPlaces::most);
    static constexpr int mostBlockHeight = 32;

    /// `toSource` maps output pixels to pixels of the pyramid's picture. `pyramid` must live as long as this.
    FootprintSampler(const PicturePyramid& pyramid, const Homography& toSource);

    /// The premultiplied colours, 0...255, of the `count` pixels from (x, y); they lie in `block`.
    void read(const TileRect& block, int x, int y, int count, Float4* out) const;
    /// The same for a part of a block, 0...mixOne. Its rows in `out` are `stride` pixels apart.
    void mix(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const;

    /// How far from its place a pixel of the block may read, in pixels of the reduction that is read.
    int reach(const TileRect& block) const { return plan(block).reach; }

    /// Whether footprints differ so much in a block that one rule for all of it would read far too much.
    bool isUneven(const TileRect& block) const;

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
        bool isCubic = false; ///< With four pixels a side.
        /// The pixel of the level that places are counted from.
        int originX = 0;
        int originY = 0;
        float share = 1;
        int most = 0; ///< The largest index of a width.
        FootprintLine line;
        int reach = 0;                       ///< Pixels of the level beyond a place that its reading may use.
        std::optional<ShearedBlock> sheared; ///< What reads them where rows lie along the level's.
    };
    Plan plan(const TileRect& block) const;
    /// The footprints of a block's corners.
    using Corners = std::array<Ellipse, 4>;
    /// The same along the line that each corner's row lies on, and across it. Nothing where rows lie too far
    /// aslant, or columns then do, or what is not in front of the eye.
    std::optional<Corners> shearedCorners(const TileRect& block) const;
    /// The plan for a ShearedBlock where one does.
    std::optional<Plan> shearedPlan(const TileRect& block) const;
    /// Which reduction fits these footprints, as far as widths answer for them, or one that is so many steps
    /// further, and with which widths.
    void chooseLevel(const Corners& corners, int further, Plan& plan) const;
    /// Where on the level the readings along a footprint lie. Gives how far the outer ones should, in its
    /// pixels: no farther than farthestReading do they.
    double placeReadings(const Ellipse& aslant, double slant, Plan& plan) const;
    /// The footprints [from, end) of row y of a block, which lies at `map` in the level.
    static void project(const Plan& plan, const Homography& map, const TileRect& block, int y, int from,
                        int end, FootprintPlaces& out);
    /// project() for what FootprintTaps read.
    static void projectWide(const Plan& plan, const TileRect& block, int y, int from, int end,
                            FootprintPlaces& out);
    /// From a block's pixels to the first of the four by four of the level, counted from the corner of `box`.
    static Homography cubicMap(const Plan& plan, const TileRect& block, const TileRect& box);
    void readCubic(const Plan& plan, const TileRect& block, int x, int y, int count, Float4* out) const;
    void mixCubic(const Plan& plan, const TileRect& block, const TileRect& part, MixPixel* out,
                  int stride) const;
    /// mix() by FootprintTaps, in pieces where the part spreads far over the level.
    void mixWide(const Plan& plan, const TileRect& block, const TileRect& part, MixPixel* out,
                 int stride) const;

    const PicturePyramid& m_pyramid;
    Homography m_toSource;
};

} // namespace framora::raster

#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/FootprintPlanner.h"

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
    FootprintSampler(const PicturePyramid& pyramid, const Homography& toSource)
        : m_planner(pyramid, toSource) {}

    /// The premultiplied colours, 0...255, of the `count` pixels from (x, y); they lie in `block`.
    void read(const TileRect& block, int x, int y, int count, Float4* out) const;
    /// The same for a part of a block, 0...mixOne. Its rows in `out` are `stride` pixels apart.
    void mix(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const;

    /// How far from its place a pixel of the block may read, in pixels of the reduction that is read.
    int reach(const TileRect& block) const { return m_planner.plan(block).reach; }

    /// Whether footprints differ so much in a block that one rule for all of it would read far too much.
    bool isUneven(const TileRect& block) const { return m_planner.isUneven(block); }

private:
    using Plan = FootprintPlanner::Plan;
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

    FootprintPlanner m_planner;
};

} // namespace framora::raster

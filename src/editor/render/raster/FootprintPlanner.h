#pragma once

#include "editor/render/raster/FootprintKernels.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/PicturePyramid.h"
#include "editor/render/raster/ShearedBlock.h"

#include <array>
#include <optional>

namespace framora::raster {

/// Decides how a FootprintSampler reads each block: which reduction of the picture, with which widths, and
/// how many readings lie along a footprint.
class FootprintPlanner {
public:
    /// `toSource` maps output pixels to pixels of the pyramid's picture. `pyramid` must live as long as this.
    FootprintPlanner(const PicturePyramid& pyramid, const Homography& toSource);

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
    /// What readings along a line answer for, the widths along the axes need not.
    struct Slant {
        Ellipse footprint;
        double correlation; ///< Of its axes, 0...1.
        double amount;      ///< Their covariance over what is left of a variance.
    };
    /// As much as everywhere in the block.
    static Slant slantOf(const Corners& corners);
    /// Where on the level the readings along a footprint lie. Gives how far the outer ones should, in its
    /// pixels: no farther than farthestReading do they.
    double placeReadings(const Slant& slant, Plan& plan) const;

    const PicturePyramid& m_pyramid;
    Homography m_toSource;
};

} // namespace framora::raster

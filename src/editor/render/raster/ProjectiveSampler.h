#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/PicturePyramid.h"

namespace framora::raster {

/// Reads a picture under any projective map. Where it is magnified it interpolates with a cubic; where one
/// output pixel spans more than one source pixel in some direction, it mixes everything under the pixel's
/// footprint, an ellipse, in the reduction that fits the footprint's narrow side.
class ProjectiveSampler {
public:
    /// `toSource` maps output pixels to pixels of the pyramid's picture. `pyramid` must live as long as this.
    ProjectiveSampler(const PicturePyramid& pyramid, const Homography& toSource);

    /// The premultiplied colours of `count` output pixels from (x, y), 0...255.
    void read(int x, int y, int count, Float4* out) const;

private:
    /// The square of a footprint: source offsets d with d' m^-1 d = 1 lie on it.
    struct Footprint {
        double xx;
        double xy;
        double yy;
    };

    Float4 interpolated(Vec2 source) const;
    Float4 filtered(Vec2 source, Footprint footprint) const;

    const PicturePyramid& m_pyramid;
    Homography m_toSource;
};

} // namespace framora::raster

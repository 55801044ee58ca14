#pragma once

#include "editor/render/raster/Float4.h"
#include "editor/render/raster/Homography.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PicturePyramid.h"

#include <optional>

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
    /// The same for a block, 0...mixOne. A pixel's colour does not depend on the block that asks for it.
    void mix(const TileRect& tile, MixPixel* out) const;

private:
    /// The square of a footprint: the source offsets d with d' m^-1 d = 1 lie on its border.
    struct Footprint {
        double xx;
        double xy;
        double yy;
        /// Source pixels along its long side.
        double longest() const;
    };

    /// What mixes the pixels under a footprint: a d.x^2 + 2 b d.x d.y + c d.y^2 is where the offset d, in
    /// pixels of `level`, stands in the kernel's table.
    struct Filter {
        PixelView level;
        double scaleX;
        double scaleY;
        double a;
        double b;
        double c;
        double reach; ///< Rows above and below.
    };

    /// mix() of a part of a block where every pixel of the block is magnified; false, and nothing done,
    /// elsewhere. The rows of `out` are `stride` pixels apart.
    bool mixMagnified(const TileRect& block, const TileRect& part, MixPixel* out, int stride) const;
    /// The source columns and rows around a block and the neighbours that it reads; none where not every
    /// pixel of the block is magnified.
    std::optional<TileRect> magnifiedSource(const TileRect& block) const;
    Footprint footprint(Vec2 source, double depth) const;
    Filter filter(const Footprint& footprint) const;
    Float4 interpolated(Vec2 source) const;
    Float4 filtered(Vec2 source, const Filter& filter) const;

    const PicturePyramid& m_pyramid;
    Homography m_toSource;
};

} // namespace framora::raster

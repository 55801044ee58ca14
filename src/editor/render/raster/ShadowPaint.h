#pragma once

#include "editor/render/raster/Paint.h"
#include "editor/render/raster/Placement.h"
#include "editor/render/raster/RoundedRect.h"

#include <vector>

namespace framora::raster {

/// The soft shadow of a card: black under a Gaussian blur of the card's shape. Opaque content of the card
/// itself hides most of it, but it is there as well.
class ShadowPaint : public Paint {
public:
    /// Beyond so many deviations outside of the card nothing is left that shows.
    static constexpr double reach = 3.2;

    /// `shape` lies about the origin of the placement's points; `deviation` is in points, above 0.
    ShadowPaint(const RoundedRect& shape, double deviation, double opacity, const Placement& placement);

    void shade(int x, int y, int count, Float4* out) const override;
    /// Its alpha is dithered.
    void mix(const TileRect& tile, MixPixel* out) const override;
    bool isOpaque() const override { return false; }

    /// The alpha, 0...1, at a point.
    float alpha(Vec2 point) const;

private:
    /// A place between two entries along one side of the table.
    struct Place {
        int index;
        float part;
    };
    /// One axis of a quarter of the shadow, from the middle outwards. It starts where the shadow starts to
    /// change.
    struct Axis {
        double start = 0; ///< Points.
        double step = 1;
        double perStep = 1; ///< 1 / step.
        int count = 2;
        Place place(double distance) const;
    };
    float read(Place column, Place row) const;

    Homography m_toLocal;
    Axis m_columns;
    Axis m_rows;
    std::vector<float> m_table; ///< Alphas, row by row.
};

} // namespace framora::raster

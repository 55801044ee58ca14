#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Paint.h"

#include <vector>

namespace framora::raster {

/// A gradient over a rectangle about the origin of its own points.
class GradientPaint : public Paint {
public:
    enum class Kind {
        linear, ///< 0 degrees points up, clockwise; the line runs from corner to corner.
        radial, ///< A circle from the centre to the corners.
        angular ///< Clockwise from `degrees`, 0 being up; closed on its first colour.
    };

    /// `stops` are premultiplied, evenly spaced and at least one. `toLocal` maps output pixels to the
    /// gradient's points.
    GradientPaint(Kind kind, double degrees, double width, double height, std::vector<Float4> stops,
                  const Homography& toLocal);

    void shade(int x, int y, int count, Float4* out) const override;
    void mix(const TileRect& tile, MixPixel* out) const override;
    std::shared_ptr<const Paint> coarser(int cell) const override;
    bool isOpaque() const override { return m_isOpaque; }

    /// Where a point lies between the first colour (0) and the last (1), before it is clamped.
    double position(Vec2 point) const;
    Float4 color(double position) const;

private:
    /// The colours between two stops: the first one, and how much they grow up to the next, as in a ColorRun.
    struct Line {
        double first[4];
        double slope[4];
    };

    void makeLines();
    /// mix() of `count` pixels from (x, y), the first one at `position` of a linear gradient and the others
    /// `step` apart, but for the first `skipped` of them.
    void mixLine(double position, double step, int skipped, int x, int y, int count, MixPixel* out) const;

    Kind m_kind;
    Homography m_toLocal;
    std::vector<Float4> m_stops;
    std::vector<Float4> m_steps;  ///< From each stop to the next.
    std::vector<MixPixel> m_ramp; ///< For mix(), unless linear.
    std::vector<Line> m_lines;    ///< Linear: before the first stop, between them, and behind the last one.
    bool m_isOpaque = true;
    Vec2 m_direction;    ///< Linear: position is its product with the point, plus a half.
    double m_radius = 1; ///< Radial.
    double m_start = 0;  ///< Angular: in turns.
};

} // namespace framora::raster

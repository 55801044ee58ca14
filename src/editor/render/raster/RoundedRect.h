#pragma once

#include "editor/render/raster/Homography.h"
#include "editor/render/raster/Placement.h"

#include <vector>

namespace framora::raster {

/// A rectangle about the origin with continuous corners: superellipses that leave the straight edges without
/// a jump in curvature and pass through the middle of the circular arc of `radius`.
struct RoundedRect {
    double width = 0;
    double height = 0;
    double radius = 0; ///< Clamped to half the shorter side.

    /// The box that a corner takes, from the corner along each side: up to 1.28 radii.
    double cornerExtent() const;
    /// The exponent n of |u|^n + |v|^n = 1 in that box.
    double cornerExponent() const;
    /// Whether a point lies inside.
    bool contains(Vec2 point) const;
    /// The outline as a closed convex polygon in the output's pixels, within a hundredth of a pixel of the
    /// curve. What does not lie in front of the eye is cut off; empty when nothing is left or a number is not
    /// finite.
    std::vector<Vec2> outline(const Placement& placement) const;
    bool operator==(const RoundedRect&) const = default;
};

} // namespace framora::raster

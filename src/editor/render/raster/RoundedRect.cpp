#include "editor/render/raster/RoundedRect.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framora::raster {
namespace {

// What comes nearer to the eye than this is cut off; it would be magnified a thousand times.
constexpr double nearestDepth = 1e-3;

/// The part of a convex polygon where `projection` has a depth above nearestDepth.
std::vector<Vec2> clipped(const std::vector<Vec2>& polygon, const Homography& projection) {
    std::vector<Vec2> kept;
    kept.reserve(polygon.size() + 2);
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Vec2 a = polygon[i];
        const Vec2 b = polygon[(i + 1) % polygon.size()];
        const double depthA = projection.depth(a) - nearestDepth;
        const double depthB = projection.depth(b) - nearestDepth;
        if (depthA >= 0)
            kept.push_back(a);
        if ((depthA >= 0) != (depthB >= 0)) {
            const double t = depthA / (depthA - depthB);
            kept.push_back({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)});
        }
    }
    return kept;
}

/// How many pixels a point of the layer is long at most, at its corners.
double magnification(const RoundedRect& rect, const Homography& map) {
    double most = 0;
    for (const double sx : {-0.5, 0.5})
        for (const double sy : {-0.5, 0.5}) {
            const Vec2 p{sx * rect.width, sy * rect.height};
            const double w = std::max(map.depth(p), nearestDepth);
            const Vec2 mapped{(map(0, 0) * p.x + map(0, 1) * p.y + map(0, 2)) / w,
                              (map(1, 0) * p.x + map(1, 1) * p.y + map(1, 2)) / w};
            most = std::max(
                {most, std::hypot(map(0, 0) - mapped.x * map(2, 0), map(1, 0) - mapped.y * map(2, 0)) / w,
                 std::hypot(map(0, 1) - mapped.x * map(2, 1), map(1, 1) - mapped.y * map(2, 1)) / w});
        }
    return most;
}

} // namespace

double RoundedRect::cornerExtent() const {
    const double half = std::min(width, height) / 2;
    const double r = radius > 0 ? std::min(radius, half) : 0;
    return std::min(1.28 * r, half);
}

double RoundedRect::cornerExponent() const {
    const double extent = cornerExtent();
    if (!(extent > 0))
        return 2;
    const double r = std::min(radius, std::min(width, height) / 2);
    // The arc's middle lies this far from both sides.
    const double inset = (1 - std::numbers::sqrt2 / 2) * r;
    return std::numbers::ln2 / -std::log1p(-inset / extent);
}

bool RoundedRect::contains(Vec2 point) const {
    const double x = std::abs(point.x);
    const double y = std::abs(point.y);
    if (!(x <= width / 2 && y <= height / 2))
        return false;
    const double extent = cornerExtent();
    const double u = x - (width / 2 - extent);
    const double v = y - (height / 2 - extent);
    if (u <= 0 || v <= 0)
        return true;
    const double n = cornerExponent();
    return std::pow(u / extent, n) + std::pow(v / extent, n) <= 1;
}

std::vector<Vec2> RoundedRect::outline(const Placement& placement) const {
    if (!(width > 0 && height > 0 && std::isfinite(width) && std::isfinite(height)) ||
        !placement.toOutput.isFinite())
        return {};
    const double extent = cornerExtent();
    std::vector<Vec2> polygon;
    if (extent > 0) {
        const double pixels = extent * magnification(*this, placement.toOutput);
        const int segments = int(std::clamp(std::ceil(12 * std::sqrt(pixels)), 4.0, 512.0));
        const double power = 2 / cornerExponent();
        std::vector<Vec2> corner; // from the vertical side to the horizontal one, in 0...1
        for (int i = 0; i <= segments; ++i) {
            const auto [s, c] = sinCos(90.0 * i / segments);
            corner.push_back({std::pow(c, power), std::pow(s, power)});
        }
        const double cx = width / 2 - extent;
        const double cy = height / 2 - extent;
        for (int quarter = 0; quarter < 4; ++quarter) {
            const double sx = quarter == 0 || quarter == 3 ? 1 : -1;
            const double sy = quarter < 2 ? 1 : -1;
            for (int i = 0; i <= segments; ++i) {
                const Vec2 p = corner[std::size_t(quarter % 2 == 0 ? i : segments - i)];
                polygon.push_back({sx * (cx + extent * p.x), sy * (cy + extent * p.y)});
            }
        }
    } else {
        const double x = width / 2;
        const double y = height / 2;
        polygon = {{x, y}, {-x, y}, {-x, -y}, {x, -y}};
    }
    for (const Homography& projection : placement.projections)
        polygon = clipped(polygon, projection);
    for (Vec2& point : polygon) {
        point = placement.toOutput.map(point);
        point = {point.x + placement.originX, point.y + placement.originY};
        if (!std::isfinite(point.x) || !std::isfinite(point.y))
            return {};
    }
    if (polygon.size() < 3)
        polygon.clear();
    return polygon;
}

} // namespace framora::raster

#include "editor/render/raster/Placement.h"

#include <cmath>
#include <limits>

namespace framora::raster {
namespace {

/// The whole part of a movement; the rest, 0...1, stays in `value`.
int takeWhole(double& value) {
    // Fixed steps, so that the rest of x and of x + 1 are the same number.
    constexpr double steps = 4096;
    constexpr double farthest = 1e8;
    if (!(std::abs(value) < farthest)) {
        value = std::numeric_limits<double>::quiet_NaN();
        return 0;
    }
    const double rounded = std::round(value * steps) / steps;
    const double whole = std::floor(rounded);
    value = rounded - whole;
    return int(whole);
}

} // namespace

Homography Placement::toLocal() const {
    return toOutput.inverse() * Homography::translation(-originX, -originY);
}

void Placement::move(double x, double y) {
    originX += takeWhole(x);
    originY += takeWhole(y);
    toOutput = Homography::translation(x, y) * toOutput;
}

} // namespace framora::raster

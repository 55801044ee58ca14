#include "editor/render/raster/RoundedRect.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

/// How far the outline lies from the corner, along the line x = y, in points.
double diagonalInset(const RoundedRect& rect) {
    double low = 0;
    double high = rect.radius + 1;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2;
        (rect.contains({rect.width / 2 - middle, rect.height / 2 - middle}) ? high : low) = middle;
    }
    return high;
}

TEST(RoundedRect, PassesThroughTheMiddleOfTheCircularArc) {
    for (const double radius : {1.0, 20.0, 55.0, 100.0}) {
        const RoundedRect rect{400, 300, radius};
        EXPECT_NEAR(diagonalInset(rect), (1 - std::sqrt(0.5)) * radius, 1e-6) << radius;
    }
}

TEST(RoundedRect, StaysWithinHalfAPointOfTheArcsEnds) {
    const RoundedRect rect{400, 300, 55};
    // Where a circular arc would meet the side, the curve has left it by less than half a point...
    EXPECT_TRUE(rect.contains({200 - 0.5, 150 - 55}));
    EXPECT_TRUE(rect.contains({200 - 55, 150 - 0.5}));
    // ...and it has left it: the corner begins before the arc would.
    EXPECT_FALSE(rect.contains({200 - 0.1, 150 - 55}));
    EXPECT_TRUE(rect.contains({200, 150 - 1.29 * 55}));
}

TEST(RoundedRect, LeavesTheSideWithoutAJumpInCurvature) {
    // Near its end the curve's distance from the side grows faster than a square: its curvature starts at 0.
    EXPECT_GT((RoundedRect{400, 300, 20}.cornerExponent()), 2.5);
}

TEST(RoundedRect, ClampsTheRadiusToHalfTheShorterSide) {
    const RoundedRect pill{200, 60, 500};
    EXPECT_DOUBLE_EQ(pill.cornerExtent(), 30);
    EXPECT_NEAR(pill.cornerExponent(), 2, 1e-9) << "a half circle";
    EXPECT_TRUE(pill.contains({99.9, 0}));
    EXPECT_FALSE(pill.contains({99.9, 5}));
}

TEST(RoundedRect, HasSharpCornersWithoutARadius) {
    for (const double radius : {0.0, -5.0, std::nan("")}) {
        const RoundedRect rect{200, 60, radius};
        EXPECT_TRUE(rect.contains({100, 30})) << radius;
        EXPECT_EQ(rect.outline({}).size(), 4u) << radius;
    }
}

TEST(RoundedRect, KeepsTheOutlineOnTheCurve) {
    const RoundedRect rect{400, 300, 40};
    for (const Vec2 p : rect.outline({})) {
        EXPECT_TRUE(rect.contains({p.x * (1 - 1e-9), p.y * (1 - 1e-9)}));
        EXPECT_FALSE(rect.contains({p.x * (1 + 1e-9), p.y * (1 + 1e-9)}));
    }
}

TEST(RoundedRect, HasNoOutlineWithoutASizeOrAMap) {
    const Placement placement;
    EXPECT_TRUE((RoundedRect{0, 50, 0}.outline(placement).empty()));
    EXPECT_TRUE((RoundedRect{-10, 50, 0}.outline(placement).empty()));
    EXPECT_TRUE((RoundedRect{std::nan(""), 50, 0}.outline(placement).empty()));
    EXPECT_TRUE((RoundedRect{INFINITY, 50, 0}.outline(placement).empty()));
    EXPECT_TRUE((RoundedRect{50, 50, 0}.outline({Homography::translation(NAN, 0), {}}).empty()));
}

TEST(RoundedRect, CutsOffWhatIsBehindTheEye) {
    // The eye stands 100 before a layer 400 high: its lower end turns past the eye.
    const Homography tilt = Homography::tiltX(60, 100);
    const RoundedRect rect{400, 400, 30};
    const std::vector<Vec2> outline = rect.outline({tilt, {tilt}});
    ASSERT_GE(outline.size(), 3u);
    const Homography reverse = tilt.inverse();
    for (const Vec2 p : outline)
        EXPECT_GE(tilt.depth(reverse.map(p)), 0.9e-3);
    // All of it behind the eye: nothing.
    const Homography behind = Homography::tiltX(60, 100) * Homography::translation(0, 1000);
    EXPECT_TRUE(rect.outline({behind, {behind}}).empty());
}

} // namespace
} // namespace framora::raster

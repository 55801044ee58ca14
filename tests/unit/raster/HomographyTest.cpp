#include "editor/render/raster/Homography.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

void expectPoint(Vec2 point, double x, double y) {
    EXPECT_NEAR(point.x, x, 1e-9);
    EXPECT_NEAR(point.y, y, 1e-9);
}

TEST(Homography, TurnsClockwiseWithYDown) {
    expectPoint(Homography::rotation(90).map({1, 0}), 0, 1);
    expectPoint(Homography::rotation(-90).map({1, 0}), 0, -1);
    expectPoint(Homography::rotation(45).map({1, 0}), std::sqrt(0.5), std::sqrt(0.5));
}

TEST(Homography, IsExactAtRightAngles) {
    for (const double degrees : {0.0, 360.0, -720.0, 90.0, 180.0, 270.0, -90.0, 450.0}) {
        const Homography turn = Homography::rotation(degrees);
        EXPECT_TRUE(turn(0, 0) == 0 || std::abs(turn(0, 0)) == 1) << degrees;
        EXPECT_TRUE(turn(0, 1) == 0 || std::abs(turn(0, 1)) == 1) << degrees;
    }
    expectPoint(Homography::rotation(450).map({1, 0}), 0, 1);
}

TEST(Homography, BringsTheBottomNearerForAPositiveTiltAboutX) {
    // The eye 100 before the plane; a point 50 below turns by 30 degrees: 50 cos 30 down, 50 sin 30 nearer.
    const Homography tilt = Homography::tiltX(30, 100);
    const double depth = 1 - 25.0 / 100;
    EXPECT_NEAR(tilt.depth({0, 50}), depth, 1e-12);
    expectPoint(tilt.map({10, 50}), 10 / depth, 50 * std::sqrt(0.75) / depth);
    EXPECT_GT(tilt.depth({0, -50}), 1);
}

TEST(Homography, BringsTheLeftNearerForAPositiveTiltAboutY) {
    const Homography tilt = Homography::tiltY(30, 100);
    const double depth = 1 - 25.0 / 100;
    EXPECT_NEAR(tilt.depth({-50, 0}), depth, 1e-12);
    expectPoint(tilt.map({-50, 10}), -50 * std::sqrt(0.75) / depth, 10 / depth);
    EXPECT_GT(tilt.depth({50, 0}), 1);
}

TEST(Homography, ReversesItself) {
    const Homography map = Homography::translation(30, -4) * Homography::tiltY(20, 300) *
                           Homography::tiltX(-35, 300) * Homography::rotation(17) * Homography::scaling(2, 2);
    const Homography reverse = map.inverse();
    for (const Vec2 p : {Vec2{0, 0}, Vec2{40, 30}, Vec2{-50, 12}}) {
        const Vec2 back = reverse.map(map.map(p));
        expectPoint(back, p.x, p.y);
        EXPECT_NEAR(reverse.depth(map.map(p)), 1 / map.depth(p), 1e-9);
    }
}

TEST(Homography, AppliesTheRightFactorFirst) {
    const Homography map = Homography::translation(10, 0) * Homography::scaling(2, 3);
    expectPoint(map.map({1, 1}), 12, 3);
}

TEST(Homography, HasNoFiniteReverseWhenEdgeOn) {
    EXPECT_FALSE(Homography::tiltX(90, 100).inverse().isFinite());
    EXPECT_FALSE(Homography::scaling(0, 1).inverse().isFinite());
    EXPECT_FALSE(Homography::translation(std::nan(""), 0).isFinite());
}

} // namespace
} // namespace framora::raster

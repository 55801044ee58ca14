#include "editor/render/raster/GradientPaint.h"
#include "editor/render/raster/CheckerboardPaint.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

const Float4 black = premultiplied(0, 0, 0, 1);
const Float4 white = premultiplied(1, 1, 1, 1);
const Float4 red = premultiplied(1, 0, 0, 1);

void expectColor(Float4 a, Float4 b, float tolerance = 1e-6f) {
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(a[i], b[i], tolerance) << "channel " << i;
}

GradientPaint linear(double degrees, double width, double height) {
    return GradientPaint(GradientPaint::Kind::linear, degrees, width, height, {black, white}, {});
}

TEST(LinearGradient, PointsUpAtZeroAndTurnsClockwise) {
    EXPECT_DOUBLE_EQ(linear(0, 200, 100).position({0, 50}), 0);
    EXPECT_DOUBLE_EQ(linear(0, 200, 100).position({33, -50}), 1);
    EXPECT_DOUBLE_EQ(linear(90, 200, 100).position({-100, 20}), 0);
    EXPECT_DOUBLE_EQ(linear(90, 200, 100).position({100, 20}), 1);
    EXPECT_DOUBLE_EQ(linear(180, 200, 100).position({0, 50}), 1);
}

TEST(LinearGradient, RunsFromCornerToCorner) {
    // 135 degrees starts at the top left, whatever the rectangle's shape.
    for (const double height : {100.0, 200.0, 700.0}) {
        EXPECT_NEAR(linear(135, 200, height).position({-100, -height / 2}), 0, 1e-12);
        EXPECT_NEAR(linear(135, 200, height).position({100, height / 2}), 1, 1e-12);
        EXPECT_NEAR(linear(135, 200, height).position({0, 0}), 0.5, 1e-12);
    }
    EXPECT_NEAR(linear(30, 200, 100).position({100, -50}), 1, 1e-12);
    EXPECT_NEAR(linear(-225, 200, 100).position({-100, -50}), 0, 1e-12) << "any number of turns";
}

TEST(RadialGradient, ReachesItsLastColourInTheCorners) {
    const GradientPaint paint(GradientPaint::Kind::radial, 77, 60, 80, {black, white}, {});
    EXPECT_DOUBLE_EQ(paint.position({0, 0}), 0);
    for (const double sx : {-1.0, 1.0})
        EXPECT_DOUBLE_EQ(paint.position({sx * 30, sx * 40}), 1);
    EXPECT_DOUBLE_EQ(paint.position({25, 0}), 0.5);
}

TEST(AngularGradient, RunsClockwiseFromItsAngleAndClosesOnItsFirstColour) {
    const GradientPaint up(GradientPaint::Kind::angular, 0, 100, 100, {black, white, red}, {});
    EXPECT_NEAR(up.position({10, 0}), 0.25, 1e-12) << "right is a quarter turn after up";
    EXPECT_NEAR(up.position({0, 10}), 0.5, 1e-12);
    const GradientPaint right(GradientPaint::Kind::angular, 90, 100, 100, {black, white, red}, {});
    EXPECT_NEAR(right.position({10, 0}), 0, 1e-12);
    EXPECT_NEAR(right.position({0, -10}), 0.75, 1e-12);
    expectColor(up.color(0), black);
    expectColor(up.color(1.0 / 3), white);
    expectColor(up.color(2.0 / 3), red);
    expectColor(up.color(1), black);
    expectColor(up.color(5.0 / 6), premultiplied(0.5, 0, 0, 1));
}

TEST(Gradient, SpacesItsStopsEvenly) {
    const GradientPaint three(GradientPaint::Kind::linear, 90, 100, 100, {black, white, red}, {});
    expectColor(three.color(0.25), premultiplied(0.5, 0.5, 0.5, 1));
    expectColor(three.color(0.5), white);
    expectColor(three.color(0.75), premultiplied(1, 0.5, 0.5, 1));
    expectColor(three.color(-3), black);
    expectColor(three.color(7), red);
    expectColor(three.color(NAN), black);
}

TEST(Gradient, IsTakenAtPixelCentres) {
    for (const auto kind :
         {GradientPaint::Kind::linear, GradientPaint::Kind::radial, GradientPaint::Kind::angular}) {
        const Homography toLocal = Homography::translation(-50, -30) * Homography::scaling(0.5, 0.5);
        const GradientPaint paint(kind, 20, 100, 60, {black, white, red}, toLocal);
        Float4 row[40];
        paint.shade(17, 8, 40, row);
        for (int i = 0; i < 40; ++i)
            expectColor(row[i], paint.color(paint.position({(17.5 + i) / 2 - 50, 8.5 / 2 - 30})), 1e-5f);
    }
}

TEST(Gradient, SurvivesAnglesThatAreNoNumbers) {
    for (const double degrees : {double(NAN), double(INFINITY)})
        for (const auto kind : {GradientPaint::Kind::linear, GradientPaint::Kind::angular}) {
            const GradientPaint paint(kind, degrees, 100, 60, {black, white}, {});
            Float4 pixel;
            paint.shade(3, 4, 1, &pixel);
            EXPECT_TRUE(pixel[0] >= 0 && pixel[0] <= 1);
        }
}

TEST(Gradient, IsOpaqueOnlyWhenEveryStopIs) {
    EXPECT_TRUE(linear(0, 1, 1).isOpaque());
    EXPECT_FALSE(
        GradientPaint(GradientPaint::Kind::linear, 0, 1, 1, {black, premultiplied(1, 1, 1, 0.99)}, {})
            .isOpaque());
}

TEST(Checkerboard, AlternatesSquaresOfItsSize) {
    const CheckerboardPaint paint(12, Homography::scaling(0.5, 0.5), 1.0f, 0.5f); // two pixels a point
    Float4 row[96];
    for (const int y : {0, 23, 24, 47, 48}) {
        paint.shade(0, y, 96, row);
        for (int x = 0; x < 96; ++x)
            EXPECT_FLOAT_EQ(row[x][1], (x / 24 + y / 24) % 2 == 0 ? 1.0f : 0.5f) << x << "," << y;
    }
}

TEST(Checkerboard, SharesAPixelByArea) {
    const CheckerboardPaint paint(1.5, {}, 1.0f, 0.0f);
    Float4 row[3];
    paint.shade(0, 0, 3, row);
    EXPECT_FLOAT_EQ(row[0][1], 1);
    EXPECT_FLOAT_EQ(row[1][1], 0.5);
    EXPECT_FLOAT_EQ(row[2][1], 0);
}

TEST(Checkerboard, MixesWhatItShades) {
    for (const double scale : {1.0, 0.5, 1 / 0.55, 1 / 3.7, 20.0}) {
        const CheckerboardPaint paint(
            12, Homography::scaling(scale, scale) * Homography::translation(-7.3, 11.8), 1.0f, 0.9f);
        const TileRect tile{-20, -9, 61, 70};
        std::vector<MixPixel> mixed(tile.area());
        paint.mix(tile, mixed.data());
        std::vector<Float4> row(std::size_t(tile.width));
        for (int y = 0; y < tile.height; ++y) {
            paint.shade(tile.x, tile.y + y, tile.width, row.data());
            for (int x = 0; x < tile.width; ++x)
                ASSERT_EQ(mixed[std::size_t(y * tile.width + x)], toMix(row[std::size_t(x)]))
                    << scale << ": " << x << "," << y;
        }
    }
}

} // namespace
} // namespace framora::raster

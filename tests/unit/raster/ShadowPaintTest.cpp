#include "editor/render/raster/ShadowPaint.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <set>

namespace framora::raster {
namespace {

constexpr double deviation = 10;
constexpr double opacity = 0.2;

/// The blurred shape at a point, by the sum over small squares.
double blurredShape(const RoundedRect& shape, Vec2 at) {
    constexpr double step = 0.25;
    constexpr double far = 4.5 * deviation;
    double sum = 0;
    for (double y = at.y - far + step / 2; y < at.y + far; y += step)
        for (double x = at.x - far + step / 2; x < at.x + far; x += step)
            if (shape.contains({x, y}))
                sum += std::exp(-((x - at.x) * (x - at.x) + (y - at.y) * (y - at.y)) /
                                (2 * deviation * deviation));
    return sum * step * step / (2 * std::numbers::pi * deviation * deviation);
}

TEST(ShadowPaint, IsTheShapeUnderAGaussian) {
    // Wide and high, with corners that touch each other, smaller than the blur, and sharp.
    for (const RoundedRect& shape :
         {RoundedRect{200, 120, 24}, RoundedRect{60, 44, 22}, RoundedRect{9, 5, 2}, RoundedRect{90, 70, 0}}) {
        const ShadowPaint shadow(shape, deviation, opacity, {});
        double worst = 0;
        for (double y = -shape.height / 2 - 40; y < shape.height / 2 + 40; y += 11.3)
            for (double x = 0; x < shape.width / 2 + 40; x += 9.7)
                worst = std::max(
                    worst, std::abs(double(shadow.alpha({x, y})) - opacity * blurredShape(shape, {x, y})));
        EXPECT_LT(worst * 255, 0.25) << shape.width << " x " << shape.height;
    }
}

TEST(ShadowPaint, HasTheSameAlphaEitherWayToWithinAStep) {
    Placement turned;
    turned.toOutput = Homography::tiltX(40, 200) * Homography::rotation(20) * Homography::scaling(2, 2);
    turned.move(60.3, 45.7);
    Placement upright;
    upright.toOutput = Homography::scaling(2, 2);
    upright.move(60.3, 45.7);
    for (const Placement& placement : {upright, turned}) {
        const ShadowPaint shadow({50, 30, 8}, deviation, opacity, placement);
        const TileRect tile{3, 5, 120, 80};
        std::vector<MixPixel> mixed(tile.area());
        shadow.mix(tile, mixed.data());
        std::vector<Float4> shaded(std::size_t(tile.width));
        for (int y = 0; y < tile.height; ++y) {
            shadow.shade(tile.x, tile.y + y, tile.width, shaded.data());
            for (int x = 0; x < tile.width; ++x) {
                const MixPixel& pixel = mixed[std::size_t(y) * std::size_t(tile.width) + std::size_t(x)];
                ASSERT_NEAR(pixel.channel[3], shaded[std::size_t(x)][3] * mixOne, mixStep / 2)
                    << x << "," << y;
                ASSERT_EQ(pixel.channel[0] | pixel.channel[1] | pixel.channel[2], 0);
            }
        }
    }
}

TEST(ShadowPaint, HasNoBands) {
    // Where it passes from one level to the next, both are mixed.
    Placement placement;
    placement.toOutput = Homography::scaling(8, 8);
    const ShadowPaint shadow({100, 100, 10}, deviation, opacity, placement);
    const TileRect block{480, 0, 64, 8}; // a level takes some pixels
    std::vector<MixPixel> mixed(block.area());
    shadow.mix(block, mixed.data());
    int mixedColumns = 0;
    for (int x = 0; x < block.width; ++x) {
        std::set<int> levels;
        for (int y = 0; y < block.height; ++y)
            levels.insert((mixed[std::size_t(y * block.width + x)].channel[3] + mixStep / 2) / mixStep);
        EXPECT_LE(levels.size(), 2u);
        mixedColumns += levels.size() == 2;
    }
    EXPECT_GT(mixedColumns, block.width / 3);
}

TEST(ShadowPaint, IsNothingBeyondItsReach) {
    const ShadowPaint shadow({100, 60, 10}, deviation, opacity, {});
    EXPECT_LT(shadow.alpha({50 + ShadowPaint::reach * deviation, 0}) * 255, 0.05);
    EXPECT_LT(shadow.alpha({1e9, -1e9}) * 255, 0.05);
    EXPECT_GE(shadow.alpha({NAN, NAN}), 0);
}

} // namespace
} // namespace framora::raster

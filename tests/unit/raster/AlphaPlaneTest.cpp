#include "editor/render/raster/AlphaPlane.h"

#include "editor/render/raster/ParallelFor.h"
#include "unit/raster/EachTarget.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

namespace framora::raster {
namespace {

/// A rectangle of [40, 70) x [45, 60) in 113 x 109 pixels.
constexpr int width = 113;
constexpr int height = 109;
AlphaPlane rectangle() {
    AlphaPlane plane(width, height);
    for (int y = 45; y < 60; ++y)
        std::fill_n(plane.row(y) + 40, 30, std::int16_t(mixOne));
    return plane;
}

double below(double x) {
    return 0.5 * std::erfc(-x / std::sqrt(2.0));
}

TEST(AlphaPlane, StartsTransparent) {
    const AlphaPlane plane(5, 3);
    for (int y = 0; y < plane.height(); ++y)
        EXPECT_TRUE(std::all_of(plane.row(y), plane.row(y) + 5, [](int alpha) { return alpha == 0; }));
}

TEST(AlphaPlane, BlursByAGaussianAndMoves) {
    for (const double deviation : {1.5, 4.0, 11.0, 17.0, 25.0, 60.0})
        for (const Vec2 shift : {Vec2{0, 0}, Vec2{2, 3}, Vec2{0.4, 1.7}}) {
            const AlphaPlane blurred = rectangle().blurred(deviation, shift);
            double worst = 0;
            for (int y = 0; y < height; ++y)
                for (int x = 0; x < width; ++x) {
                    const auto share = [&](double from, double to, double at) {
                        return below((to - at) / deviation) - below((from - at) / deviation);
                    };
                    const double expected =
                        share(40, 70, x + 0.5 - shift.x) * share(45, 60, y + 0.5 - shift.y);
                    worst = std::max(worst, std::abs(blurred.row(y)[x] - expected * mixOne));
                }
            // The points of a narrow Gaussian are not its means over pixels.
            EXPECT_LT(worst / mixStep, deviation < 2 ? 4 : 1) << deviation << ", " << shift.x;
        }
}

TEST(AlphaPlane, KeepsItsMiddleUnderAFineBlur) {
    AlphaPlane point(21, 21);
    point.row(10)[10] = mixOne;
    for (const double deviation : {0.01, 0.4, 0.7}) {
        const AlphaPlane moved = point.blurred(deviation, {0.5, 0.25});
        double sum = 0;
        Vec2 middle;
        for (int y = 0; y < 21; ++y)
            for (int x = 0; x < 21; ++x) {
                sum += moved.row(y)[x];
                middle.x += moved.row(y)[x] * double(x - 10);
                middle.y += moved.row(y)[x] * double(y - 10);
            }
        EXPECT_NEAR(sum, mixOne, 20) << deviation;
        EXPECT_NEAR(middle.x / sum, 0.5, 0.01) << deviation;
        EXPECT_NEAR(middle.y / sum, 0.25, deviation < 0.5 ? 0.05 : 0.01) << deviation;
    }
}

TEST(AlphaPlane, LosesWhatLeavesTheBlock) {
    AlphaPlane plane(16, 16);
    for (int y = 0; y < 16; ++y)
        std::fill_n(plane.row(y), 16, std::int16_t(mixOne));
    const AlphaPlane blurred = plane.blurred(2);
    EXPECT_NEAR(blurred.row(8)[8], mixOne, mixStep / 8);
    EXPECT_LT(blurred.row(8)[0], mixOne * 0.6);
    EXPECT_LT(blurred.row(0)[0], mixOne * 0.36);
}

TEST(AlphaPlane, IsTheSameOnEveryVectorUnitAndWithAnyNumberOfThreads) {
    const auto drawn = [](double deviation) {
        const AlphaPlane plane = rectangle().blurred(deviation, {1.3, 2});
        std::vector<std::int16_t> all;
        for (int y = 0; y < height; ++y)
            all.insert(all.end(), plane.row(y), plane.row(y) + width);
        return all;
    };
    for (const double deviation : {3.0, 40.0}) {
        const auto usual = drawn(deviation);
        forEachTarget([&](const char* target) { EXPECT_EQ(drawn(deviation), usual) << target; });
        for (const int threads : {1, 3}) {
            setParallelThreadLimit(threads);
            EXPECT_EQ(drawn(deviation), usual) << threads;
        }
        setParallelThreadLimit(0);
    }
}

} // namespace
} // namespace framora::raster

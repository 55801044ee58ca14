#include "platform/wayland/WaylandToastPlacement.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>

namespace framora {
namespace {

TEST(ToastPlacementTest, everyEdgeIsAWholePixel) {
    for (const double ratio : {1.0, 1.1, 1.2, 1.25, 4.0 / 3, 1.5, 1.75, 2.0, 2.25, 3.0}) {
        const QRectF bounds(317.4, 511.9, 401.2, 187.3);
        const QRect frame = wholePixelFrame(bounds, ratio);
        EXPECT_TRUE(QRectF(frame).contains(bounds)) << ratio;
        EXPECT_LE(frame.width(), bounds.width() + 41) << ratio;
        for (const int edge : {frame.x(), frame.y(), frame.x() + frame.width(), frame.y() + frame.height()})
            EXPECT_NEAR(edge * ratio, std::round(edge * ratio), 1e-4) << ratio;
    }
}

TEST(ToastPlacementTest, aRatioWithoutWholePixelsGetsWholeUnits) {
    EXPECT_EQ(wholePixelFrame(QRectF(10.5, 20.5, 30, 40), 1.0083333), QRect(10, 20, 31, 41));
}

TEST(ToastPlacementTest, aFrameMayBeginOutsideTheScreen) {
    EXPECT_EQ(wholePixelFrame(QRectF(-3.5, -1, 10, 4), 1.5), QRect(-4, -2, 12, 6));
}

TEST(ToastPlacementTest, aRoundedRegionLeavesItsCornersOutAndNothingElse) {
    const auto region = roundedRegion(QRectF(100, 200, 300, 90), 18);
    const auto contains = [&](int x, int y) {
        return std::ranges::any_of(region, [&](const QRect& part) { return part.contains(x, y); });
    };
    EXPECT_FALSE(contains(100, 200));
    EXPECT_FALSE(contains(399, 200));
    EXPECT_FALSE(contains(100, 289));
    EXPECT_FALSE(contains(399, 289));
    EXPECT_FALSE(contains(103, 203));
    EXPECT_TRUE(contains(106, 206));
    EXPECT_TRUE(contains(250, 200));
    EXPECT_TRUE(contains(100, 245));
    EXPECT_TRUE(contains(399, 245));
    EXPECT_FALSE(contains(250, 290));
    const int area = std::accumulate(region.begin(), region.end(), 0, [](int sum, const QRect& part) {
        return sum + part.width() * part.height();
    });
    const double exact = 300 * 90 - (4 - M_PI) * 18 * 18;
    EXPECT_NEAR(area, exact, 20);
    for (std::size_t i = 1; i < region.size(); ++i)
        EXPECT_EQ(region[i].top(), region[i - 1].bottom() + 1) << "parts must not overlap";
}

TEST(ToastPlacementTest, aRadiusLargerThanTheRectangleMakesACapsule) {
    const auto region = roundedRegion(QRectF(0, 0, 40, 20), 100);
    ASSERT_FALSE(region.empty());
    EXPECT_EQ(region.front().top(), 0);
    EXPECT_EQ(region.back().bottom(), 19);
    for (const QRect& part : region)
        EXPECT_TRUE(QRect(0, 0, 40, 20).contains(part));
}

} // namespace
} // namespace framora

#include "screencapture/LabelPlacement.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr Rect kScreen{100, 50, 1280, 800};
constexpr int kWidth = 90;
constexpr int kHeight = 25;
constexpr int kGap = 14;

TEST(LabelPlacementTest, neverLeavesTheScreenNorComesNearTheCornerInUse) {
    for (int ax = kScreen.x; ax <= kScreen.right(); ax += 160)
        for (int ay = kScreen.y; ay <= kScreen.bottom(); ay += 100)
            for (int cx = kScreen.x; cx <= kScreen.right(); cx += 32)
                for (int cy = kScreen.y; cy <= kScreen.bottom(); cy += 25) {
                    const Point corner{cx, cy};
                    const Rect selection = Rect::between({ax, ay}, corner);
                    const Rect label = placeLabel(selection, corner, kWidth, kHeight, kGap, kScreen);
                    ASSERT_TRUE(kScreen.contains(label)) << cx << "," << cy << " from " << ax << "," << ay;
                    ASSERT_FALSE(label.intersects({cx - kGap, cy - kGap, 2 * kGap, 2 * kGap}))
                        << cx << "," << cy << " from " << ax << "," << ay;
                    ASSERT_EQ(label.width, kWidth);
                    ASSERT_EQ(label.height, kHeight);
                }
}

TEST(LabelPlacementTest, standsOutsideTheSelectionOnTheSideOfTheCorner) {
    const Rect selection{400, 300, 300, 200};
    const Rect below = placeLabel(selection, {700, 500}, kWidth, kHeight, kGap, kScreen);
    EXPECT_EQ(below, (Rect{700 - kWidth, 500 + kGap, kWidth, kHeight}));
    const Rect above = placeLabel(selection, {400, 300}, kWidth, kHeight, kGap, kScreen);
    EXPECT_EQ(above, (Rect{400, 300 - kGap - kHeight, kWidth, kHeight}));
}

TEST(LabelPlacementTest, goesInsideASelectionThatFillsTheScreen) {
    const Rect label =
        placeLabel(kScreen, {kScreen.right(), kScreen.bottom()}, kWidth, kHeight, kGap, kScreen);
    EXPECT_TRUE(kScreen.contains(label));
    EXPECT_LE(label.bottom(), kScreen.bottom());
}

TEST(LabelPlacementTest, staysOnAScreenThatIsTooSmallForIt) {
    const Rect tiny{0, 0, 60, 20};
    const Rect label = placeLabel({10, 5, 20, 10}, {30, 15}, kWidth, kHeight, kGap, tiny);
    EXPECT_EQ(label.x, 0);
    EXPECT_EQ(label.y, 0);
}

} // namespace
} // namespace framora

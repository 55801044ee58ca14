#include "screencapture/Geometry.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

// How many boxes contain each place of a small grid.
int countAt(const std::vector<Rect>& rects, Point p) {
    return static_cast<int>(
        std::count_if(rects.begin(), rects.end(), [p](const Rect& r) { return r.contains(p); }));
}

TEST(GeometryTest, subtractingLeavesEveryOtherPixelOnce) {
    const Rect whole{2, 3, 12, 9};
    for (int x = 0; x < 16; x += 3)
        for (int y = 0; y < 14; y += 3)
            for (const int side : {1, 4, 20}) {
                const Rect cut{x, y, side, side + 1};
                const auto rest = subtracted({whole}, cut);
                for (int px = 0; px < 18; ++px)
                    for (int py = 0; py < 16; ++py) {
                        const Point p{px, py};
                        ASSERT_EQ(countAt(rest, p), whole.contains(p) && !cut.contains(p) ? 1 : 0)
                            << px << "," << py << " cut " << x << "," << y << " side " << side;
                    }
            }
}

TEST(GeometryTest, boundingBoxIgnoresEmptyBoxes) {
    EXPECT_EQ(boundingBox({{0, 0, 0, 0}, {-5, 2, 3, 4}, {10, 20, 1, 1}}), (Rect{-5, 2, 16, 19}));
    EXPECT_EQ(boundingBox({}), Rect{});
}

TEST(GeometryTest, boxesThatOnlyTouchHaveNothingInCommon) {
    EXPECT_TRUE((Rect{0, 0, 5, 5}).intersected({5, 0, 5, 5}).empty());
    EXPECT_FALSE((Rect{0, 0, 5, 5}).intersects({0, 5, 5, 5}));
}

} // namespace
} // namespace framora

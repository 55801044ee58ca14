#include "controls/RoundedBox.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

const QColor blue(40, 90, 200);
const QColor grey(90, 90, 90);

TEST(RoundedBox, FillsToItsLastPixelWithoutARadius) {
    const QImage image = RoundedBox::picture({7, 4}, 0, blue, 0, Qt::transparent);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 7; ++x)
            EXPECT_EQ(image.pixelColor(x, y), blue) << x << ',' << y;
}

TEST(RoundedBox, DrawsItsOutlineInsideInWholePixels) {
    const QImage image = RoundedBox::picture({20, 12}, 0, blue, 2, grey);
    for (int x = 0; x < 20; ++x) {
        EXPECT_EQ(image.pixelColor(x, 0), grey);
        EXPECT_EQ(image.pixelColor(x, 1), grey);
        EXPECT_EQ(image.pixelColor(x, 11), grey);
        EXPECT_EQ(image.pixelColor(x, 2), x < 2 || x > 17 ? grey : blue) << x;
    }
}

TEST(RoundedBox, CutsARadiusDownToACircle) {
    const QImage image = RoundedBox::picture({16, 16}, 500, blue, 0, Qt::transparent);
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(image.pixelColor(15, 15).alpha(), 0);
    EXPECT_EQ(image.pixelColor(8, 8), blue);
    EXPECT_GT(image.pixelColor(8, 0).alpha(), 200);
}

TEST(RoundedBox, LooksTheSameFromAllSides) {
    const QImage image = RoundedBox::picture({31, 31}, 9.5, blue, 1, grey);
    // To within what the painter's own coverage is off.
    constexpr int close = 12;
    for (const QImage& turned : {image.mirrored(true, false), image.mirrored(false, true)})
        for (int y = 0; y < 31; ++y)
            for (int x = 0; x < 31; ++x)
                ASSERT_NEAR(qAlpha(image.pixel(x, y)), qAlpha(turned.pixel(x, y)), close) << x << ',' << y;
}

} // namespace
} // namespace framora

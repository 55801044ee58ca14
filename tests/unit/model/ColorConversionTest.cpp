#include "editor/model/ColorConversion.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(ColorConversion, EveryByteSurvivesTheWayThere) {
    for (int byte = 0; byte < 256; ++byte) {
        const double value = byte / 255.0;
        const QColor color = toQColor({value, 0.0, 1.0, value});
        EXPECT_EQ(color.red(), byte);
        EXPECT_EQ(color.alpha(), byte);
        EXPECT_NEAR(fromQColor(color).red, value, 1.0 / 65535.0);
    }
}

TEST(ColorConversion, ComponentsOutsideTheRangeAreClamped) {
    const QColor color = toQColor({-0.5, 1.5, 0.5, 2.0});
    EXPECT_TRUE(color.isValid());
    EXPECT_EQ(color.red(), 0);
    EXPECT_EQ(color.green(), 255);
    EXPECT_EQ(color.alpha(), 255);
}

TEST(ColorConversion, AColorOfAnotherModelBecomesRgb) {
    const Color color = fromQColor(QColor::fromHsv(120, 255, 255));
    EXPECT_NEAR(color.red, 0.0, 1e-4);
    EXPECT_NEAR(color.green, 1.0, 1e-4);
    EXPECT_NEAR(color.blue, 0.0, 1e-4);
}

} // namespace
} // namespace framora

#include "controls/SliderValueText.h"

#include "support/PrintQt.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(SliderValueText, ShowsDecimalsRounded) {
    EXPECT_EQ(SliderValueText::text(3.0, 1, {}), QStringLiteral("3.0"));
    EXPECT_EQ(SliderValueText::text(1.25, 2, {}), QStringLiteral("1.25"));
    EXPECT_EQ(SliderValueText::text(0.999, 2, QStringLiteral("x")), QStringLiteral("1.00x"));
}

TEST(SliderValueText, CutsOffAPercentageAndRoundsAnythingElse) {
    EXPECT_EQ(SliderValueText::text(99.9, 0, QStringLiteral("%")), QStringLiteral("99%"));
    EXPECT_EQ(SliderValueText::text(-0.9, 0, QStringLiteral("%")), QStringLiteral("0%"));
    EXPECT_EQ(SliderValueText::text(99.9, 0, {}), QStringLiteral("100"));
    EXPECT_EQ(SliderValueText::text(99.9, 0, QStringLiteral("°")), QStringLiteral("100°"));
    EXPECT_EQ(SliderValueText::text(-89.7, 0, {}), QStringLiteral("-90"));
}

} // namespace
} // namespace framora

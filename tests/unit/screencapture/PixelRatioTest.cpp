#include "screencapture/PixelRatio.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(PixelRatioTest, isTheFontResolutionInQuartersOf96) {
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi:\t192\n"), 2.0);
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi: 144"), 1.5);
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi:120"), 1.25);
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi: 110.0\n"), 1.25);
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi: 107\n"), 1.0);
}

TEST(PixelRatioTest, isFoundAmongOtherResources) {
    EXPECT_EQ(pixelRatioFromResources("Xcursor.size:\t48\nXft.antialias:\t1\nXft.dpi:\t288\r\nXterm*x: y\n"),
              3.0);
    EXPECT_EQ(pixelRatioFromResources("NotXft.dpi: 192\nXft.dpix: 192\n"), 1.0);
}

TEST(PixelRatioTest, isOneWithoutAUsableValueAndNeverLess) {
    for (const char* text : {"", "\n\n", "Xft.dpi", "Xft.dpi:", "Xft.dpi: big", "Xft.dpi: 192dots",
                             "Xft.dpi: nan", "Xft.dpi: inf", "Xft.dpi: -192", "Xft.dpi: 0", "Xft.dpi: 48"})
        EXPECT_EQ(pixelRatioFromResources(text), 1.0) << text;
    EXPECT_EQ(pixelRatioFromResources("Xft.dpi: 1e300"), 8.0);
}

} // namespace
} // namespace framora

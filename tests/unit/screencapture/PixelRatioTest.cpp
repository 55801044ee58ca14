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

TEST(MonitorScalesTest, areFoundByTheMonitorsName) {
    const MonitorScales scales("eDP-1=2; HDMI-1 = 1.25 ;", "");
    EXPECT_TRUE(scales.named());
    EXPECT_EQ(scales.ratio(0, "HDMI-1", 1.5), 1.25);
    EXPECT_EQ(scales.ratio(1, "eDP-1", 1.5), 2.0);
    EXPECT_EQ(scales.ratio(2, "DP-2", 1.5), 1.5) << "the resources hold for the others";
}

TEST(MonitorScalesTest, areFoundByTheMonitorsPlaceWhereTheyHaveNoNames) {
    const MonitorScales scales("1;2", "");
    EXPECT_FALSE(scales.named());
    EXPECT_EQ(scales.ratio(0, "", 1.5), 1.0);
    EXPECT_EQ(scales.ratio(1, "", 1.5), 2.0);
    EXPECT_EQ(scales.ratio(2, "", 1.5), 1.5);
    EXPECT_EQ(MonitorScales(";2", "").ratio(1, "", 1), 2.0) << "an empty entry has its place";
}

TEST(MonitorScalesTest, multiplyWithTheOneForAll) {
    EXPECT_EQ(MonitorScales("", "2").ratio(0, "DP-1", 1), 2.0);
    EXPECT_EQ(MonitorScales("DP-1=1.5", "2").ratio(0, "DP-1", 1), 3.0);
}

TEST(MonitorScalesTest, areQuartersFromOneToEightAndPassOverWhatIsNoFactor) {
    EXPECT_EQ(MonitorScales("A=1.4;B=0.5;C=99", "").ratio(0, "A", 1), 1.5);
    EXPECT_EQ(MonitorScales("A=1.4;B=0.5;C=99", "").ratio(0, "B", 1), 1.0);
    EXPECT_EQ(MonitorScales("A=1.4;B=0.5;C=99", "").ratio(0, "C", 1), 8.0);
    for (const char* text : {"A=", "A=big", "A=-2", "A=0", "A=nan", "A", "=;=;;", "A=2x"})
        EXPECT_EQ(MonitorScales(text, text).ratio(0, "A", 1.25), 1.25) << text;
}

} // namespace
} // namespace framora

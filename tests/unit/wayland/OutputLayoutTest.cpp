#include "wayland/OutputLayout.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr int modes[][2] = {{1920, 1080}, {2560, 1440}, {3840, 2160}, {1366, 768}, {2880, 1800},
                            {2256, 1504}, {1920, 1200}, {3440, 1440}, {1280, 720}, {1280, 800},
                            {1600, 900},  {3000, 2000}, {3072, 1920}, {5120, 2880}};

/// How compositors come to a whole logical size.
const std::pair<const char*, std::function<int(int, double)>> ways[] = {
    {"cut", [](int pixels, double scale) { return static_cast<int>(pixels / scale + 1e-9); }},
    {"rounded", [](int pixels, double scale) { return static_cast<int>(std::lround(pixels / scale)); }},
    {"cut, the scale in single precision",
     [](int pixels, double scale) { return static_cast<int>(pixels / static_cast<float>(scale)); }}};

void expectFoundAgain(int steps, double least, double most) {
    for (const auto& [longer, shorter] : modes)
        for (const bool isPortrait : {false, true})
            for (int count = static_cast<int>(std::ceil(least * steps)); count <= most * steps; ++count)
                for (const auto& [way, logical] : ways) {
                    const double scale = static_cast<double>(count) / steps;
                    const int width = isPortrait ? shorter : longer;
                    const int height = isPortrait ? longer : shorter;
                    EXPECT_NEAR(outputRatio(width, height, logical(width, scale), logical(height, scale)),
                                scale, 1e-9)
                        << width << "x" << height << ", " << way;
                }
}

TEST(OutputRatioTest, everyScaleThatDesktopsOfferIsFoundAgainWhateverItsSizeLost) {
    expectFoundAgain(4, 0.5, 4);
    expectFoundAgain(20, 0.5, 4);
    expectFoundAgain(12, 0.5, 4);
}

TEST(OutputRatioTest, everyScaleThatTheFractionalProtocolKnowsIsFoundAgain) {
    // Above, a size of a small output may come of two scales in a row.
    expectFoundAgain(120, 0.5, 2.5);
}

TEST(OutputRatioTest, whereTwoScalesGiveTheSameSizeThePlainerOneIsTaken) {
    EXPECT_DOUBLE_EQ(outputRatio(1920, 1080, 581, 327), 3.3);
    EXPECT_DOUBLE_EQ(outputRatio(1080, 1920, 327, 581), 3.3);
}

TEST(OutputRatioTest, anUnusualScaleIsTheQuotient) {
    EXPECT_DOUBLE_EQ(outputRatio(10000, 10000, 7480, 7480), 10000.0 / 7480);
}

TEST(OutputRatioTest, sizesThatMakeNoSenseGiveOne) {
    EXPECT_EQ(outputRatio(0, 1080, 1920, 1080), 1);
    EXPECT_EQ(outputRatio(1920, 1080, 0, 0), 1);
    EXPECT_EQ(outputRatio(1920, -1, 1920, -1), 1);
}

void expectLayout(const OutputFacts& facts, int x, int y, int width, int height, double ratio) {
    const OutputLayout layout = outputLayout(facts);
    EXPECT_EQ(layout.x, x);
    EXPECT_EQ(layout.y, y);
    EXPECT_EQ(layout.width, width);
    EXPECT_EQ(layout.height, height);
    EXPECT_DOUBLE_EQ(layout.ratio, ratio);
}

TEST(OutputLayoutTest, aToldLogicalSizeIsTakenAndItsScaleFoundFromIt) {
    expectLayout({2560, 1440, 1920, 30, 1707, 960, 2}, 1920, 30, 1707, 960, 1.5);
    expectLayout({1440, 2560, 0, 0, 960, 1707, 2}, 0, 0, 960, 1707, 1.5);
}

TEST(OutputLayoutTest, withoutALogicalSizeTheWholeScaleDecides) {
    expectLayout({3840, 2160, 10, 20, 0, 0, 2}, 10, 20, 1920, 1080, 2);
    expectLayout({1367, 769, 0, 0, 0, 0, 2}, 0, 0, 683, 384, 2);
    expectLayout({1920, 1080, 0, 0, 0, 0, 0}, 0, 0, 1920, 1080, 1);
    expectLayout({1920, 1080, 0, 0, -5, 3, -1}, 0, 0, 1920, 1080, 1);
}

TEST(OutputLayoutTest, aLayoutInDevicePixelsIsBroughtToLogicalOnes) {
    expectLayout({3840, 2160, 1920, 400, 3840, 2160, 2}, 960, 200, 1920, 1080, 2);
    expectLayout({1920, 1080, 1920, 400, 1920, 1080, 1}, 1920, 400, 1920, 1080, 1);
}

TEST(OutputLayoutTest, anOutputWithoutPixelsHasNoSize) {
    expectLayout({}, 0, 0, 0, 0, 1);
    expectLayout({0, 0, 0, 0, 0, 0, 3}, 0, 0, 0, 0, 3);
}

} // namespace
} // namespace framora

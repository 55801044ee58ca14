#include "screencapture/wayland/OutputScale.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(OutputScaleTest, aScaleIsFoundAgainWhateverItsSizeLost) {
    const double scales[] = {1,   1.25, 1.5, 1.75, 2,   2.25, 2.5,     3,      1.1,
                             1.2, 1.3,  1.4, 1.6,  1.7, 1.8,  4.0 / 3, 1.0 / 2};
    const int sizes[][2] = {{1920, 1080}, {2560, 1440}, {3840, 2160}, {1366, 768}, {2256, 1504},
                            {2880, 1800}, {1080, 1920}, {3440, 1440}, {1001, 701}, {1600, 900}};
    for (const auto& [width, height] : sizes)
        for (const double scale : scales)
            for (const bool rounds : {false, true}) {
                const auto logical = [&](int pixels) {
                    return static_cast<int>(rounds ? std::lround(pixels / scale) : pixels / scale);
                };
                EXPECT_NEAR(outputScale(width, height, logical(width), logical(height)), scale, 1e-9)
                    << width << "x" << height << (rounds ? " rounded" : " cut");
            }
}

TEST(OutputScaleTest, anUnusualScaleIsTheQuotient) {
    EXPECT_DOUBLE_EQ(outputScale(10000, 10000, 7480, 7480), 10000.0 / 7480);
}

TEST(OutputScaleTest, sizesThatMakeNoSenseGiveOne) {
    EXPECT_EQ(outputScale(0, 1080, 1920, 1080), 1);
    EXPECT_EQ(outputScale(1920, 1080, 0, 0), 1);
    EXPECT_EQ(outputScale(1920, -1, 1920, -1), 1);
}

} // namespace
} // namespace framora

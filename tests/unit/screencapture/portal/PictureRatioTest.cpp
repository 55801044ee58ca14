#include "screencapture/portal/PictureRatio.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

Output output(int width, int height, double scale) {
    Output result;
    result.pixelWidth = width;
    result.pixelHeight = height;
    result.scale = scale;
    return result;
}

TEST(PictureRatioTest, IsTheScaleThatAllOutputsHave) {
    const Output same[] = {output(1920, 1080, 1.5), output(3840, 2160, 1.5)};
    EXPECT_EQ(ratioOfPicture(100, 80, same), 1.5);
}

TEST(PictureRatioTest, IsTheScaleOfTheOutputThatThePictureShowsWhole) {
    const Output mixed[] = {output(1920, 1080, 1), output(3840, 2160, 2)};
    EXPECT_EQ(ratioOfPicture(1920, 1080, mixed), 1);
    EXPECT_EQ(ratioOfPicture(3840, 2160, mixed), 2);
}

TEST(PictureRatioTest, IsOtherwiseTheLargest) {
    const Output mixed[] = {output(1920, 1080, 1), output(3840, 2160, 2)};
    EXPECT_EQ(ratioOfPicture(500, 400, mixed), 2);
}

TEST(PictureRatioTest, IsUnknownWithoutOutputs) {
    EXPECT_EQ(ratioOfPicture(500, 400, {}), 0);
}

} // namespace
} // namespace framora

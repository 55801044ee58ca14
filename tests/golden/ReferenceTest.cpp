#include "golden/ReferenceComposition.h"

#include "editor/render/HexColor.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora::golden {
namespace {

// The reference itself, held to points whose colour can be told in the head.

Sample pixel(const ReferenceComposition::Picture& picture, int x, int y) {
    return picture.pixels[std::size_t(y) * std::size_t(picture.size.width()) + std::size_t(x)];
}

ReferenceComposition::Picture gradientFrame(GradientStyle kind, double angle) {
    ScreenshotStyleConfig style;
    style.padding = 50.0;
    style.imageScale = 1.0;
    style.screenshotOffset = {1000.0, 1000.0};
    style.backgroundType = BackgroundType::gradient;
    style.gradientConfig.style = kind;
    style.gradientConfig.angle = angle;
    style.gradientConfig.color1 = parseHexColor(u"000000");
    style.gradientConfig.color2 = parseHexColor(u"ffffff");
    return ReferenceComposition(style, SmoothPicture(20, 20, 1.0, 0.0), std::nullopt).frame(1.0);
}

TEST(Reference, ZeroDegreesPointUpAndAnglesGoClockwise) {
    const auto up = gradientFrame(GradientStyle::linear, 0.0);
    EXPECT_LT(pixel(up, 60, 119)[0], 3.0);
    EXPECT_GT(pixel(up, 60, 0)[0], 252.0);
    const auto right = gradientFrame(GradientStyle::linear, 90.0);
    EXPECT_LT(pixel(right, 0, 60)[0], 3.0);
    EXPECT_GT(pixel(right, 119, 60)[0], 252.0);
    const auto diagonal = gradientFrame(GradientStyle::linear, 135.0);
    EXPECT_LT(pixel(diagonal, 0, 0)[0], 3.0) << "from the top left";
    EXPECT_GT(pixel(diagonal, 119, 119)[0], 252.0);
    EXPECT_NEAR(pixel(diagonal, 119, 0)[0], 127.5, 2.0);
}

TEST(Reference, ARadialGradientEndsInTheCorners) {
    const auto picture = gradientFrame(GradientStyle::radial, 0.0);
    EXPECT_LT(pixel(picture, 60, 60)[0], 4.0);
    EXPECT_GT(pixel(picture, 0, 0)[0], 252.0);
    EXPECT_NEAR(pixel(picture, 119, 60)[0], 255.0 / std::sqrt(2.0), 3.0);
}

TEST(Reference, AnAngularGradientRunsClockwiseFromItsAngleAndCloses) {
    const auto picture = gradientFrame(GradientStyle::angular, 90.0);
    EXPECT_LT(pixel(picture, 119, 61)[0], 8.0) << "starts at the right";
    EXPECT_NEAR(pixel(picture, 60, 119)[0], 127.5, 3.0) << "a quarter on: below";
    EXPECT_GT(pixel(picture, 0, 60)[0], 250.0);
    EXPECT_NEAR(pixel(picture, 60, 0)[0], 127.5, 3.0) << "on the way back";
    EXPECT_LT(pixel(picture, 119, 58)[0], 8.0);
}

/// Whether the screenshot covers the middle of this pixel of a frame of 60 x 60 points with a screenshot of
/// 40 x 40.
bool covers(double rotationX, double rotationY, double rotation, int x, int y) {
    ScreenshotStyleConfig style;
    style.padding = 30.0;
    style.showMockup = false;
    style.backgroundType = BackgroundType::transparent;
    style.rotationX = rotationX;
    style.rotationY = rotationY;
    style.rotation = rotation;
    const auto picture =
        ReferenceComposition(style, SmoothPicture(40, 40, 1.0, 0.0), std::nullopt).frame(1.0);
    return pixel(picture, x, y)[3] > 127.0;
}

TEST(Reference, APositiveTiltBringsTheBottomOrTheLeftNearer) {
    // Nearer is wider: the corner reaches further out than the far side's.
    EXPECT_TRUE(covers(0, 0, 0, 31, 31));
    EXPECT_FALSE(covers(0, 0, 0, 29, 50));
    EXPECT_TRUE(covers(30, 0, 0, 27, 68)) << "bottom left, beyond the flat edge";
    EXPECT_FALSE(covers(30, 0, 0, 33, 34)) << "top left, drawn in";
    EXPECT_TRUE(covers(0, 30, 0, 32, 27));
    EXPECT_FALSE(covers(0, 30, 0, 66, 33));
}

TEST(Reference, CornersPassThroughTheMiddleOfTheirArc) {
    ScreenshotStyleConfig style;
    style.padding = 0.0;
    style.borderRadius = 30.0;
    style.backgroundType = BackgroundType::transparent;
    const auto picture =
        ReferenceComposition(style, SmoothPicture(100, 100, 1.0, 0.0), std::nullopt).frame(1.0);
    // The arc's middle lies 30 (1 - 1 / sqrt 2) = 8.79 from both sides.
    EXPECT_EQ(pixel(picture, 7, 7)[3], 0.0);
    EXPECT_NEAR(pixel(picture, 9, 9)[3], 255.0, 1e-6);
    EXPECT_NEAR(pixel(picture, 40, 0)[3], 255.0, 1e-6);
    EXPECT_LT(pixel(picture, 15, 0)[3], 128.0);
}

ReferenceComposition::Picture sceneFrame(ShadowSceneMode mode, const QList<Color>& colors) {
    ScreenshotStyleConfig style;
    style.padding = 50.0;
    style.imageScale = 1.0;
    style.screenshotOffset = {1000.0, 1000.0};
    style.backgroundType = BackgroundType::color;
    style.customColor = {0.25, 0.25, 0.25, 1.0};
    style.shadowSceneMode = mode;
    style.shadowSceneOpacity = 50.0;
    style.selectedShadowScene = ShadowScene{.name = {}, .colors = colors, .isTexture = false};
    return ReferenceComposition(style, SmoothPicture(20, 20, 1.0, 0.0), std::nullopt).frame(1.0);
}

TEST(Reference, AScenesStripesFallEveryFortyPoints) {
    // A canvas of 120 x 120: the stripe from the bottom left corner runs out of sight, those after it start
    // at 40, 80, ... right of it, and reach 10 to each side: 14.1 along a row.
    const auto picture = sceneFrame(ShadowSceneMode::underlay, {});
    const auto isWhite = [&](int x, int y) { return pixel(picture, x, y)[0] > 150.0; };
    for (const int x : {0, 13, 27, 53, 67, 93, 107})
        EXPECT_TRUE(isWhite(x, 0)) << x;
    for (const int x : {15, 20, 25, 55, 65, 95, 105})
        EXPECT_FALSE(isWhite(x, 0)) << x;
    EXPECT_TRUE(isWhite(47, 47)) << "the middle of a stripe";
    EXPECT_FALSE(isWhite(67, 47));
    EXPECT_TRUE(isWhite(0, 119)) << "the first one";
}

TEST(Reference, AScenesColoursRunFromCornerToCorner) {
    const auto picture = sceneFrame(ShadowSceneMode::underlay, {{1.0, 0.0, 0.0, 1.0}, {0.0, 0.0, 1.0, 1.0}});
    // Half of 0.3 of the first and of the last colour over a quarter.
    EXPECT_NEAR(pixel(picture, 20, 0)[0], 255.0 * (0.85 * 0.25 + 0.15 * 11.0 / 12.0), 1.0);
    EXPECT_NEAR(pixel(picture, 119, 99)[2], 255.0 * (0.85 * 0.25 + 0.15 * 11.0 / 12.0), 1.0);
    EXPECT_NEAR(pixel(picture, 119, 99)[1], 255.0 * 0.85 * 0.25, 0.1);
}

TEST(Reference, ASceneOverItLightensAndDarkens) {
    const auto picture = sceneFrame(ShadowSceneMode::overlay, {{1.0, 0.0, 0.0, 1.0}});
    EXPECT_NEAR(pixel(picture, 40, 40)[1], 255.0 * (0.5 * 0.25 + 0.5 * 0.5), 0.1) << "white twice as light";
    EXPECT_NEAR(pixel(picture, 20, 0)[0], 255.0 * (0.85 * 0.25 + 0.15 * 0.5), 0.1);
    EXPECT_NEAR(pixel(picture, 20, 0)[1], 255.0 * 0.85 * 0.25, 0.1) << "with nothing, nothing";
}

} // namespace
} // namespace framora::golden

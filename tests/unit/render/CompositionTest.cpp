#include "editor/render/Composition.h"

#include "unit/render/TestPictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr double close = 1e-9;
const QSizeF imageSize(300, 200);

ScreenshotStyleConfig paddedStyle(double padding) {
    ScreenshotStyleConfig config;
    config.padding = padding;
    return config;
}

void expectSize(QSizeF size, double width, double height) {
    EXPECT_NEAR(size.width(), width, close);
    EXPECT_NEAR(size.height(), height, close);
}

SocialMediaPreset preset(int width, int height) {
    SocialMediaPreset preset;
    preset.width = width;
    preset.height = height;
    return preset;
}

TEST(Composition, MeasuresAPictureInPoints) {
    expectSize(pointSize(flatPicture(301, 200, Qt::red, 2)), 150.5, 100);
    expectSize(pointSize(flatPicture(301, 200)), 301, 200);
}

TEST(OutputFrame, IsTheImageWithItsPadding) {
    expectSize(outputFrame(imageSize, paddedStyle(80)), 460, 360);
    expectSize(outputFrame(imageSize, paddedStyle(0)), 300, 200);
}

TEST(OutputFrame, LeavesRoomForAFrameOnly) {
    ScreenshotStyleConfig config = paddedStyle(10);
    config.mockupBorderSize = 5;
    config.mockupStyle = MockupStyle::defaultStyle;
    expectSize(outputFrame(imageSize, config), 320, 220);
    for (const MockupStyle style : {MockupStyle::border, MockupStyle::glassEffect}) {
        config.mockupStyle = style;
        config.showMockup = true;
        expectSize(outputFrame(imageSize, config), 350, 250);
        config.showMockup = false;
        expectSize(outputFrame(imageSize, config), 320, 220);
    }
}

TEST(OutputFrame, SwapsItsSidesAtARightAngle) {
    ScreenshotStyleConfig config = paddedStyle(10);
    for (const double rotation : {90.0, -90.0, 270.0}) {
        config.rotation = rotation;
        expectSize(outputFrame(imageSize, config), 220, 320);
    }
    config.rotation = 180;
    expectSize(outputFrame(imageSize, config), 320, 220);
}

TEST(OutputFrame, GrowsByTheRootOfTwoAtHalfARightAngle) {
    ScreenshotStyleConfig config = paddedStyle(10);
    config.rotation = 45;
    expectSize(outputFrame({100, 100}, config), 120 * std::sqrt(2.0), 120 * std::sqrt(2.0));
}

TEST(OutputFrame, FollowsTheScale) {
    ScreenshotStyleConfig config = paddedStyle(10);
    config.scale = 0.5;
    expectSize(outputFrame(imageSize, config), 160, 110);
}

TEST(OutputFrame, DoesNotMindASocialPreset) {
    ScreenshotStyleConfig config = paddedStyle(10);
    config.selectedSocialPreset = preset(1080, 1920);
    expectSize(outputFrame(imageSize, config), 320, 220);
}

TEST(OutputFrame, DoesNotMindTheTiltOrTheImageScale) {
    ScreenshotStyleConfig config = paddedStyle(10);
    config.rotationX = 40;
    config.rotationY = -20;
    config.imageScale = 50;
    config.screenshotOffset = {30, 40};
    config.zoom = 250;
    expectSize(outputFrame(imageSize, config), 320, 220);
}

TEST(CanvasSize, IsTheSocialPresetsOrTheContents) {
    ScreenshotStyleConfig config = paddedStyle(80);
    config.mockupStyle = MockupStyle::border;
    config.mockupBorderSize = 4;
    config.rotation = 30;
    config.scale = 2;
    expectSize(canvasSize(imageSize, config), 300 + 160 + 24, 200 + 160 + 24);
    config.selectedSocialPreset = preset(1200, 675);
    expectSize(canvasSize(imageSize, config), 1200, 675);
}

TEST(ScreenshotScale, IsThePercentageWithoutAPreset) {
    ScreenshotStyleConfig config;
    config.imageScale = 130;
    EXPECT_NEAR(screenshotScale(imageSize, config), 1.3, close);
}

TEST(ScreenshotScale, FitsIntoAPresetAndNeverEnlarges) {
    ScreenshotStyleConfig config = paddedStyle(80);
    config.selectedSocialPreset = preset(1200, 675);
    EXPECT_NEAR(screenshotScale(imageSize, config), 1, close) << "there is room enough";
    const QSizeF wide(2400, 600);
    EXPECT_NEAR(screenshotScale(wide, config), 1160.0 / 2560, close);
    const QSizeF tall(600, 2400);
    EXPECT_NEAR(screenshotScale(tall, config), 635.0 / 2560, close);
    config.imageScale = 50;
    EXPECT_NEAR(screenshotScale(tall, config), 0.5 * 635.0 / 2560, close);
}

TEST(ScreenshotScale, IntoAPresetDoesNotMindTheFrame) {
    ScreenshotStyleConfig config = paddedStyle(80);
    config.selectedSocialPreset = preset(1200, 675);
    for (const MockupStyle style : {MockupStyle::border, MockupStyle::glassEffect}) {
        config.mockupStyle = style;
        config.mockupBorderSize = 4;
        EXPECT_NEAR(screenshotScale({2400, 600}, config), 1160.0 / 2560, close);
        EXPECT_NEAR(screenshotScale({600, 2400}, config), 635.0 / 2560, close);
        EXPECT_NEAR(screenshotScale({1000, 475}, config), 1, close) << "the room's very size";
    }
}

TEST(MockupPadding, IsWhatTheFrameTakes) {
    ScreenshotStyleConfig config;
    config.mockupBorderSize = 4;
    EXPECT_EQ(mockupPadding(config), 0);
    config.mockupStyle = MockupStyle::border;
    EXPECT_EQ(mockupPadding(config), 12);
    config.mockupStyle = MockupStyle::glassEffect;
    EXPECT_EQ(mockupPadding(config), 6);
    config.showMockup = false;
    EXPECT_EQ(mockupPadding(config), 0);
}

} // namespace
} // namespace framora

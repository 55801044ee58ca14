#include "editor/render/CompositionRasterizer.h"

#include "unit/render/TestPictures.h"

#include <gtest/gtest.h>

namespace framora {
namespace {

/// A grey canvas of 200 x 100 points, in its middle a black screenshot of 100 x 20.
ScreenshotStyleConfig style(ShadowSceneMode mode) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::color;
    config.customColor = {0.25, 0.25, 0.25, 1};
    config.selectedGradientPreset.reset();
    config.padding = 50;
    config.shadowSceneMode = mode;
    config.shadowSceneOpacity = 50;
    config.selectedShadowScene =
        ShadowScene{QUuid::createUuid(), QStringLiteral("Scene"), {{1, 0, 0, 1}}, false};
    return config;
}

QImage drawn(const ScreenshotStyleConfig& config) {
    Composition composition;
    composition.image = flatPicture(100, 20, Qt::black);
    composition.config = config;
    composition.isRendering = true;
    return CompositionRasterizer().drawFrame(composition, canvasSize(pointSize(composition.image), config),
                                             1);
}

// Of a height of 120 the stripes' middles lie where x - y is a multiple of 40.
constexpr QPoint inStripe(10, 10);
constexpr QPoint betweenStripes(30, 10);

TEST(SceneLayer, UnderTheScreenshotIsWhiteInItsStripesAndTintedBetween) {
    const QImage image = drawn(style(ShadowSceneMode::underlay));
    ASSERT_EQ(image.size(), QSize(200, 120));
    // Half of white over a quarter: 0.625. Between: 0.15 of red over it.
    EXPECT_NEAR(qRed(image.pixel(inStripe)), 159, 1);
    EXPECT_EQ(qRed(image.pixel(inStripe)), qBlue(image.pixel(inStripe)));
    EXPECT_NEAR(qRed(image.pixel(betweenStripes)), (0.15 + 0.85 * 0.25) * 255, 1);
    EXPECT_NEAR(qBlue(image.pixel(betweenStripes)), 0.85 * 0.25 * 255, 1);
    EXPECT_EQ(image.pixel(100, 60), qRgb(0, 0, 0)) << "the screenshot hides it";
}

TEST(SceneLayer, OverTheScreenshotLightensByTheOverlayMode) {
    ScreenshotStyleConfig config = style(ShadowSceneMode::overlay);
    const QImage image = drawn(config);
    // Overlay with white doubles what is dark: 0.5, half of which with half of 0.25.
    EXPECT_NEAR(qRed(image.pixel(inStripe)), 0.375 * 255, 1);
    // With red: 2 x 0.25 x 1 in red, 0 in blue; 0.15 of it.
    EXPECT_NEAR(qRed(image.pixel(betweenStripes)), (0.85 * 0.25 + 0.15 * 0.5) * 255, 1);
    EXPECT_NEAR(qBlue(image.pixel(betweenStripes)), 0.85 * 0.25 * 255, 1);
    EXPECT_EQ(image.pixel(100, 60), qRgb(0, 0, 0)) << "black stays black";
    config.shadowSceneMode = ShadowSceneMode::underlay;
    EXPECT_NE(drawn(config), image);
}

TEST(SceneLayer, IsNotThereWithoutAnOpacityOrAScene) {
    ScreenshotStyleConfig config = style(ShadowSceneMode::underlay);
    config.selectedShadowScene.reset();
    const QImage without = drawn(config);
    config = style(ShadowSceneMode::underlay);
    config.shadowSceneOpacity = 0;
    EXPECT_EQ(drawn(config), without);
    config.shadowSceneOpacity = -20;
    EXPECT_EQ(drawn(config), without);
}

TEST(SceneLayer, RunsItsColoursFromCornerToCorner) {
    ScreenshotStyleConfig config = style(ShadowSceneMode::underlay);
    config.shadowSceneOpacity = 100;
    config.customColor = {0, 0, 0, 1};
    config.selectedShadowScene->colors = {{1, 0, 0, 1}, {0, 0, 1, 1}};
    const QImage image = drawn(config);
    EXPECT_GT(qRed(image.pixel(22, 2)), 60);
    EXPECT_LT(qBlue(image.pixel(22, 2)), 8);
    EXPECT_GT(qBlue(image.pixel(178, 118)), 60);
    EXPECT_LT(qRed(image.pixel(178, 118)), 8);
}

} // namespace
} // namespace framora

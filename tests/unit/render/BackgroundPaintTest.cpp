#include "editor/render/BackgroundPaint.h"

#include "editor/render/CompositionRasterizer.h"
#include "unit/render/TestPictures.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>

namespace framora {
namespace {

constexpr Color red{1, 0, 0, 1};
constexpr Color green{0, 1, 0, 1};
constexpr Color blue{0, 0, 1, 1};

/// The canvas's corners and its middle on a canvas of 101 x 101 points.
struct Seen {
    QRgb topLeft;
    QRgb middle;
    QRgb bottomRight;
};

Seen seen(const ScreenshotStyleConfig& config) {
    Composition composition;
    composition.image = flatPicture(1, 1, Qt::transparent);
    composition.config = config;
    composition.config.padding = 50;
    composition.isRendering = true;
    const QImage image = CompositionRasterizer().drawFrame(composition, {101, 101}, 1);
    return {image.pixel(0, 0), image.pixel(50, 50), image.pixel(100, 100)};
}

/// Gradients are dithered: a colour between two steps may be either.
testing::AssertionResult isWithinAStep(QRgb color, QRgb expected) {
    const int worst =
        std::max({std::abs(qRed(color) - qRed(expected)), std::abs(qGreen(color) - qGreen(expected)),
                  std::abs(qBlue(color) - qBlue(expected))});
    if (worst <= 1 && qAlpha(color) == qAlpha(expected))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << std::hex << color << " instead of " << expected;
}

ScreenshotStyleConfig colored() {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::color;
    config.selectedGradientPreset.reset();
    return config;
}

TEST(ColorBackground, IsThePickedColour) {
    ScreenshotStyleConfig config = colored();
    EXPECT_EQ(seen(config).middle, qRgb(255, 255, 255)) << "white by default";
    config.customColor = {0.2, 0.4, 0.6, 1};
    EXPECT_EQ(seen(config).topLeft, qRgb(51, 102, 153));
    config.customColor = {0, 0, 0, 0.5};
    EXPECT_EQ(qAlpha(seen(config).topLeft), 128);
}

TEST(ColorBackground, ShowsTheMagicPresetThatClearedThePickedColour) {
    ScreenshotStyleConfig config = colored();
    config.customColor = Color::clear();
    config.selectedMagicPreset = PresetCatalogues::magicPresets()[2];
    EXPECT_TRUE(isWithinAStep(seen(config).topLeft, qRgb(0x66, 0x7e, 0xea)));
}

TEST(ColorBackground, PutsWhatIsSelectedBeforeWhatWasPicked) {
    ScreenshotStyleConfig config = colored();
    config.customColor = red;
    config.selectedGradientPreset = PresetCatalogues::simpleGradientPresets()[1];
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(255, 0, 0)))
        << "the gradient section's own choice stays there";
    config.selectedMagicPreset = MagicPreset{QUuid::createUuid(), {green}};
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(0, 255, 0)));
    config.selectedGradient = GradientPreset{QUuid::createUuid(), {red, blue}, 135};
    EXPECT_TRUE(isWithinAStep(seen(config).bottomRight, qRgb(1, 0, 254)));
    config.selectedSolidColor = SolidColor{QUuid::createUuid(), blue};
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(0, 0, 255)));
}

TEST(ColorBackground, FallsBackToTheNamedGradientWhenNothingElseIsThere) {
    ScreenshotStyleConfig config = colored();
    config.customColor = Color::clear();
    EXPECT_EQ(seen(config).middle, 0u);
    config.selectedMagicPreset = MagicPreset{};
    EXPECT_EQ(seen(config).middle, 0u) << "a preset without colours";
    SimpleGradientPreset preset;
    preset.config.color1 = red;
    preset.config.color2 = blue;
    preset.config.angle = 90;
    config.selectedGradientPreset = preset;
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(128, 0, 128)));
}

TEST(ColorBackground, DrawsPresetGradientsWithAllTheirColours) {
    ScreenshotStyleConfig config = colored();
    config.selectedGradient = GradientPreset{QUuid::createUuid(), {red, green, blue}, 135};
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(0, 255, 0)));
    EXPECT_GT(qRed(seen(config).topLeft), 250);
    EXPECT_GT(qBlue(seen(config).bottomRight), 250);
}

TEST(GradientBackground, UsesTheThirdColourOnlyWhenAsked) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::gradient;
    config.gradientConfig.color1 = red;
    config.gradientConfig.color2 = green;
    config.gradientConfig.color3 = blue;
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(128, 128, 0)));
    config.gradientConfig.useThreeColors = true;
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(0, 255, 0)));
    EXPECT_GT(qBlue(seen(config).bottomRight), 250);
}

TEST(GradientBackground, FollowsItsStyle) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::gradient;
    config.gradientConfig.color1 = red;
    config.gradientConfig.color2 = blue;
    config.gradientConfig.style = GradientStyle::radial;
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(255, 0, 0)));
    EXPECT_TRUE(isWithinAStep(seen(config).topLeft, seen(config).bottomRight));
    config.gradientConfig.style = GradientStyle::angular;
    config.gradientConfig.angle = 135;
    EXPECT_GT(qRed(seen(config).bottomRight), 250);
    EXPECT_GT(qBlue(seen(config).topLeft), 250);
}

TEST(ColorAndGradientBackground, TakeSaturationAndBrightness) {
    ScreenshotStyleConfig config = colored();
    config.customColor = {0.8, 0.4, 0.2, 1};
    config.gradientConfig.saturation = 0;
    const int luma = qRound((0.2126 * 0.8 + 0.7152 * 0.4 + 0.0722 * 0.2) * 255);
    EXPECT_EQ(seen(config).middle, qRgb(luma, luma, luma));
    config.gradientConfig.saturation = 100;
    config.gradientConfig.brightness = 120;
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(255, 153, 102)));
    config.backgroundType = BackgroundType::gradient;
    config.gradientConfig.color1 = config.gradientConfig.color2 = {0.4, 0.4, 0.4, 1};
    EXPECT_TRUE(isWithinAStep(seen(config).middle, qRgb(153, 153, 153)));
}

} // namespace
} // namespace framora

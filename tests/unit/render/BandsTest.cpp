#include "editor/render/CompositionRasterizer.h"
#include "editor/render/raster/PixelEffects.h"
#include "unit/render/TestPictures.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

namespace framora {
namespace {

constexpr QSize frame(430, 300);
constexpr int window = 8;

/// A canvas as large as the output, the screenshot out of sight.
Composition canvasOnly(const ScreenshotStyleConfig& style) {
    Composition composition;
    composition.image = flatPicture(2, 2);
    composition.config = style;
    composition.config.showMockup = false;
    composition.config.screenshotOffset = {5000, 5000};
    composition.config.selectedSocialPreset =
        SocialMediaPreset{.platform = {}, .name = {}, .width = frame.width(), .height = frame.height()};
    composition.isRendering = true;
    return composition;
}

/// The worst difference, in steps of 255, between the mean of 8 x 8 pixels as they are drawn and as they
/// would be without any rounding, over all places and channels.
double worstLocalMean(const Composition& composition) {
    CompositionRasterizer rasterizer;
    const CompositionRasterizer::Viewport viewport{frame, 1,
                                                   QPointF(frame.width() / 2.0, frame.height() / 2.0)};
    const QImage drawn = rasterizer.draw(composition, viewport);
    EXPECT_EQ(CompositionRasterizer().draw(composition, viewport), drawn) << "not repeatable";
    // The background, and perhaps the scene over it; both fill the canvas.
    const auto layers = rasterizer.layers(composition, viewport);
    const std::size_t width = std::size_t(frame.width()) + 1;
    std::vector<std::array<double, 4>> sums(width * (std::size_t(frame.height()) + 1));
    std::vector<raster::Float4> exact(std::size_t(frame.width()));
    std::vector<raster::Float4> shaded(std::size_t(frame.width()));
    for (int y = 0; y < frame.height(); ++y) {
        std::fill(exact.begin(), exact.end(), raster::splat(0));
        for (const raster::Layer& layer : layers) {
            if (layer.placement.originX > 2000)
                continue; // the screenshot
            layer.paint->shade(0, y, frame.width(), shaded.data());
            if (layer.adjustment)
                raster::adjustColors(shaded.data(), frame.width(), layer.adjustment->saturation,
                                     layer.adjustment->brightness);
            for (std::size_t x = 0; x < exact.size(); ++x) {
                const raster::Float4 over = shaded[x] * raster::splat(layer.opacity);
                exact[x] = over + exact[x] * raster::splat(1 - over[3]);
            }
        }
        const auto* row = reinterpret_cast<const quint32*>(drawn.constScanLine(y));
        for (std::size_t x = 0; x < exact.size(); ++x)
            for (std::size_t c = 0; c < 4; ++c) {
                const double off = double(row[x] >> (8 * c) & 255) - 255.0 * double(exact[x][c]);
                const std::size_t at = (std::size_t(y) + 1) * width + x + 1;
                sums[at][c] = off + sums[at - 1][c] + sums[at - width][c] - sums[at - width - 1][c];
            }
    }
    double worst = 0;
    for (std::size_t y = 0; y + window <= std::size_t(frame.height()); ++y)
        for (std::size_t x = 0; x + window < width; ++x)
            for (std::size_t c = 0; c < 4; ++c) {
                const std::size_t at = y * width + x;
                const double sum = sums[at + window * width + window][c] - sums[at + window][c] -
                                   sums[at + window * width][c] + sums[at][c];
                worst = std::max(worst, std::abs(sum) / (window * window));
            }
    return worst;
}

ScreenshotStyleConfig slowRamp(GradientStyle kind) {
    ScreenshotStyleConfig style;
    style.backgroundType = BackgroundType::gradient;
    style.gradientConfig.style = kind;
    style.gradientConfig.angle = 77;
    style.gradientConfig.color1 = {0.40, 0.20, 0.30, 1};
    style.gradientConfig.color2 = {0.43, 0.23, 0.28, 1};
    return style;
}

class Bands : public testing::TestWithParam<GradientStyle> {};

// Without dither it comes to 0.45 of a step.
constexpr double leastBand = 0.3;

TEST_P(Bands, AreNotInSlowGradients) {
    for (const bool hasThree : {false, true})
        for (const double alpha : {1.0, 0.6}) {
            ScreenshotStyleConfig style = slowRamp(GetParam());
            style.gradientConfig.useThreeColors = hasThree;
            style.gradientConfig.color3 = {0.41, 0.25, 0.25, 1};
            style.gradientConfig.color2.alpha = alpha;
            EXPECT_LT(worstLocalMean(canvasOnly(style)), leastBand) << hasThree << ", " << alpha;
        }
}

TEST_P(Bands, AreNotInAdjustedGradients) {
    for (const auto& [saturation, brightness] : {std::array{140.0, 100.0}, {60.0, 107.0}, {100.0, 93.3}}) {
        ScreenshotStyleConfig style = slowRamp(GetParam());
        style.gradientConfig.saturation = saturation;
        style.gradientConfig.brightness = brightness;
        EXPECT_LT(worstLocalMean(canvasOnly(style)), leastBand) << saturation << ", " << brightness;
    }
}

TEST_P(Bands, AreNotInBlurredGradients) {
    for (const double radius : {0.6, 1.5, 8.0, 50.0})
        for (const double saturation : {100.0, 130.0}) {
            ScreenshotStyleConfig style = slowRamp(GetParam());
            style.gradientConfig.blurAmount = radius;
            style.gradientConfig.saturation = saturation;
            EXPECT_LT(worstLocalMean(canvasOnly(style)), leastBand) << radius << ", " << saturation;
        }
}

TEST_P(Bands, AreNotUnderAScene) {
    ScreenshotStyleConfig style = slowRamp(GetParam());
    style.selectedShadowScene =
        ShadowScene{.name = {}, .colors = {{0.5, 0.5, 0.6, 1}, {0.6, 0.5, 0.5, 1}}, .isTexture = false};
    style.shadowSceneOpacity = 40;
    EXPECT_LT(worstLocalMean(canvasOnly(style)), leastBand);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Bands,
                         testing::Values(GradientStyle::linear, GradientStyle::radial,
                                         GradientStyle::angular));

TEST(BlurredPicture, HasNoBands) {
    QImage steps(90, 60, QImage::Format_RGB32);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 90; ++x)
            steps.setPixel(x, y, qRgb(100 + x / 30, 60 + y / 20, 30 + (x + y) / 50));
    for (const double radius : {0.6, 1.5, 3.0, 20.0, 50.0}) {
        ScreenshotStyleConfig style;
        style.backgroundType = BackgroundType::image;
        style.gradientConfig.blurAmount = radius;
        Composition composition = canvasOnly(style);
        composition.preloadedBackgroundImage = steps;
        EXPECT_LT(worstLocalMean(composition), leastBand) << radius;
    }
}

} // namespace
} // namespace framora

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/ScreenshotRenderer.h"
#include "unit/render/MemoryLimit.h"
#include "unit/render/TestPictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <memory>

namespace framora {
namespace {

/// Every number of the style, to be set to what nobody means.
const std::vector<double ScreenshotStyleConfig::*> plainNumbers = {
    &ScreenshotStyleConfig::mockupBorderSize,
    &ScreenshotStyleConfig::borderRadius,
    &ScreenshotStyleConfig::rotation,
    &ScreenshotStyleConfig::imageScale,
    &ScreenshotStyleConfig::rotationX,
    &ScreenshotStyleConfig::rotationY,
    &ScreenshotStyleConfig::perspective,
    &ScreenshotStyleConfig::padding,
    &ScreenshotStyleConfig::scale,
    &ScreenshotStyleConfig::shadowSceneOpacity};

const double strange[] = {0.0,
                          -0.0,
                          -1.0,
                          89.99999999,
                          90.0,
                          -270.0,
                          1e-300,
                          1e-9,
                          1e5,
                          -1e9,
                          1e18,
                          1e300,
                          std::numeric_limits<double>::max(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          std::numeric_limits<double>::quiet_NaN()};

/// A picture of the asked size or nothing.
void drawBoth(const ScreenshotStyleConfig& config) {
    const QImage image = noisePicture(31, 17);
    Composition composition;
    composition.image = image;
    composition.config = config;
    composition.loadedBackgroundImage = noisePicture(9, 9);
    const QImage preview = CompositionRasterizer().draw(composition, {QSize(90, 70), 0.8, QPointF(45, 35)});
    EXPECT_EQ(preview.size(), QSize(90, 70));
    // The export's frame follows the numbers: kept small here, its bound is held below.
    const QSizeF frame = outputFrame(pointSize(image), config);
    if (!(frame.width() * frame.height() > 1e6))
        renderComposition(image, config);
}

TEST(Extremes, AnyNumberGivesAPictureOrNothing) {
    for (const MockupStyle style : {MockupStyle::defaultStyle, MockupStyle::border, MockupStyle::glassEffect})
        for (const double value : strange)
            for (const auto field : plainNumbers) {
                ScreenshotStyleConfig config;
                config.mockupStyle = style;
                config.*field = value;
                drawBoth(config);
                config.rotationX = config.rotationX == 0 ? 50 : config.rotationX;
                config.rotation = config.rotation == 0 ? 20 : config.rotation;
                drawBoth(config);
            }
}

TEST(Extremes, AnyNumberOfTheOffsetAndTheGradientGivesAPictureOrNothing) {
    for (const double value : strange) {
        ScreenshotStyleConfig config;
        config.screenshotOffset = {value, 3};
        drawBoth(config);
        config.screenshotOffset = {};
        for (const GradientStyle style :
             {GradientStyle::linear, GradientStyle::radial, GradientStyle::angular}) {
            config.backgroundType = BackgroundType::gradient;
            config.gradientConfig.style = style;
            config.gradientConfig.angle = config.gradientConfig.saturation =
                config.gradientConfig.noiseAmount = value;
            config.gradientConfig.brightness = config.gradientConfig.blurAmount = value;
            config.gradientConfig.color1 = {value, value, value, value};
            drawBoth(config);
        }
    }
}

TEST(Extremes, AnyPlaceOfTheCanvasGivesAPictureOrNothing) {
    Composition composition;
    composition.image = noisePicture(31, 17);
    composition.config.rotationY = 30;
    composition.loadedBackgroundImage = noisePicture(9, 9);
    for (const double value : strange) {
        CompositionRasterizer().draw(composition, {QSize(40, 40), value, QPointF(20, 20)});
        CompositionRasterizer().draw(composition, {QSize(40, 40), 1, QPointF(value, 20)});
    }
    EXPECT_TRUE(CompositionRasterizer().draw(composition, {QSize(0, 40), 1, {}}).isNull());
    EXPECT_TRUE(CompositionRasterizer().draw(composition, {QSize(40, 40), NAN, {}}).isNull());
}

TEST(Extremes, ATiltEdgeOnShowsNothing) {
    for (const double tilt : {90.0, -90.0, 270.0, 450.0})
        for (const bool isAboutX : {true, false}) {
            ScreenshotStyleConfig config = bareStyle();
            config.padding = 5;
            (isAboutX ? config.rotationX : config.rotationY) = tilt;
            const QImage result = renderComposition(flatPicture(20, 20), config);
            EXPECT_EQ(result.size(), QSize(60, 60));
            EXPECT_EQ(result, flatPicture(60, 60, Qt::transparent, 2)) << tilt;
        }
}

TEST(Extremes, ATiltThroughTheEyeShowsOnlyWhatIsBeforeIt) {
    // Ten times its size, the lower end comes through the eye's plane; the upper end runs to the horizon. At
    // 80 degrees the horizon lies at y = -d / tan 80 above the middle.
    ScreenshotStyleConfig config = bareStyle();
    config.rotationX = 80;
    config.imageScale = 1000;
    const QImage result = CompositionRasterizer().draw({flatPicture(100, 100), config, true},
                                                       {QSize(200, 200), 1, QPointF(100, 100)});
    EXPECT_EQ(result.pixel(100, 199), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(100, 105), qRgb(255, 0, 0));
    const double horizon = 100 - 100 / std::tan(80 * M_PI / 180);
    for (int y = 0; y < int(horizon); ++y)
        for (int x = 0; x < 200; ++x)
            ASSERT_EQ(result.pixel(x, y), 0u) << x << "," << y;
}

TEST(Extremes, TurnedFarEnoughItShowsItsBack) {
    QImage halves(20, 10, QImage::Format_RGB32);
    halves.fill(Qt::red);
    for (int y = 0; y < 10; ++y)
        for (int x = 10; x < 20; ++x)
            halves.setPixel(x, y, qRgb(0, 0, 255));
    ScreenshotStyleConfig config = bareStyle();
    config.rotationY = 180;
    const QImage result =
        CompositionRasterizer().draw({halves, config, true}, {QSize(20, 10), 1, QPointF(10, 5)});
    EXPECT_EQ(result.pixel(4, 5), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(15, 5), qRgb(255, 0, 0));
}

TEST(Extremes, OnePixelIsAPicture) {
    ScreenshotStyleConfig config;
    config.padding = 0;
    config.borderRadius = 0;
    const QImage result = renderComposition(flatPicture(1, 1), config);
    EXPECT_EQ(result.size(), QSize(2, 2));
    EXPECT_EQ(result.pixel(1, 1), qRgb(255, 0, 0));
}

TEST(Extremes, AWholeScreenAtTheLargestScaleIsAFrame) {
    ScreenshotStyleConfig config;
    config.scale = 3;
    const auto pixels = [&](QSizeF screen) {
        const auto viewport = CompositionRasterizer::frameViewport(outputFrame(screen, config), exportScale);
        return viewport ? viewport->pixelSize : QSize();
    };
    EXPECT_EQ(pixels({3840, 2160}), QSize(24000, 13920));
    config.padding = 200;
    config.mockupStyle = MockupStyle::border;
    config.mockupBorderSize = 10;
    EXPECT_FALSE(pixels({3840, 2160}).isEmpty());
}

TEST(Extremes, AFrameBeyondAllReasonIsNothing) {
    ScreenshotStyleConfig config = bareStyle();
    for (const double value : {1e5, 1e12, 1e300, double(INFINITY), double(NAN)}) {
        config.scale = value;
        EXPECT_TRUE(renderComposition(flatPicture(10, 10), config).isNull()) << value;
    }
    config.scale = 1;
    config.padding = 15000; // 60020 pixels a side: each is allowed, all of them are not
    EXPECT_TRUE(renderComposition(flatPicture(10, 10), config).isNull());
}

/// Styles with everything that there is, for pictures and maps of any kind.
std::vector<ScreenshotStyleConfig> richStyles() {
    std::vector<ScreenshotStyleConfig> styles;
    for (const MockupStyle mockup : allCases<MockupStyle>())
        for (const BackgroundType background : allCases<BackgroundType>()) {
            ScreenshotStyleConfig style;
            style.mockupStyle = mockup;
            style.backgroundType = background;
            style.gradientConfig.blurAmount = 6;
            style.selectedShadowScene =
                ShadowScene{.name = {}, .colors = {{1, 0, 0, 1}, {0, 0, 1, 1}}, .isTexture = false};
            style.shadowSceneMode =
                mockup == MockupStyle::border ? ShadowSceneMode::underlay : ShadowSceneMode::overlay;
            TextOverlay text;
            text.text = QStringLiteral("Text");
            text.position = {10, 10};
            style.textOverlays = {text};
            style.padding = 9;
            styles.push_back(style);
        }
    return styles;
}

TEST(Extremes, EveryMockupComesThroughTheEyesPlane) {
    for (ScreenshotStyleConfig style : richStyles())
        for (const double tilt : {60.0, -80.0, 89.999})
            for (const bool isAboutX : {true, false}) {
                (isAboutX ? style.rotationX : style.rotationY) = tilt;
                (isAboutX ? style.rotationY : style.rotationX) = 0;
                style.imageScale = 400;
                drawBoth(style);
            }
}

TEST(Extremes, TheSmallestPictureTakesEveryStyle) {
    for (ScreenshotStyleConfig style : richStyles())
        for (const double padding : {0.0, 1.0})
            for (const double scale : {0.1, 1.0, 3.0}) {
                style.padding = padding;
                style.scale = scale;
                const QSizeF frame = outputFrame(QSizeF(1, 1), style);
                const QSize expected(int(std::round(2 * frame.width())), int(std::round(2 * frame.height())));
                EXPECT_EQ(renderComposition(flatPicture(1, 1), style).size(),
                          expected.isEmpty() ? QSize(0, 0) : expected)
                    << padding << ", " << scale;
            }
}

TEST(Extremes, TheLargestPictureIsDrawnSmall) {
    constexpr int side = 16384;
    // Rows that nobody wrote take no memory.
    const std::unique_ptr<void, decltype(&std::free)> memory(std::calloc(std::size_t(side) * side, 4),
                                                             &std::free);
    ASSERT_TRUE(memory);
    QImage large(static_cast<uchar*>(memory.get()), side, side, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < side / 4; ++y)
        std::fill_n(reinterpret_cast<quint32*>(large.scanLine(y)), side, 0xffff0000u);
    const QImage preview = CompositionRasterizer().draw({large, bareStyle(), true},
                                                        {QSize(64, 64), 64.0 / side, QPointF(32, 32)});
    EXPECT_EQ(preview.pixel(1, 1), qRgb(255, 0, 0));
    EXPECT_EQ(preview.pixel(63, 14), qRgb(255, 0, 0));
    EXPECT_EQ(preview.pixel(31, 18), 0u);
    EXPECT_EQ(preview.pixel(63, 63), 0u);
    EXPECT_TRUE(renderComposition(large, bareStyle()).isNull()) << "32768 pixels a side";
}

TEST(Extremes, TheLargestFrameIsDrawnWhole) {
    ScreenshotStyleConfig style;
    style.backgroundType = BackgroundType::color;
    style.customColor = {0, 0, 1, 1};
    style.padding = 8191.5;
    const QImage result = CompositionRasterizer().draw({flatPicture(1, 1), style, true},
                                                       {QSize(16384, 16384), 1, QPointF(8192, 8192)});
    ASSERT_EQ(result.size(), QSize(16384, 16384));
    EXPECT_EQ(result.pixel(0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(16383, 16383), qRgb(0, 0, 255));
    EXPECT_NE(result.pixel(8192, 8192), qRgb(0, 0, 255));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // they take more than all memory
TEST(ExtremesDeathTest, AFrameThatMemoryDoesNotHoldIsNothing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto draw = [] {
        // A gigabyte is asked for where half of one is to be had.
        limitMemoryTo(rlim_t(512) << 20);
        const bool isNull =
            CompositionRasterizer()
                .draw({flatPicture(1, 1), bareStyle(), true}, {QSize(16384, 16384), 1, QPointF(8192, 8192)})
                .isNull();
        const bool isDrawn =
            !CompositionRasterizer()
                 .draw({flatPicture(1, 1), bareStyle(), true}, {QSize(1024, 1024), 1, QPointF(512, 512)})
                 .isNull();
        std::_Exit(isNull && isDrawn ? 0 : 1);
    };
    EXPECT_EXIT(draw(), testing::ExitedWithCode(0), "");
}

TEST(ExtremesDeathTest, WhereLayersFindNoMemoryThereIsNothing) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto draw = [](auto target) {
        // Where the picture's columns are read from takes megabytes; the frame has its memory already.
        const CompositionRasterizer::Viewport wide{QSize(65000, 16), 1000, QPointF(32500, 8)};
        Composition composition{flatPicture(64, 64), bareStyle(), true};
        composition.image = QImage();
        const bool isDrawn = CompositionRasterizer().drawInto(target, composition, wide);
        composition.image = flatPicture(64, 64);
        limitMemoryTo(rlim_t(1) << 20);
        const bool isNothing =
            !CompositionRasterizer().drawInto(target, composition, wide) && target.isNull();
        std::_Exit(isDrawn && isNothing ? 0 : 1);
    };
    EXPECT_EXIT(draw(QImage()), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(draw(LivePicture()), testing::ExitedWithCode(0), "");
}
#endif

} // namespace
} // namespace framora

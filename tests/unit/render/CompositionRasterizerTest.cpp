#include "editor/render/CompositionRasterizer.h"

#include "editor/render/raster/ParallelFor.h"
#include "unit/render/TestPictures.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <vector>

namespace framora {
namespace {

Composition compositionOf(const QImage& image, const ScreenshotStyleConfig& config, bool isRendering = true) {
    Composition composition;
    composition.image = image;
    composition.config = config;
    composition.isRendering = isRendering;
    return composition;
}

/// The whole canvas at `scale` pixels a point.
QImage drawn(const Composition& composition, double scale = 1) {
    return CompositionRasterizer().drawFrame(
        composition, canvasSize(pointSize(composition.image), composition.config), scale);
}

bool areEqual(const QImage& a, const QImage& b) {
    return a.size() == b.size() && a.convertToFormat(QImage::Format_ARGB32_Premultiplied) ==
                                       b.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

TEST(CompositionRasterizer, CopiesPixelsOneToOneBitForBit) {
    for (const double ratio : {1.0, 2.0, 1.25}) {
        const QImage image = noisePicture(101, 64, ratio);
        ScreenshotStyleConfig config = bareStyle();
        config.padding = 20;
        const QImage result = drawn(compositionOf(image, config), ratio);
        const int margin = int(20 * ratio);
        EXPECT_TRUE(areEqual(result.copy(margin, margin, 101, 64), image)) << ratio;
        EXPECT_EQ(result.pixel(margin - 1, margin), 0u);
        EXPECT_EQ(result.pixel(margin + 101, margin), 0u);
    }
}

TEST(CompositionRasterizer, CopiesPixelsAlsoWhenTurnedByRightAngles) {
    const QImage image = noisePicture(60, 40);
    ScreenshotStyleConfig config = bareStyle();
    config.padding = 20;
    for (const int rotation : {90, 180, 270}) {
        config.rotation = rotation;
        const QImage result =
            CompositionRasterizer().draw(compositionOf(image, config), {QSize(100, 100), 1, QPointF(50, 50)});
        const QImage turned = image.transformed(QTransform().rotate(rotation));
        EXPECT_TRUE(areEqual(
            result.copy(50 - turned.width() / 2, 50 - turned.height() / 2, turned.width(), turned.height()),
            turned))
            << rotation;
    }
}

TEST(CompositionRasterizer, LeavesTheExportTransparentAroundTheScreenshot) {
    ScreenshotStyleConfig config = bareStyle();
    config.showMockup = true;
    const QImage result = drawn(compositionOf(flatPicture(200, 100), config), 2);
    ASSERT_EQ(result.size(), QSize(720, 520));
    int touched = 0;
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.width(); ++x)
            if (QRect(160, 160, 400, 200).contains(x, y))
                touched += qAlpha(result.pixel(x, y)) > 0;
            else
                ASSERT_EQ(result.pixel(x, y), 0u) << x << "," << y;
    EXPECT_GT(touched, 400 * 200 * 9 / 10);
    EXPECT_EQ(qAlpha(result.pixel(160, 160)), 0) << "the corner is round";
}

TEST(CompositionRasterizer, ShowsACheckerboardInThePreviewOnly) {
    ScreenshotStyleConfig config = bareStyle();
    const QImage preview = drawn(compositionOf(flatPicture(100, 100), config, false));
    for (int y = 0; y < 72; ++y)
        for (int x = 0; x < 260; ++x) {
            const int grey = (x / 12 + y / 12) % 2 == 0 ? 0xff : 0xe6;
            ASSERT_EQ(preview.pixel(x, y), qRgb(grey, grey, grey)) << x << "," << y;
        }
    EXPECT_EQ(drawn(compositionOf(flatPicture(100, 100), config, true)).pixel(5, 5), 0u);
}

TEST(CompositionRasterizer, ShowsNoiseInThePreviewButNotInTheExport) {
    for (const BackgroundType type : allCases<BackgroundType>()) {
        SCOPED_TRACE(int(type));
        ScreenshotStyleConfig plain = bareStyle();
        plain.backgroundType = type;
        plain.customColor = {0.5, 0.5, 0.5, 1};
        ScreenshotStyleConfig noisy = plain;
        noisy.gradientConfig.noiseAmount = 60;
        const auto shown = [image = flatPicture(100, 100)](const ScreenshotStyleConfig& style,
                                                           bool isRendering) {
            Composition composition = compositionOf(image, style, isRendering);
            composition.loadedBackgroundImage = flatPicture(40, 30, Qt::darkCyan);
            composition.preloadedBackgroundImage = composition.loadedBackgroundImage;
            return drawn(composition);
        };
        EXPECT_TRUE(areEqual(shown(plain, true), shown(noisy, true)));
        EXPECT_EQ(areEqual(shown(plain, false), shown(noisy, false)), type == BackgroundType::transparent)
            << "a checkerboard has none";
        EXPECT_TRUE(areEqual(shown(noisy, false), shown(noisy, false))) << "the grain stands still";
        EXPECT_EQ(shown(noisy, false).pixel(130, 130), qRgb(255, 0, 0)) << "only the background has grain";
    }
}

TEST(CompositionRasterizer, DrawsPreviewAndExportAlikeOtherwise) {
    ScreenshotStyleConfig config;
    config.backgroundType = BackgroundType::gradient;
    config.mockupStyle = MockupStyle::border;
    config.rotation = 10;
    config.rotationX = 20;
    const QImage image = noisePicture(90, 70);
    EXPECT_TRUE(
        areEqual(drawn(compositionOf(image, config, true)), drawn(compositionOf(image, config, false))));
}

TEST(CompositionRasterizer, FramesTheScreenshotWithTheBorder) {
    ScreenshotStyleConfig config = bareStyle();
    config.showMockup = true;
    config.mockupStyle = MockupStyle::border;
    config.mockupBorderSize = 4; // 12 points of frame on each side
    config.borderColor = {0, 0, 1, 1};
    config.borderRadius = 10;
    config.padding = 30;
    const QImage result = drawn(compositionOf(flatPicture(100, 60), config));
    ASSERT_EQ(result.size(), QSize(100 + 60 + 24, 60 + 60 + 24));
    const int middle = result.height() / 2;
    EXPECT_EQ(result.pixel(29, middle), 0u);
    EXPECT_EQ(result.pixel(30, middle), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(41, middle), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(42, middle), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(141, middle), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(153, middle), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(154, middle), 0u);
    // The frame's corner has the radius 10 + 12 / 2: its arc's middle lies 16 (1 - sqrt(1/2)) = 4.7 points
    // inside.
    EXPECT_EQ(result.pixel(30 + 4, 30 + 3), 0u);
    EXPECT_EQ(result.pixel(30 + 5, 30 + 5), qRgb(0, 0, 255));
}

TEST(CompositionRasterizer, ShowsThePlainImageWithoutAMockup) {
    ScreenshotStyleConfig config = bareStyle();
    config.borderRadius = 50;
    config.mockupStyle = MockupStyle::border;
    config.padding = 10;
    const QImage result = drawn(compositionOf(flatPicture(100, 60), config));
    EXPECT_EQ(result.pixel(10, 10), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(109, 69), qRgb(255, 0, 0));
}

TEST(CompositionRasterizer, ScalesTurnsAndMovesAboutTheMiddle) {
    ScreenshotStyleConfig config = bareStyle();
    config.imageScale = 50;
    config.scale = 3;
    config.rotation = 90;
    config.screenshotOffset = {20, -30};
    Composition composition = compositionOf(flatPicture(100, 60), config);
    composition.dragOffset = {5, 10};
    // 100 x 60 by 1.5, turned: 90 wide, 150 high, about (200 + 25, 200 - 20).
    const QImage result = CompositionRasterizer().draw(composition, {QSize(400, 400), 1, QPointF(200, 200)});
    EXPECT_EQ(result.pixel(225 - 45, 180), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(225 - 46, 180), 0u);
    EXPECT_EQ(result.pixel(225 + 44, 180 - 75), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(225 + 44, 180 - 76), 0u);
    EXPECT_EQ(result.pixel(225, 180 + 74), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(225, 180 + 75), 0u);
}

/// The width of what is drawn in a row.
int drawnWidth(const QImage& image, int y) {
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += qAlpha(image.pixel(x, y)) > 127;
    return count;
}

TEST(CompositionRasterizer, TiltsWithTheBottomOrTheLeftNearer) {
    ScreenshotStyleConfig config = bareStyle();
    config.rotationX = 30;
    const CompositionRasterizer::Viewport viewport{QSize(400, 400), 1, QPointF(200, 200)};
    QImage result = CompositionRasterizer().draw(compositionOf(flatPicture(200, 100), config), viewport);
    EXPECT_GT(drawnWidth(result, 240), 200);
    EXPECT_LT(drawnWidth(result, 165), 200);
    // The lower edge, 50 below: depth 1 - 50 sin 30 / 200, so 50 cos 30 / 0.875 = 49.49 below the middle.
    EXPECT_EQ(qAlpha(result.pixel(200, 248)), 255);
    EXPECT_NEAR(qAlpha(result.pixel(200, 249)), 0.487 * 255, 3);
    EXPECT_EQ(qAlpha(result.pixel(200, 250)), 0);

    config.rotationX = 0;
    config.rotationY = 30;
    result = CompositionRasterizer().draw(compositionOf(flatPicture(200, 100), config), viewport);
    const QImage sideways = result.transformed(QTransform().rotate(90)); // its top is the left side now
    EXPECT_GT(drawnWidth(sideways, 120), drawnWidth(sideways, 270));
}

TEST(CompositionRasterizer, PutsTheEyeAsFarAsTheFramedLayerIsLong) {
    ScreenshotStyleConfig config = bareStyle();
    config.showMockup = true;
    config.mockupStyle = MockupStyle::border;
    config.mockupBorderSize = 10; // 30 points a side: the layer is 260 x 160
    config.borderColor = {0, 0, 1, 1};
    config.rotationX = 30;
    config.scale = 0.5; // does not move the eye
    const QImage result = CompositionRasterizer().draw(compositionOf(flatPicture(200, 100), config),
                                                       {QSize(400, 400), 4, QPointF(200, 200)});
    // The lower edge, 40 below: 40 cos 30 / (1 - 40 sin 30 / 260) = 37.528 points, 150.1 pixels.
    EXPECT_EQ(qAlpha(result.pixel(200, 200 + 149)), 255);
    EXPECT_NEAR(qAlpha(result.pixel(200, 200 + 150)), 0.11 * 255, 4);
}

TEST(CompositionRasterizer, StretchesTheBackgroundImageOverTheCanvas) {
    QImage halves(2, 1, QImage::Format_RGB32);
    halves.setPixel(0, 0, qRgb(255, 0, 0));
    halves.setPixel(1, 0, qRgb(0, 255, 0));
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::image;
    Composition composition = compositionOf(flatPicture(2, 2, Qt::blue), config);
    EXPECT_EQ(drawn(composition).pixel(3, 3), 0u) << "no image, no background";
    composition.loadedBackgroundImage = halves;
    const QImage result = drawn(composition);
    EXPECT_EQ(result.pixel(0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(0, result.height() - 1), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(result.width() - 1, 50), qRgb(0, 255, 0));
    composition.preloadedBackgroundImage = flatPicture(4, 4, Qt::white);
    EXPECT_EQ(drawn(composition).pixel(0, 0), qRgb(255, 255, 255)) << "the preloaded one goes first";
}

TEST(CompositionRasterizer, LaysOutAtTheSocialPresetsSize) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::color;
    config.customColor = {0, 0, 1, 1};
    SocialMediaPreset preset;
    preset.width = 300;
    preset.height = 140;
    config.selectedSocialPreset = preset;
    config.padding = 0;
    // 400 x 100 fits into 260 x 100 at 0.65.
    const QImage result = drawn(compositionOf(flatPicture(400, 100), config));
    ASSERT_EQ(result.size(), QSize(300, 140));
    EXPECT_EQ(result.pixel(19, 70), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(20, 70), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(279, 70), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(280, 70), qRgb(0, 0, 255));
}

TEST(CompositionRasterizer, ClipsLayersToTheOutputOnly) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = BackgroundType::color;
    config.customColor = {0, 0, 1, 1};
    config.padding = 0;
    config.screenshotOffset = {60, 0};
    const QImage result = CompositionRasterizer().draw(compositionOf(flatPicture(100, 100), config),
                                                       {QSize(300, 100), 1, QPointF(150, 50)});
    EXPECT_EQ(result.pixel(99, 50), 0u);
    EXPECT_EQ(result.pixel(100, 50), qRgb(0, 0, 255));
    EXPECT_EQ(result.pixel(160, 50), qRgb(255, 0, 0));
    EXPECT_EQ(result.pixel(255, 50), qRgb(255, 0, 0)) << "outside the canvas";
}

TEST(CompositionRasterizer, DrawsTheSameFromWhatItKeptOfEarlierFrames) {
    Composition composition = compositionOf(noisePicture(220, 130), {}, false);
    composition.config.backgroundType = BackgroundType::image;
    composition.config.mockupStyle = MockupStyle::border;
    composition.loadedBackgroundImage = noisePicture(60, 70);
    CompositionRasterizer kept;
    QImage target;
    const double scale = 0.55;
    for (const double tilt : {0.0, 25.0})
        for (const double rotation : {0.0, 10.0})
            for (int step = 0; step < 12; ++step) {
                composition.config.rotationX = tilt;
                composition.config.rotation = rotation;
                // By whole pixels, far out of the output and back; then by parts of pixels.
                composition.dragOffset = {(step < 8 ? (step - 4) * 50 : step * 7.3) / scale, step / scale};
                const CompositionRasterizer::Viewport viewport{QSize(260, 170), scale, QPointF(131.4, 80)};
                ASSERT_TRUE(kept.drawInto(target, composition, viewport));
                ASSERT_TRUE(areEqual(target, CompositionRasterizer().draw(composition, viewport)))
                    << tilt << " " << rotation << " " << step;
            }
    composition.image = noisePicture(220, 131);
    composition.loadedBackgroundImage = flatPicture(3, 3);
    const CompositionRasterizer::Viewport viewport{QSize(260, 170), scale, QPointF(131.4, 80)};
    for (int again = 0; again < 3; ++again) {
        ASSERT_TRUE(kept.drawInto(target, composition, viewport));
        ASSERT_TRUE(areEqual(target, CompositionRasterizer().draw(composition, viewport)))
            << "other pictures";
    }
}

/// A live picture after each of some changes of the style, beside what is drawn of it afresh.
class LiveFrames {
public:
    /// Whether the next frame is the same as one drawn from nothing, and what is told to have stayed did.
    testing::AssertionResult areExact(const Composition& composition, QPointF centre = {131.4, 80}) {
        const CompositionRasterizer::Viewport viewport{QSize(260, 170), 0.55, centre};
        const QImage before = live.view().copy();
        if (!rasterizer.drawInto(live, composition, viewport))
            return testing::AssertionFailure() << "nothing was drawn";
        const QImage fresh = CompositionRasterizer().draw(composition, viewport);
        if (!areEqual(live.view(), fresh))
            return testing::AssertionFailure() << "another picture";
        const QRect still = live.unchanged();
        if (!before.isNull() && !still.isEmpty() && !areEqual(before.copy(still), fresh.copy(still)))
            return testing::AssertionFailure() << "what stayed is different";
        return testing::AssertionSuccess();
    }

    CompositionRasterizer rasterizer;
    LivePicture live;
};

ShadowScene sceneOf(const QList<Color>& colors) {
    return {QUuid::createUuid(), QStringLiteral("Scene"), colors, false};
}

TextOverlay textAt(Point position) {
    TextOverlay overlay;
    overlay.text = QStringLiteral("Text");
    overlay.fontSize = 40;
    overlay.position = position;
    return overlay;
}

TEST(LivePicture, ShowsWhatIsDrawnFromNothingWhateverTheFramesBeforeIt) {
    Composition composition = compositionOf(noisePicture(220, 130), {}, false);
    composition.loadedBackgroundImage = noisePicture(60, 70);
    LiveFrames frames;
    ScreenshotStyleConfig& style = composition.config;
    const std::vector<std::function<void(double)>> gestures = {
        [&](double part) {
            composition.dragOffset = {part * 200, part * -90};
        },
        [&](double part) { style.gradientConfig.saturation = 100 + part * 100; },
        [&](double part) { style.gradientConfig.noiseAmount = part * 50; },
        [&](double part) { style.gradientConfig.blurAmount = part * 30; },
        [&](double part) { style.borderRadius = part * 40; },
        [&](double part) { style.padding = part * 90; },
        [&](double part) { style.mockupBorderSize = part * 10; },
        [&](double part) { style.scale = 0.5 + part; },
        [&](double part) { style.rotationX = part * 60; },
        [&](double part) {
            style.shadowSceneMode = part > 0.5 ? ShadowSceneMode::overlay : ShadowSceneMode::underlay;
        },
        [&](double part) { style.shadowSceneOpacity = 20 + part * 50; },
        [&](double part) {
            style.selectedShadowScene = sceneOf({{part, 0, 1, 1}, {0, 1, part, 1}});
        },
        [&](double part) {
            style.textOverlays = {textAt({60, 40})};
            style.textOverlays[0].opacity = 1 - part;
        },
    };
    for (const auto type : {BackgroundType::image, BackgroundType::gradient, BackgroundType::color,
                            BackgroundType::transparent})
        for (const auto mockup : {MockupStyle::border, MockupStyle::glassEffect})
            for (std::size_t gesture = 0; gesture < gestures.size(); ++gesture) {
                style = {};
                composition.dragOffset = {};
                style.backgroundType = type;
                style.mockupStyle = mockup;
                if (mockup == MockupStyle::glassEffect) {
                    style.gradientConfig.blurAmount = 3;
                    style.selectedShadowScene = sceneOf({{1, 0, 0, 1}, {0, 0, 1, 1}});
                    style.textOverlays = {textAt({60, 40})};
                }
                // Each step twice: what comes again is drawn from what is kept.
                for (const double part : {0.0, 0.0, 0.2, 0.2, 0.2, 0.9, 0.2}) {
                    gestures[gesture](part);
                    ASSERT_TRUE(frames.areExact(composition)) << int(type) << " " << gesture << " " << part;
                }
            }
    // A background that comes back after another one, which took the memory that it was converted to. It is
    // hidden at first.
    style = {};
    style.backgroundType = BackgroundType::image;
    style.scale = 2;
    const QImage first = noisePicture(60, 70).convertToFormat(QImage::Format_ARGB32);
    const QImage second = flatPicture(60, 70).convertToFormat(QImage::Format_ARGB32);
    for (const int frame : {0, 1, 2, 3, 4, 5}) {
        composition.loadedBackgroundImage = frame == 3 ? second : first;
        style.gradientConfig.blurAmount = frame == 3 ? 30 : 2;
        composition.dragOffset = {frame < 4 ? 0.0 : 250.0, 0};
        ASSERT_TRUE(frames.areExact(composition)) << frame;
    }
    // Other pictures in the same place.
    for (int i = 0; i < 3; ++i) {
        composition.image = noisePicture(220, 130 + i % 2);
        composition.loadedBackgroundImage = i == 1 ? QImage() : flatPicture(3, 3);
        ASSERT_TRUE(frames.areExact(composition));
        ASSERT_TRUE(frames.areExact(composition, {100, 90}));
    }
}

TEST(LivePicture, DrawsNothingAgainThatDidNotChange) {
    ScreenshotStyleConfig style;
    style.backgroundType = BackgroundType::gradient;
    style.padding = 200;
    Composition composition = compositionOf(noisePicture(1200, 800), style, false);
    CompositionRasterizer rasterizer;
    LivePicture live;
    const CompositionRasterizer::Viewport viewport{QSize(900, 700), 0.5, QPointF(450, 350)};
    const QRect all(0, 0, 900, 700);
    const auto draw = [&] { ASSERT_TRUE(rasterizer.drawInto(live, composition, viewport)); };
    draw();
    EXPECT_TRUE(live.hasChanged(all));
    draw(); // with what is kept from now on
    draw();
    EXPECT_FALSE(live.hasChanged(all));
    EXPECT_EQ(live.unchanged(), all);
    // The screenshot takes 600 x 400 in the middle and hides what changes under it, the canvas 800 x 600.
    composition.config.gradientConfig.saturation = 20;
    draw();
    EXPECT_FALSE(live.hasChanged(QRect(260, 200, 380, 300)));
    EXPECT_TRUE(live.hasChanged(QRect(60, 60, 10, 10)));
    EXPECT_TRUE(live.unchanged().contains(QRect(260, 200, 380, 300)));
    // A blurred background stays, too, while the screenshot alone moves.
    composition.config.gradientConfig.blurAmount = 40;
    draw();
    composition.dragOffset = {20, 10};
    draw();
    EXPECT_TRUE(live.hasChanged(QRect(260, 200, 380, 300)));
    EXPECT_FALSE(live.hasChanged(QRect(60, 60, 40, 580)));
    // Somebody who looks on sees the same memory; a picture of another size has its own.
    const QImage watched = live.view();
    ASSERT_TRUE(rasterizer.drawInto(live, composition, {QSize(10, 10), 1, QPointF(5, 5)}));
    EXPECT_EQ(watched.size(), all.size());
    EXPECT_EQ(live.view().size(), QSize(10, 10));
    ASSERT_FALSE(rasterizer.drawInto(live, composition, {QSize(0, 10), 1, QPointF(5, 5)}));
    EXPECT_TRUE(live.isNull());
}

TEST(LivePicture, LeavesWhateverLiesAroundTheScreenshotAsItIsWhileThatIsDragged) {
    using Style = ScreenshotStyleConfig;
    const auto showScene = [](Style& style, ShadowSceneMode mode) {
        style.selectedShadowScene = sceneOf({{1, 0, 0, 1}, {0, 0, 1, 1}});
        style.shadowSceneMode = mode;
    };
    const std::vector<std::pair<const char*, std::function<void(Style&)>>> surroundings = {
        {"transparent", [](Style& style) { style.backgroundType = BackgroundType::transparent; }},
        {"colour", [](Style& style) { style.backgroundType = BackgroundType::color; }},
        {"picture", [](Style& style) { style.backgroundType = BackgroundType::image; }},
        {"little blur", [](Style& style) { style.gradientConfig.blurAmount = 4; }},
        {"picture, little blur",
         [](Style& style) {
             style.backgroundType = BackgroundType::image;
             style.gradientConfig.blurAmount = 4;
         }},
        {"scene under", [&](Style& style) { showScene(style, ShadowSceneMode::underlay); }},
        {"scene over", [&](Style& style) { showScene(style, ShadowSceneMode::overlay); }},
        {"text",
         [](Style& style) {
             style.textOverlays = {textAt({100, 60})};
         }},
    };
    const CompositionRasterizer::Viewport viewport{QSize(900, 700), 0.5, QPointF(450, 350)};
    const QRect all(0, 0, 900, 700);
    for (const auto& [name, choose] : surroundings) {
        SCOPED_TRACE(name);
        Style style;
        style.backgroundType = BackgroundType::gradient;
        style.padding = 200;
        choose(style);
        Composition composition = compositionOf(noisePicture(1200, 800), style, false);
        composition.loadedBackgroundImage = noisePicture(300, 200);
        CompositionRasterizer rasterizer;
        LivePicture live;
        const auto draw = [&] { ASSERT_TRUE(rasterizer.drawInto(live, composition, viewport)); };
        draw();
        draw(); // with what is kept from now on
        draw();
        EXPECT_FALSE(live.hasChanged(all));
        // The screenshot takes 600 x 400 in the middle.
        composition.dragOffset = {20, 10};
        draw();
        EXPECT_TRUE(live.hasChanged(QRect(260, 200, 380, 300)));
        EXPECT_FALSE(live.hasChanged(QRect(60, 60, 60, 580)));
        EXPECT_TRUE(areEqual(live.view(), CompositionRasterizer().draw(composition, viewport)));
    }
}

/// Green, with memory for so many tiles only.
class ScarcePaint : public raster::Paint {
public:
    explicit ScarcePaint(int tiles) : m_left(tiles) {}
    void shade(int, int, int count, raster::Float4* out) const override {
        std::fill_n(out, count, raster::Float4{0, 1, 0, 1});
    }
    void mix(const raster::TileRect& tile, raster::MixPixel* out) const override {
        if (--m_left < 0)
            throw std::bad_alloc();
        Paint::mix(tile, out);
    }
    bool isOpaque() const override { return true; }
    void findMemory() { m_left = 1 << 20; }

private:
    mutable std::atomic<int> m_left;
};

TEST(LivePicture, BelievesNothingToBeDrawnOfAFrameThatMemoryWasTooShortFor) {
    const QSize size(500, 300);
    QImage green(size, QImage::Format_ARGB32_Premultiplied);
    green.fill(QColor(0, 255, 0));
    const auto paint = std::make_shared<ScarcePaint>(20);
    raster::Placement placement;
    placement.move(250, 150);
    const std::vector<raster::Layer> layers = {{{500, 300, 0}, {}, placement, paint, {}, {}}};
    LivePicture live;
    EXPECT_FALSE(live.draw(size, layers));
    EXPECT_TRUE(live.isNull());
    paint->findMemory();
    ASSERT_TRUE(live.draw(size, layers));
    EXPECT_TRUE(areEqual(live.view(), green));
}

TEST(CompositionRasterizer, DrawsTheSameWhateverTheThreads) {
    ScreenshotStyleConfig config;
    config.backgroundType = BackgroundType::gradient;
    config.gradientConfig.noiseAmount = 30;
    config.mockupStyle = MockupStyle::glassEffect;
    config.rotation = 5;
    config.rotationY = 35;
    config.imageScale = 45;
    const Composition composition = compositionOf(noisePicture(500, 300), config, false);
    const QImage all = drawn(composition);
    for (const int threads : {1, 3}) {
        raster::setParallelThreadLimit(threads);
        EXPECT_TRUE(areEqual(drawn(composition), all)) << threads;
    }
    raster::setParallelThreadLimit(0);
}

TEST(CompositionRasterizer, NeverDrawsIntoAPictureThatSomebodyHolds) {
    CompositionRasterizer rasterizer;
    const Composition composition = compositionOf(flatPicture(10, 10), bareStyle());
    const CompositionRasterizer::Viewport viewport{QSize(20, 20), 1, QPointF(10, 10)};
    QImage target;
    rasterizer.drawInto(target, composition, viewport);
    const QImage held = target;
    const uchar* before = held.constBits();
    rasterizer.drawInto(target, compositionOf(flatPicture(10, 10, Qt::blue), bareStyle()), viewport);
    EXPECT_EQ(held.constBits(), before);
    EXPECT_EQ(held.pixel(10, 10), qRgb(255, 0, 0));
    EXPECT_EQ(target.pixel(10, 10), qRgb(0, 0, 255));
    const uchar* own = target.constBits();
    rasterizer.drawInto(target, composition, viewport);
    EXPECT_EQ(target.constBits(), own) << "its own memory is used again";
}

} // namespace
} // namespace framora

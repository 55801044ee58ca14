#include "editor/render/CompositionRasterizer.h"
#include "editor/render/HexColor.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/ParallelFor.h"
#include "golden/GoldenComparison.h"

#include <limits>

namespace framora::golden {
namespace {

class BlurredBackgrounds : public testing::Test {
protected:
    BlurredBackgrounds() {
        ScreenshotStyleConfig& style = m_golden.style;
        style.padding = 30.0;
        style.borderRadius = 8.0;
        style.imageScale = 60.0;
        style.gradientConfig.color1 = parseHexColor(u"ff8800");
        style.gradientConfig.color2 = parseHexColor(u"2040c0");
        style.gradientConfig.color3 = parseHexColor(u"e0ffe0");
        style.gradientConfig.useThreeColors = true;
    }
    void expectMatch(double radius, const QString& name) {
        m_golden.style.gradientConfig.blurAmount = radius;
        EXPECT_TRUE(matchesReference(m_golden, QStringLiteral("%1-%2").arg(name).arg(radius)));
    }
    QImage preview(double scale) {
        Composition composition;
        composition.image = m_golden.screenshot.image();
        composition.config = m_golden.style;
        composition.loadedBackgroundImage = m_golden.background->image();
        return CompositionRasterizer().drawFrame(
            composition, outputFrame(pointSize(composition.image), m_golden.style), scale);
    }

    GoldenCase m_golden;
};

constexpr double radii[] = {1.0, 2.0, 5.0, 20.0, 100.0};

TEST_F(BlurredBackgrounds, OfAnImage) {
    m_golden.style.backgroundType = BackgroundType::image;
    for (const double radius : radii)
        expectMatch(radius, "blurred-image");
    m_golden.background = SmoothPicture(700, 900, 2.0, 2.9);
    expectMatch(7.0, "blurred-larger-image");
    m_golden.background = SmoothPicture(100, 80, 1.0, 2.2, true);
    for (const double radius : {1.8, 12.0})
        expectMatch(radius, "blurred-translucent-image");
}

TEST_F(BlurredBackgrounds, OfEveryGradient) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    for (const GradientStyle style : allCases<GradientStyle>()) {
        m_golden.style.gradientConfig.style = style;
        for (const double radius : {1.8, 4.0, 50.0})
            expectMatch(radius, QStringLiteral("blurred-") + rawValue(style));
    }
    m_golden.style.gradientConfig.color1 = parseHexColor(u"40ff8800");
    expectMatch(10.0, "blurred-translucent");
}

TEST_F(BlurredBackgrounds, OfColoursAfterTheyAreAdjusted) {
    m_golden.style.backgroundType = BackgroundType::color;
    m_golden.style.selectedGradient = GradientPreset{
        .colors = {parseHexColor(u"ff0000"), parseHexColor(u"00ff00"), parseHexColor(u"0000ff")},
        .angle = 60.0};
    m_golden.style.gradientConfig.saturation = 180.0;
    m_golden.style.gradientConfig.brightness = 130.0;
    for (const double radius : {1.8, 10.0})
        expectMatch(radius, "blurred-colours");
    m_golden.style.selectedSolidColor = SolidColor{.color = parseHexColor(u"cc6633")};
    expectMatch(10.0, "blurred-solid-colour");
}

TEST_F(BlurredBackgrounds, UnderATurnedAndTiltedScreenshot) {
    m_golden.style.backgroundType = BackgroundType::image;
    m_golden.style.rotation = 25.0;
    m_golden.style.rotationX = 30.0;
    m_golden.style.scale = 1.3;
    expectMatch(9.0, "blurred-tilted");
}

TEST_F(BlurredBackgrounds, AreTheSameInThePreviewAtTheSameScale) {
    for (const BackgroundType type : {BackgroundType::image, BackgroundType::gradient})
        for (const double radius : {1.0, 15.0}) {
            m_golden.style.backgroundType = type;
            m_golden.style.gradientConfig.blurAmount = radius;
            EXPECT_EQ(preview(exportScale), exported(m_golden)) << radius;
        }
}

TEST_F(BlurredBackgrounds, GetTheirGrainAfterTheBlur) {
    m_golden.style.backgroundType = BackgroundType::gradient;
    m_golden.style.gradientConfig.blurAmount = 30.0;
    const QImage plain = preview(2.0);
    m_golden.style.gradientConfig.noiseAmount = 50.0;
    const QImage grained = preview(2.0);
    int steps = 0;
    for (int x = 1; x < grained.width(); ++x)
        steps += std::abs(qGreen(grained.pixel(x, 5)) - qGreen(grained.pixel(x - 1, 5))) > 16;
    EXPECT_GT(steps, grained.width() / 4) << "neighbours differ much, as nothing blurred does";
    EXPECT_NE(grained, plain);
    EXPECT_NE(exported(m_golden), grained);
}

TEST_F(BlurredBackgrounds, AreUntouchedByRadiiThatAreNone) {
    m_golden.style.backgroundType = BackgroundType::image;
    const QImage plain = exported(m_golden);
    for (const double radius :
         {0.0, -5.0, 0.1, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity()}) {
        m_golden.style.gradientConfig.blurAmount = radius;
        EXPECT_EQ(exported(m_golden), plain) << radius;
    }
    m_golden.style.gradientConfig.blurAmount = 1e300;
    EXPECT_FALSE(exported(m_golden).isNull());
    m_golden.style.gradientConfig.blurAmount = 0;
    m_golden.style.backgroundBlur = 20;
    m_golden.style.backgroundNoise = 20;
    EXPECT_EQ(exported(m_golden), plain) << "the record's own fields";
}

TEST_F(BlurredBackgrounds, AreNotJoinedByRedactions) {
    m_golden.style.backgroundType = BackgroundType::image;
    const QImage plain = exported(m_golden);
    const QImage shown = preview(1.0);
    m_golden.style.redactEnabled = true;
    for (const RedactStyle style : {RedactStyle::blur, RedactStyle::pixelate, RedactStyle::blackBar})
        m_golden.style.redactRegions.append({.rect = {0, 0, 40, 30}, .style = style});
    EXPECT_EQ(exported(m_golden), plain);
    EXPECT_EQ(preview(1.0), shown);
}

TEST_F(BlurredBackgrounds, AreKeptWithoutADifference) {
    CompositionRasterizer rasterizer;
    for (const BackgroundType type : {BackgroundType::image, BackgroundType::gradient, BackgroundType::image})
        // Some come again and again: those are read from what is kept.
        for (const double radius : {20.0, 21.0, 20.0, 1.5, 1.5, 1.5, 1.2, 45.0})
            for (const double saturation : {100.0, 100.0, 100.0, 130.0}) {
                m_golden.style.backgroundType = type;
                m_golden.style.gradientConfig.blurAmount = radius;
                m_golden.style.gradientConfig.saturation = saturation;
                Composition composition;
                composition.image = m_golden.screenshot.image();
                composition.config = m_golden.style;
                composition.isRendering = true;
                composition.preloadedBackgroundImage = m_golden.background->image();
                EXPECT_EQ(rasterizer.drawFrame(composition,
                                               outputFrame(pointSize(composition.image), m_golden.style),
                                               exportScale),
                          exported(m_golden))
                    << radius << ", " << saturation;
            }
}

TEST_F(BlurredBackgrounds, AreTheSameBytesForAnyNumberOfThreads) {
    m_golden.style.backgroundType = BackgroundType::image;
    for (const double radius : {1.5, 20.0}) {
        m_golden.style.gradientConfig.blurAmount = radius;
        const QImage first = exported(m_golden);
        for (const int threads : {1, 2, 5}) {
            raster::setParallelThreadLimit(threads);
            EXPECT_EQ(exported(m_golden), first) << threads;
        }
        raster::setParallelThreadLimit(0);
    }
}

} // namespace
} // namespace framora::golden

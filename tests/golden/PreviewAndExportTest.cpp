#include "editor/render/CompositionRasterizer.h"
#include "editor/render/HexColor.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/ParallelFor.h"
#include "golden/GoldenComparison.h"

#include <cmath>
#include <cstring>

namespace framora::golden {
namespace {

QList<GoldenCase> someCases() {
    QList<GoldenCase> cases(5);
    for (GoldenCase& golden : cases) {
        golden.style.padding = 20.0;
        golden.style.borderRadius = 10.0;
        golden.style.gradientConfig.color1 = parseHexColor(u"f0e0d0");
        golden.style.gradientConfig.color2 = parseHexColor(u"4050c0");
    }
    cases[1].style.backgroundType = BackgroundType::gradient;
    cases[1].style.rotation = 20.0;
    cases[1].style.gradientConfig.saturation = 140.0;
    cases[2].style.backgroundType = BackgroundType::color;
    cases[2].style.mockupStyle = MockupStyle::border;
    cases[2].style.rotationX = 30.0;
    cases[2].style.rotationY = -40.0;
    cases[3].style.backgroundType = BackgroundType::gradient;
    cases[3].style.gradientConfig.style = GradientStyle::angular;
    cases[3].style.imageScale = 70.0;
    cases[4].style.selectedSocialPreset = PresetCatalogues::socialMediaPresets()[4];
    return cases;
}

/// The preview of the exported frame, in even pixels.
QImage preview(const GoldenCase& golden, double scale) {
    Composition composition;
    composition.image = golden.screenshot.image();
    composition.config = golden.style;
    composition.loadedBackgroundImage = golden.background->image();
    return CompositionRasterizer().drawFrame(composition,
                                             outputFrame(pointSize(composition.image), golden.style), scale);
}

TEST(PreviewAndExport, AtTheSameScaleTheyAreTheSamePixels) {
    int number = 0;
    for (const GoldenCase& golden : someCases()) {
        const QImage drawn = preview(golden, exportScale);
        ASSERT_FALSE(drawn.isNull());
        EXPECT_EQ(drawn, exported(golden)) << "case " << number;
        ++number;
    }
}

TEST(PreviewAndExport, TheExportHalvedIsThePreviewButForFiltering) {
    int number = 0;
    for (const GoldenCase& golden : someCases()) {
        const QImage large = exported(golden);
        const QImage small = preview(golden, 1.0);
        // A frame of an odd number of pixels has no halves; the sizes differ by the rounding alone.
        ASSERT_NEAR(small.width(), large.width() / 2.0, 1.0);
        if (large.size() != small.size() * 2) {
            ++number;
            continue;
        }
        double sum = 0.0;
        int far = 0;
        for (int y = 0; y < small.height(); ++y)
            for (int x = 0; x < small.width(); ++x) {
                double largest = 0.0;
                for (int shift = 0; shift < 32; shift += 8) {
                    const auto channel = [shift](const QImage& image, int px, int py) {
                        return double(reinterpret_cast<const quint32*>(image.constScanLine(py))[px] >> shift &
                                      255);
                    };
                    const double mean =
                        (channel(large, 2 * x, 2 * y) + channel(large, 2 * x + 1, 2 * y) +
                         channel(large, 2 * x, 2 * y + 1) + channel(large, 2 * x + 1, 2 * y + 1)) /
                        4.0;
                    const double difference = std::abs(mean - channel(small, x, y));
                    sum += difference;
                    largest = std::max(largest, difference);
                }
                far += largest >= 16.0;
            }
        const double pixels = double(small.width()) * small.height();
        EXPECT_LT(sum / (4.0 * pixels), 0.6) << "case " << number;
        EXPECT_LT(far, 0.002 * pixels) << "case " << number;
        ++number;
    }
}

TEST(PreviewAndExport, TheZoomNeverReachesTheExport) {
    GoldenCase golden = someCases()[1];
    const QImage image = golden.screenshot.image();
    const QImage plain = renderComposition(image, golden.style);
    golden.style.zoom = 37.0;
    EXPECT_EQ(renderComposition(image, golden.style), plain);
}

TEST(PreviewAndExport, ATransparentPreviewShowsSquaresOfTwelvePointsAndTheExportNone) {
    GoldenCase golden;
    golden.style.backgroundType = BackgroundType::transparent;
    golden.style.padding = 48.0;
    golden.style.imageScale = 1.0;
    const QImage seen = preview(golden, 1.0);
    const QImage out = exported(golden);
    const QRgb first = seen.pixel(6, 6);
    const QRgb second = seen.pixel(18, 6);
    EXPECT_NE(first, second);
    EXPECT_EQ(qAlpha(first), 255);
    EXPECT_EQ(qAlpha(second), 255);
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            const int x = 12 * column;
            const int y = 12 * row;
            const QRgb expected = (row + column) % 2 ? second : first;
            EXPECT_EQ(seen.pixel(x, y), expected) << column << ", " << row;
            EXPECT_EQ(seen.pixel(x + 11, y + 11), expected) << column << ", " << row;
            EXPECT_EQ(out.pixel(2 * x, 2 * y), 0u);
        }
}

TEST(PreviewAndExport, GrainIsInThePreviewOnly) {
    GoldenCase golden = someCases()[1];
    const QImage plainExport = exported(golden);
    const QImage plainPreview = preview(golden, exportScale);
    golden.style.gradientConfig.noiseAmount = 50.0;
    EXPECT_EQ(exported(golden), plainExport);
    EXPECT_NE(preview(golden, exportScale), plainPreview);
}

TEST(PreviewAndExport, DrawingAgainGivesTheSameBytesWithAnyNumberOfThreads) {
    for (const GoldenCase& golden : someCases()) {
        const QImage first = exported(golden);
        EXPECT_EQ(exported(golden), first);
        for (const int threads : {1, 2, 5}) {
            raster::setParallelThreadLimit(threads);
            EXPECT_EQ(exported(golden), first) << threads;
        }
        raster::setParallelThreadLimit(0);
    }
}

TEST(PreviewAndExport, OneRasterizerDrawsManyStylesAsNewOnesDo) {
    CompositionRasterizer rasterizer;
    for (int round = 0; round < 2; ++round)
        for (const GoldenCase& golden : someCases()) {
            Composition composition;
            composition.image = golden.screenshot.image();
            composition.config = golden.style;
            composition.isRendering = true;
            composition.preloadedBackgroundImage = golden.background->image();
            EXPECT_EQ(rasterizer.drawFrame(
                          composition, outputFrame(pointSize(composition.image), golden.style), exportScale),
                      exported(golden));
        }
}

} // namespace
} // namespace framora::golden

#include "editor/render/GlassEffectModifier.h"

#include "editor/render/CompositionRasterizer.h"
#include "editor/render/RasterView.h"
#include "editor/render/ScreenshotRenderer.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/SolidPaint.h"
#include "unit/render/TestPictures.h"

#include <cmath>
#include <gtest/gtest.h>

namespace framora {
namespace {

using raster::Homography;
using raster::Layer;

constexpr double padding = 60;
constexpr double frame = 9; // points, of the border size 6

ScreenshotStyleConfig glassStyle(BackgroundType background = BackgroundType::transparent) {
    ScreenshotStyleConfig config = bareStyle();
    config.backgroundType = background;
    config.showMockup = true;
    config.mockupStyle = MockupStyle::glassEffect;
    config.mockupBorderSize = frame / 1.5;
    config.padding = padding;
    config.borderRadius = 12;
    return config;
}

QImage drawn(const ScreenshotStyleConfig& config, double scale = 1,
             const QImage& picture = flatPicture(200, 120), const QImage& background = {}) {
    Composition composition;
    composition.image = picture;
    composition.config = config;
    composition.isRendering = true;
    composition.loadedBackgroundImage = background;
    return CompositionRasterizer().drawFrame(composition, canvasSize(pointSize(picture), config), scale);
}

ScreenshotStyleConfig solidStyle(double grey) {
    ScreenshotStyleConfig config = glassStyle(BackgroundType::color);
    config.customColor = {grey, grey, grey, 1};
    config.selectedSolidColor.reset();
    config.selectedGradient.reset();
    config.selectedMagicPreset.reset();
    return config;
}

/// A card of 80 x 60 points at two pixels a point, in the middle of 300 x 260 pixels, over `under`.
std::vector<Layer> cardOver(const GlassEffectModifier& glass, std::optional<raster::Float4> under) {
    std::vector<Layer> layers;
    raster::Placement placement{Homography::translation(150, 130) * Homography::scaling(2, 2), {}};
    if (under)
        layers.push_back(
            {{1000, 1000, 0}, {}, placement, std::make_shared<raster::SolidPaint>(*under), {}, {}});
    glass.append(layers, {QSizeF(80, 60), placement, {}}, QSize(300, 260));
    return layers;
}

QImage composed(const std::vector<Layer>& layers) {
    QImage image(300, 260, QImage::Format_ARGB32_Premultiplied);
    raster::compose(mutableRasterView(image), layers);
    return image;
}

TEST(GlassEffectModifier, LaysAShadowUnderTheMaterialAndAHairlineOverIt) {
    const auto layers = cardOver({GlassMaterial::regular, 10, 0.75}, {});
    ASSERT_EQ(layers.size(), 3u);
    EXPECT_EQ(layers[0].opacity, 1);
    EXPECT_EQ(layers[1].opacity, 0.75f) << "the opacity is the material's";
    EXPECT_EQ(layers[2].opacity, 1);
    EXPECT_EQ(layers[1].shape.radius, 10);
    EXPECT_EQ(layers[2].shape.radius, 10);
    // A stroke of one point about the outline, cut off by it.
    ASSERT_TRUE(layers[2].hole);
    EXPECT_EQ(layers[2].hole->width, layers[2].shape.width - 1);
}

TEST(GlassEffectModifier, HasAHairlineThatFadesFromThreeTenthsToOne) {
    // Alone, without corners, over black: what is white is the hairline's alpha.
    auto layers = cardOver({GlassMaterial::clear, 0, 1}, raster::premultiplied(0, 0, 0, 1));
    ASSERT_EQ(layers.size(), 4u);
    layers.erase(layers.begin() + 1, layers.begin() + 3);
    const QImage image = composed(layers);
    EXPECT_NEAR(qRed(image.pixel(70, 70)), 0.3 * 255, 1);
    EXPECT_NEAR(qRed(image.pixel(229, 189)), 0.1 * 255, 1);
    EXPECT_NEAR(qRed(image.pixel(70, 71)), qRed(image.pixel(71, 70)), 2);
    EXPECT_EQ(qRed(image.pixel(72, 72)), 0) << "half a point is one pixel";
    EXPECT_EQ(qRed(image.pixel(69, 100)), 0) << "nothing outside";
    // Half of the way along the diagonal, at both other corners' sum.
    EXPECT_NEAR(qRed(image.pixel(229, 70)) + qRed(image.pixel(70, 189)), 0.4 * 255, 2);
}

TEST(GlassEffectModifier, CastsASoftShadowFivePointsDown) {
    const QImage image = composed(cardOver({GlassMaterial::clear, 10, 1}, {}));
    const auto below = [](double x) { return 0.5 * std::erfc(-x / std::sqrt(2.0)); };
    // Beside the middle of each side, two and a half points from the card.
    const auto expected = [&](double x, double y) {
        const double across = below((40 - x) / 10) - below((-40 - x) / 10);
        const double down = below((30 - y) / 10) - below((-30 - y) / 10);
        return 0.2 * 255 * across * down;
    };
    const auto alpha = [&](double x, double y) {
        return qAlpha(image.pixel(int(std::floor(150 + 2 * x)), int(std::floor(130 + 2 * y))));
    };
    EXPECT_NEAR(alpha(0.25, 32.75), expected(0.25, 27.75), 1);
    EXPECT_NEAR(alpha(0.25, -32.25), expected(0.25, -37.25), 1);
    EXPECT_NEAR(alpha(45.25, 5.25), expected(45.25, 0.25), 1);
    EXPECT_EQ(qRed(image.pixel(150, 196)), 0);
}

TEST(GlassEffectModifier, ChangesNothingOutsideTheCardAndItsShadow) {
    const auto grey = raster::premultiplied(0.6, 0.6, 0.6, 1);
    const QImage image = composed(cardOver({GlassMaterial::thick, 10, 1}, grey));
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const bool isOutside = x < 150 - 80 - 64 || x >= 150 + 80 + 64 || y < 130 + 10 - 60 - 64;
            ASSERT_TRUE(!isOutside || image.pixel(x, y) == qRgb(153, 153, 153)) << x << "," << y;
        }
}

TEST(GlassEffectModifier, AddsNothingForACardThatCannotBe) {
    for (const QSizeF size : {QSizeF(0, 10), QSizeF(-5, 10), QSizeF(NAN, 10), QSizeF(10, INFINITY)}) {
        std::vector<Layer> layers;
        GlassEffectModifier{}.append(layers, {size, {}, {}}, QSize(20, 20));
        EXPECT_TRUE(layers.empty());
    }
    std::vector<Layer> layers;
    GlassEffectModifier{GlassMaterial::clear, NAN, 1}.append(layers, {QSizeF(10, 10), {}, {}}, QSize(20, 20));
    EXPECT_TRUE(layers.empty());
}

TEST(GlassMockup, IsPaddedByHalfOfThreeTimesTheBorderSize) {
    const QImage image = drawn(glassStyle());
    const int middle = image.height() / 2;
    const int left = (image.width() - 200) / 2;
    EXPECT_EQ(image.pixel(left, middle), qRgb(255, 0, 0));
    EXPECT_EQ(qRed(image.pixel(left - 10, middle)), 0) << "outside is only shadow";
    EXPECT_GT(qRed(image.pixel(left - 9, middle)), 30) << "the bright edge";
    EXPECT_GT(qAlpha(image.pixel(left - 1, middle)), 10);
    EXPECT_LT(qAlpha(image.pixel(left - 1, middle)), 80) << "clear where nothing lies behind";
}

TEST(GlassMockup, ShowsAFlatBackgroundUnderAFaintVeil) {
    for (const double grey : {0.0, 0.25, 0.5, 0.9, 1.0}) {
        const QImage image = drawn(solidStyle(grey), 2);
        // Where the rim ends the pane is flat.
        const int x = image.width() / 2 - 200 - 2;
        EXPECT_NEAR(qRed(image.pixel(x, image.height() / 2)), 255 * (grey * 0.93 + 0.07), 1.5) << grey;
    }
}

TEST(GlassMockup, BlursWhatLiesBehindButKeepsItsMean) {
    // Stripes of a pixel vanish, stripes of many points stay.
    QImage fine(400, 20, QImage::Format_RGB32);
    QImage coarse(2, 20, QImage::Format_RGB32);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < fine.width(); ++x)
            fine.setPixel(x, y, x % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        coarse.setPixel(0, y, qRgb(255, 0, 0));
        coarse.setPixel(1, y, qRgb(0, 0, 255));
    }
    const ScreenshotStyleConfig config = glassStyle(BackgroundType::image);
    const QImage blurred = drawn(config, 2, flatPicture(200, 120), fine);
    const int y = int(2 * (padding + 3 * 6 - 2)); // two points above the screenshot
    const int middle = blurred.width() / 2;
    for (int x = middle - 100; x < middle + 100; ++x)
        EXPECT_NEAR(qRed(blurred.pixel(x, y)), 255 * (0.5 * 0.93 + 0.07), 4) << x;
    const QImage seen = drawn(config, 2, flatPicture(200, 120), coarse);
    EXPECT_GT(qRed(seen.pixel(middle - 190, y)), qBlue(seen.pixel(middle - 190, y)) + 100);
    EXPECT_GT(qBlue(seen.pixel(middle + 190, y)), qRed(seen.pixel(middle + 190, y)) + 100);
}

TEST(GlassMockup, ShowsThroughTheTransparentCornersOfAWindow) {
    QImage window = flatPicture(200, 120);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 200; ++x)
            window.setPixel(x, y, 0);
    ScreenshotStyleConfig config = solidStyle(0.5);
    const QImage image = drawn(config, 1, window);
    EXPECT_NEAR(qRed(image.pixel(image.width() / 2, image.height() / 2 - 54)), 255 * (0.5 * 0.93 + 0.07),
                1.5);
}

TEST(GlassMockup, LooksAlikeInThePreviewAndInTheExport) {
    for (const int tilt : {0, 35}) {
        ScreenshotStyleConfig config = glassStyle(BackgroundType::gradient);
        config.rotationX = tilt;
        const QImage large = drawn(config, 2);
        const QImage small = drawn(config, 1);
        ASSERT_EQ(large.size(), small.size() * 2);
        double sum = 0;
        for (int y = 0; y < small.height(); ++y)
            for (int x = 0; x < small.width(); ++x) {
                const int mean = qGreen(large.pixel(2 * x, 2 * y)) + qGreen(large.pixel(2 * x + 1, 2 * y)) +
                                 qGreen(large.pixel(2 * x, 2 * y + 1)) +
                                 qGreen(large.pixel(2 * x + 1, 2 * y + 1));
                const double difference = std::abs(mean / 4.0 - qGreen(small.pixel(x, y)));
                sum += difference;
                ASSERT_LT(difference, 16) << x << "," << y;
            }
        EXPECT_LT(sum / (double(small.width()) * small.height()), 0.6);
    }
}

TEST(GlassMockup, HasTheSameBytesWithAnyNumberOfThreads) {
    ScreenshotStyleConfig config = glassStyle(BackgroundType::image);
    config.rotation = 15;
    config.rotationY = 30;
    const QImage background = noisePicture(300, 200);
    const QImage all = drawn(config, 2, noisePicture(200, 120), background);
    for (const int threads : {1, 3}) {
        raster::setParallelThreadLimit(threads);
        EXPECT_EQ(drawn(config, 2, noisePicture(200, 120), background), all) << threads;
    }
    raster::setParallelThreadLimit(0);
}

TEST(GlassMockup, KnowsWhatLiesBehindEverywhereInItsFrame) {
    constexpr int darkest = 185; // white under the shadow, or where the rim is shaded
    ScreenshotStyleConfig config = solidStyle(1);
    for (const double size : {1.0, 2.0, 3.0, 6.0, 12.0})
        for (const double radius : {0.0, 12.0, 60.0})
            for (const double tilt : {0.0, 35.0})
                for (const double scale : {0.5, 2.0}) {
                    SCOPED_TRACE(testing::Message()
                                 << size << ", " << radius << ", " << tilt << ", " << scale);
                    config.mockupBorderSize = size;
                    config.borderRadius = radius;
                    config.rotation = tilt / 2;
                    config.rotationX = tilt;
                    const QImage image = drawn(config, scale, flatPicture(200, 120, Qt::white));
                    int least = 255;
                    for (int y = 0; y < image.height(); ++y)
                        for (int x = 0; x < image.width(); ++x)
                            least = std::min(least, qRed(image.pixel(x, y)));
                    ASSERT_GE(least, darkest);
                }
}

TEST(GlassMockup, IsAPictureAtEverySize) {
    for (const double border : {0.0, 0.01, 1.0, 300.0, 2000.0})
        for (const double tilt : {0.0, 60.0, 89.9})
            for (const double radius : {0.0, 40.0, 5000.0}) {
                ScreenshotStyleConfig config = glassStyle(BackgroundType::gradient);
                config.mockupBorderSize = border;
                config.borderRadius = radius;
                config.rotationX = tilt;
                config.padding = 0;
                Composition composition;
                composition.image = flatPicture(1, 1);
                composition.config = config;
                EXPECT_FALSE(
                    CompositionRasterizer().draw(composition, {QSize(90, 70), 2, QPointF(45, 35)}).isNull());
            }
}

} // namespace
} // namespace framora

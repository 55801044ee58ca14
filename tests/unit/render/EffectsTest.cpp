#include "editor/render/CheckerboardView.h"
#include "editor/render/ColorAdjustmentsModifier.h"
#include "editor/render/NoiseOverlayModifier.h"
#include "editor/render/NoiseTextureView.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>

namespace framora {
namespace {

TEST(ColorAdjustmentsModifier, AddsNothingForExactlyTheNeutralValues) {
    raster::Layer layer;
    ColorAdjustmentsModifier{1.0, 0.0}.apply(layer);
    EXPECT_FALSE(layer.adjustment);
    ColorAdjustmentsModifier{1.0, 0.0001}.apply(layer);
    ASSERT_TRUE(layer.adjustment);
    EXPECT_FLOAT_EQ(layer.adjustment->brightness, 0.0001f);
    EXPECT_TRUE((ColorAdjustmentsModifier{std::nextafter(1.0, 2.0), 0.0}.isActive()));
    EXPECT_TRUE((ColorAdjustmentsModifier{0.0, 0.0}.isActive()));
    EXPECT_FALSE((ColorAdjustmentsModifier{1.0, NAN}.isActive()));
}

TEST(NoiseOverlayModifier, AddsNothingUnlessItsIntensityIsAboveZero) {
    for (const double intensity : {0.0, -0.5, double(NAN)}) {
        raster::Layer layer;
        NoiseOverlayModifier{intensity}.apply(layer, 0, 0);
        EXPECT_FALSE(layer.noise) << intensity;
    }
    raster::Layer layer;
    NoiseOverlayModifier{0.25}.apply(layer, 3, 4);
    ASSERT_TRUE(layer.noise);
    EXPECT_EQ(layer.noise->intensity, 0.25f);
}

TEST(CheckerboardShaderView, IsThePatternOfTheCheckerboardView) {
    raster::Float4 view[40];
    raster::Float4 shader[40];
    CheckerboardView{}.paint({})->shade(3, 20, 40, view);
    CheckerboardShaderView{12}.paint({})->shade(3, 20, 40, shader);
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(view[i][0], shader[i][0]) << i;
}

TEST(NoiseTextureView, IsEvenGreyWithoutIntensityAndGrainierWithMore) {
    const auto spread = [](double intensity) {
        const QImage texture = NoiseTextureView{intensity}.texture({64, 64});
        int least = 255;
        int most = 0;
        for (int y = 0; y < 64; ++y)
            for (int x = 0; x < 64; ++x) {
                const QRgb pixel = texture.pixel(x, y);
                EXPECT_TRUE(qRed(pixel) == qGreen(pixel) && qGreen(pixel) == qBlue(pixel));
                least = std::min(least, qRed(pixel));
                most = std::max(most, qRed(pixel));
            }
        EXPECT_NEAR((least + most) / 2.0, 127.5, 6.0);
        return most - least;
    };
    EXPECT_EQ(spread(0), 0);
    EXPECT_EQ(spread(-1), 0);
    EXPECT_EQ(spread(NAN), 0);
    EXPECT_NEAR(spread(0.2), 51, 4);
    EXPECT_NEAR(spread(0.8), 204, 8);
    EXPECT_TRUE(NoiseTextureView{0.5}.texture({0, 5}).isNull());
}

TEST(NoiseTextureView, LiesInSoftLightOverAPicture) {
    QImage picture(64, 64, QImage::Format_ARGB32);
    picture.fill(qRgb(200, 100, 50));
    picture.setPixelColor(0, 0, Qt::transparent);
    QImage even = picture;
    NoiseTextureView{0}.drawOver(even);
    QImage grainy = picture;
    NoiseTextureView{1}.drawOver(grainy);
    EXPECT_EQ(qAlpha(even.pixel(0, 0)), 255);
    EXPECT_NEAR(qRed(even.pixel(0, 0)), 128, 1);
    int changed = 0;
    int sum = 0;
    for (int y = 1; y < 64; ++y)
        for (int x = 0; x < 64; ++x) {
            EXPECT_NEAR(qRed(even.pixel(x, y)), 200, 1) << "half grey changes nothing";
            EXPECT_NEAR(qBlue(even.pixel(x, y)), 50, 1);
            changed += std::abs(qRed(grainy.pixel(x, y)) - 200) > 4;
            sum += qRed(grainy.pixel(x, y)) - 200;
        }
    EXPECT_GT(changed, 63 * 64 / 2);
    EXPECT_LT(std::abs(sum), 63 * 64 * 6);
}

TEST(CheckerboardView, HasTwoLightGreysInSquaresOfItsSize) {
    const auto paint = CheckerboardView{5}.paint({});
    raster::Float4 row[10];
    paint->shade(0, 0, 10, row);
    EXPECT_EQ(row[0][0], row[4][0]);
    EXPECT_EQ(row[5][0], row[9][0]);
    EXPECT_NE(row[4][0], row[5][0]);
    for (const raster::Float4& pixel : row) {
        EXPECT_GT(pixel[0], 0.75f);
        EXPECT_EQ(pixel[0], pixel[1]);
        EXPECT_EQ(pixel[1], pixel[2]);
    }
}

} // namespace
} // namespace framora

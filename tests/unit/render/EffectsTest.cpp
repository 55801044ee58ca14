#include "editor/render/CheckerboardView.h"
#include "editor/render/ColorAdjustmentsModifier.h"
#include "editor/render/NoiseOverlayModifier.h"

#include <cmath>
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

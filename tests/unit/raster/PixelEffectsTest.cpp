#include "editor/render/raster/PixelEffects.h"

#include <gtest/gtest.h>

#include <vector>

namespace framora::raster {
namespace {

TEST(AdjustColors, MixesWithTheLuma) {
    Float4 pixel = premultiplied(1, 0.5, 0, 1);
    adjustColors(&pixel, 1, 0, 0);
    const float luma = 0.2126f + 0.7152f * 0.5f;
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(pixel[i], luma, 1e-6);
    pixel = premultiplied(0.5, 0.4, 0.3, 1);
    adjustColors(&pixel, 1, 2, 0);
    const float second = 0.2126f * 0.5f + 0.7152f * 0.4f + 0.0722f * 0.3f;
    EXPECT_NEAR(pixel[2], 2 * 0.5f - second, 1e-6);
    EXPECT_NEAR(pixel[0], 2 * 0.3f - second, 1e-6);
}

TEST(AdjustColors, AddsBrightnessThenClamps) {
    Float4 pixel = premultiplied(0.9, 0.5, 0.05, 1);
    adjustColors(&pixel, 1, 1, 0.25f);
    EXPECT_FLOAT_EQ(pixel[2], 1);
    EXPECT_FLOAT_EQ(pixel[1], 0.75);
    EXPECT_FLOAT_EQ(pixel[0], 0.3f);
    adjustColors(&pixel, 1, 1, -2);
    EXPECT_FLOAT_EQ(pixel[1], 0);
    EXPECT_FLOAT_EQ(pixel[3], 1);
}

TEST(AdjustColors, WorksOnTheColourAndKeepsAlpha) {
    Float4 translucent = premultiplied(0.8, 0.2, 0.4, 0.5);
    Float4 opaque = premultiplied(0.8, 0.2, 0.4, 1);
    adjustColors(&translucent, 1, 0.3f, 0.1f);
    adjustColors(&opaque, 1, 0.3f, 0.1f);
    for (int i = 0; i < 3; ++i)
        EXPECT_NEAR(translucent[i], opaque[i] * 0.5f, 1e-6);
    EXPECT_FLOAT_EQ(translucent[3], 0.5);
}

TEST(AddNoise, DependsOnThePositionAlone) {
    std::vector<Float4> row(64, splat(0.5f));
    for (Float4& pixel : row)
        pixel[3] = 1;
    std::vector<Float4> part(row.begin(), row.begin() + 20);
    addNoise(row.data(), 64, 100, 7, 0.5f);
    addNoise(part.data(), 20, 113, 7, 0.5f);
    for (std::size_t i = 0; i < part.size(); ++i)
        EXPECT_EQ(part[i][0], row[i + 13][0]);
}

TEST(AddNoise, IsGreyCentredAndWithinItsIntensity) {
    double sum = 0;
    double squares = 0;
    constexpr int count = 200;
    for (int y = 0; y < count; ++y) {
        std::vector<Float4> row(count, Float4{0.5f, 0.5f, 0.5f, 1});
        addNoise(row.data(), count, -50, y - 50, 0.4f);
        for (const Float4& pixel : row) {
            EXPECT_EQ(pixel[0], pixel[1]);
            EXPECT_EQ(pixel[1], pixel[2]);
            EXPECT_EQ(pixel[3], 1);
            EXPECT_LE(std::abs(pixel[0] - 0.5f), 0.2f);
            sum += pixel[0] - 0.5;
            squares += (pixel[0] - 0.5) * (pixel[0] - 0.5);
        }
    }
    // An even distribution over +-0.2: mean 0, variance 0.4^2 / 12.
    EXPECT_NEAR(sum / (count * count), 0, 0.003);
    EXPECT_NEAR(squares / (count * count), 0.16 / 12, 0.0007);
}

TEST(AddNoise, LeavesClearPixelsClear) {
    Float4 pixel = splat(0);
    addNoise(&pixel, 1, 3, 3, 1);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(pixel[i], 0);
}

} // namespace
} // namespace framora::raster

#include "editor/render/raster/EffectKernels.h"

#include "editor/render/raster/PixelEffects.h"
#include "unit/raster/EachTarget.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

std::vector<MixPixel> randomPixels(std::mt19937& random, std::size_t count) {
    std::vector<MixPixel> pixels(count);
    for (MixPixel& pixel : pixels) {
        const auto alpha = std::int16_t(random() % 3 == 0 ? mixOne : int(random() % unsigned(mixOne + 1)));
        const auto below = [&] { return std::int16_t(random() % unsigned(alpha + 1)); };
        pixel = {{below(), below(), below(), alpha}};
    }
    return pixels;
}

constexpr float saturations[] = {0, 0.5f, 1, 1.7f, 2, 3};
constexpr float brightnesses[] = {-1, -0.3f, 0, 0.2f, 1};

TEST(EffectKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(21);
        for (std::size_t count = 0; count < 40; ++count)
            for (const float saturation : saturations)
                for (const float brightness : brightnesses) {
                    auto fast = randomPixels(random, count);
                    auto slow = fast;
                    adjustPixels(fast.data(), count, saturation, brightness);
                    plain::adjustPixels(slow.data(), count, saturation, brightness);
                    ASSERT_EQ(fast, slow) << target << ", " << count << " pixels";
                }
    });
}

TEST(EffectKernels, GrainIsItsPlainTwinOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(23);
        for (std::size_t count = 0; count < 40; ++count)
            for (const float intensity : {0.0f, 0.3f, 1.0f}) {
                auto fast = randomPixels(random, count);
                auto slow = fast;
                grainPixels(fast.data(), count, -11, 5, intensity);
                plain::grainPixels(slow.data(), count, -11, 5, intensity);
                ASSERT_EQ(fast, slow) << target << ", " << count << " pixels";
            }
    });
}

TEST(EffectKernels, GrainAsTheFloatsDo) {
    std::mt19937 random(24);
    for (const float intensity : {0.1f, 0.5f, 1.0f}) {
        auto pixels = randomPixels(random, 300);
        std::vector<Float4> floats;
        for (const MixPixel& pixel : pixels)
            floats.push_back(Float4{float(pixel.channel[0]), float(pixel.channel[1]), float(pixel.channel[2]),
                                    float(pixel.channel[3])} /
                             splat(float(mixOne)));
        grainPixels(pixels.data(), pixels.size(), 4, -9, intensity);
        addNoise(floats.data(), int(floats.size()), 4, -9, intensity);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(pixels[i].channel[c], floats[i][c] * mixOne, mixStep / 10) << intensity;
    }
}

TEST(EffectKernels, AdjustAsTheFloatsDo) {
    std::mt19937 random(22);
    for (const float saturation : saturations)
        for (const float brightness : brightnesses) {
            auto pixels = randomPixels(random, 300);
            std::vector<Float4> floats;
            for (const MixPixel& pixel : pixels)
                floats.push_back(Float4{float(pixel.channel[0]), float(pixel.channel[1]),
                                        float(pixel.channel[2]), float(pixel.channel[3])} /
                                 splat(float(mixOne)));
            adjustPixels(pixels.data(), pixels.size(), saturation, brightness);
            adjustColors(floats.data(), int(floats.size()), saturation, brightness);
            for (std::size_t i = 0; i < pixels.size(); ++i)
                for (int c = 0; c < 4; ++c)
                    ASSERT_NEAR(pixels[i].channel[c], floats[i][c] * mixOne, mixStep / 10)
                        << saturation << ", " << brightness;
        }
}

} // namespace
} // namespace framora::raster

#include "editor/render/raster/GlassKernels.h"

#include "editor/render/raster/MixKernels.h"
#include "unit/raster/EachTarget.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

/// Channels of 0...most, the ends among them more often than others.
std::vector<MixPixel> randomPixels(std::mt19937& random, std::size_t count, int most) {
    std::vector<MixPixel> pixels(count);
    for (MixPixel& pixel : pixels)
        for (std::int16_t& channel : pixel.channel) {
            const unsigned kind = unsigned(random() % 8u);
            channel = std::int16_t(kind == 0 ? 0 : kind == 1 ? most : int(random() % unsigned(most + 1)));
        }
    return pixels;
}

TEST(GlassKernels, MeanAsTheirPlainTwinOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(7);
        for (std::size_t count = 0; count < 40; ++count) {
            const auto upper = randomPixels(random, 2 * count, mixOne);
            const auto lower = randomPixels(random, 2 * count, mixOne);
            auto fast = randomPixels(random, count + 1, mixOne); // the last one must stay
            auto slow = fast;
            meansOfFour(upper.data(), lower.data(), count, fast.data());
            plain::meansOfFour(upper.data(), lower.data(), count, slow.data());
            EXPECT_EQ(fast, slow) << target << ", " << count;
        }
    });
}

TEST(GlassKernels, InterpolateAsTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(8);
        for (std::size_t count = 0; count < 40; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count);
            const auto from = randomPixels(random, count, mixOne);
            const auto to = randomPixels(random, count, mixOne);
            const auto parts = randomPixels(random, count, coverageOne);
            auto fast = randomPixels(random, count + 1, mixOne); // the last one must stay
            auto slow = fast;
            interpolate(from.data(), to.data(), parts.data(), count, fast.data());
            plain::interpolate(from.data(), to.data(), parts.data(), count, slow.data());
            EXPECT_EQ(fast, slow);
            for (const std::int16_t part : std::initializer_list<std::int16_t>{0, 1, 16384, coverageOne}) {
                interpolate(from.data(), to.data(), part, count, fast.data());
                plain::interpolate(from.data(), to.data(), part, count, slow.data());
                EXPECT_EQ(fast, slow) << part;
            }
        }
    });
}

TEST(GlassKernels, ReachBothEndsAndKeepAPlainSurface) {
    const std::vector<MixPixel> dark(9, MixPixel{{0, 7, 300, mixOne}});
    const std::vector<MixPixel> light(9, MixPixel{{mixOne, 8, 9000, mixOne}});
    std::vector<MixPixel> out(9);
    interpolate(dark.data(), light.data(), std::int16_t(0), out.size(), out.data());
    EXPECT_EQ(out, dark);
    interpolate(dark.data(), dark.data(), std::int16_t(12345), out.size(), out.data());
    EXPECT_EQ(out, dark);
    interpolate(dark.data(), light.data(), std::int16_t(coverageOne), out.size(), out.data());
    for (int c = 0; c < 4; ++c)
        EXPECT_NEAR(out[0].channel[c], light[0].channel[c], 1);
    meansOfFour(light.data(), light.data(), 4, out.data());
    EXPECT_EQ(out[0], light[0]);
}

} // namespace
} // namespace framora::raster

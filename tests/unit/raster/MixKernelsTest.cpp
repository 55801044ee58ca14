#include "editor/render/raster/MixKernels.h"

#include "editor/render/raster/SharedEdge.h"
#include "unit/raster/EachTarget.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

/// Valid pixels, among them many that are nothing, opaque or full.
std::vector<MixPixel> randomPixels(std::mt19937& random, std::size_t count) {
    const auto below = [&](int limit) {
        const int pick = int(random() % 4);
        return std::int16_t(pick == 0 ? 0 : pick == 1 ? limit : int(random() % unsigned(limit + 1)));
    };
    std::vector<MixPixel> pixels(count);
    for (MixPixel& pixel : pixels) {
        const std::int16_t alpha = below(mixOne);
        pixel = {{below(alpha), below(alpha), below(alpha), alpha}};
    }
    return pixels;
}

std::vector<MixPixel> randomCoverage(std::mt19937& random, std::size_t count) {
    std::vector<MixPixel> coverage(count);
    for (MixPixel& pixel : coverage) {
        const int pick = int(random() % 4);
        const auto value = std::int16_t(pick == 0 ? 0 : pick == 1 ? coverageOne : int(random() % 32768u));
        pixel = {{value, value, value, value}};
    }
    return coverage;
}

TEST(MixKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(7);
        for (std::size_t count = 0; count < 70; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            const auto over = randomPixels(random, count);
            const auto coverage = randomCoverage(random, count);
            const auto under = randomPixels(random, count + 1); // the last one must stay
            const auto same = [&](const auto& fast, const auto& slow) {
                auto a = under;
                auto b = under;
                fast(a);
                slow(b);
                EXPECT_EQ(a, b);
                EXPECT_EQ(a.back(), under.back());
            };
            same([&](auto& p) { blendOver(p.data(), over.data(), count); },
                 [&](auto& p) { plain::blendOver(p.data(), over.data(), count); });
            same([&](auto& p) { blendOver(p.data(), over.data(), coverage.data(), count); },
                 [&](auto& p) { plain::blendOver(p.data(), over.data(), coverage.data(), count); });
            same([&](auto& p) { blendOverlay(p.data(), over.data(), coverage.data(), count); },
                 [&](auto& p) { plain::blendOverlay(p.data(), over.data(), coverage.data(), count); });
            const auto even = std::int16_t(count % 3 == 0 ? coverageOne : int(random() % 32768u));
            same([&](auto& p) { blendOver(p.data(), over.data(), even, count); },
                 [&](auto& p) { plain::blendOver(p.data(), over.data(), even, count); });
            same([&](auto& p) { blendOverlay(p.data(), over.data(), even, count); },
                 [&](auto& p) { plain::blendOverlay(p.data(), over.data(), even, count); });
            same([&](auto& p) { blendInstead(p.data(), over.data(), coverage.data(), count); },
                 [&](auto& p) { plain::blendInstead(p.data(), over.data(), coverage.data(), count); });
            std::vector<MixPixel> blacks = over;
            for (MixPixel& pixel : blacks)
                pixel = {{0, 0, 0, pixel.channel[3]}};
            std::vector<MixPixel> offsets;
            for (int i = 0; i < 8; ++i)
                offsets.push_back({{0, 0, 0, std::int16_t(int(random() % 95u) - 47)}});
            same([&](auto& p) { ditherAlphas(blacks.data(), offsets.data(), count, p.data()); },
                 [&](auto& p) { plain::ditherAlphas(blacks.data(), offsets.data(), count, p.data()); });
            std::vector<std::uint32_t> fast(count + 1, 0x12345678u);
            std::vector<std::uint32_t> slow = fast;
            packPixels(over.data(), count, fast.data());
            plain::packPixels(over.data(), count, slow.data());
            EXPECT_EQ(fast, slow);
            std::vector<std::uint32_t> streamed(count + 3, 0x12345678u);
            for (std::size_t start = 0; start < 3; ++start) {
                streamPixels(over.data(), count, streamed.data() + start);
                flushPixels();
                EXPECT_TRUE(
                    std::equal(slow.begin(), slow.end() - 1, streamed.begin() + std::ptrdiff_t(start)));
                EXPECT_EQ(streamed[count + start], 0x12345678u) << "what lies behind";
            }
        }
    });
}

TEST(MixKernels, KeepColoursWithinAlpha) {
    std::mt19937 random(8);
    auto under = randomPixels(random, 5000);
    blendOver(under.data(), randomPixels(random, 5000).data(), randomCoverage(random, 5000).data(), 5000);
    std::vector<std::uint32_t> pixels(5000);
    packPixels(under.data(), 5000, pixels.data());
    for (const std::uint32_t pixel : pixels)
        for (int shift = 0; shift < 24; shift += 8)
            ASSERT_LE(pixel >> shift & 255, pixel >> 24);
}

TEST(MixKernels, OverlayByTheFormulaWithColoursWithinAlpha) {
    std::mt19937 random(9);
    constexpr std::size_t count = 5000;
    const auto under = randomPixels(random, count);
    const auto over = randomPixels(random, count);
    auto mixed = under;
    blendOverlay(mixed.data(), over.data(), std::int16_t(coverageOne), count);
    const auto toFloats = [](const MixPixel& pixel) {
        return Float4{float(pixel.channel[0]), float(pixel.channel[1]), float(pixel.channel[2]),
                      float(pixel.channel[3])} *
               splat(1.0f / mixOne);
    };
    for (std::size_t i = 0; i < count; ++i) {
        const Float4 expected = overlaid(toFloats(under[i]), toFloats(over[i]));
        for (int c = 0; c < 4; ++c) {
            ASSERT_NEAR(mixed[i].channel[c], expected[c] * mixOne, 5) << i;
            ASSERT_LE(mixed[i].channel[c], mixed[i].channel[3]) << i;
            ASSERT_GE(mixed[i].channel[c], 0) << i;
        }
    }
}

TEST(MixKernels, PackWholeStepsAsTheyAre) {
    for (int value = 0; value < 256; ++value) {
        const auto channel = std::int16_t(value * mixStep);
        const MixPixel pixel{{channel, channel, channel, mixOne}};
        std::uint32_t packed = 0;
        packPixels(&pixel, 1, &packed);
        EXPECT_EQ(packed, 0xff000000u | std::uint32_t(value) * 0x010101u);
    }
}

} // namespace
} // namespace framora::raster

#include "editor/render/raster/SceneKernels.h"

#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"
#include "unit/raster/EachTarget.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

int below(std::mt19937& random, int limit) {
    const auto pick = random() % 4;
    return pick == 0 ? 0 : pick == 1 ? limit : int(random() % unsigned(limit + 1));
}

std::vector<MixPixel> randomPixels(std::mt19937& random, std::size_t count, bool isOpaque) {
    std::vector<MixPixel> pixels(count);
    for (MixPixel& pixel : pixels) {
        const int alpha = isOpaque ? mixOne : below(random, mixOne);
        for (int c = 0; c < 3; ++c)
            pixel.channel[c] = std::int16_t(below(random, alpha));
        pixel.channel[3] = std::int16_t(alpha);
    }
    return pixels;
}

/// A row of any tint under any stripes, at a third of their opacity.
struct RandomScene {
    RandomScene(std::mt19937& random, std::size_t count) : dither(Dither::period) {
        for (std::size_t i = 0; i < count; ++i) {
            const int alpha = below(random, coverageOne / 3);
            MixPixel color;
            for (int c = 0; c < 3; ++c)
                color.channel[c] = std::int16_t(2 * below(random, alpha) - alpha);
            color.channel[3] = std::int16_t(alpha);
            tint.push_back(color);
            stripes.push_back(std::int16_t(below(random, coverageOne)));
        }
        stripes.resize(count + SceneRow::stripesSlack);
    }
    SceneRow row() const { return {tint.data(), stripes.data(), coverageOne / 3, dither.data()}; }

    std::vector<MixPixel> tint;
    std::vector<std::int16_t> stripes;
    std::vector<MixPixel> dither;
};

TEST(SceneKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(11);
        for (std::size_t count = 0; count < 130; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            RandomScene scene(random, count);
            std::copy_n(Dither::row(int(count) % 8, int(count) / 8), Dither::period, scene.dither.begin());
            for (const bool isOpaque : {false, true}) {
                const auto under = randomPixels(random, count + 1, isOpaque); // the last one must stay
                auto fast = under;
                auto slow = under;
                overlayScene(scene.row(), count, fast.data());
                plain::overlayScene(scene.row(), count, slow.data());
                EXPECT_EQ(fast, slow);
                EXPECT_EQ(fast.back(), under.back());
                paintScene(scene.row(), count, fast.data());
                plain::paintScene(scene.row(), count, slow.data());
                EXPECT_EQ(fast, slow);
                EXPECT_EQ(fast.back(), under.back());
            }
        }
    });
}

TEST(SceneKernels, OverlayWhatTheyPaint) {
    std::mt19937 random(12);
    constexpr std::size_t count = 4000;
    const RandomScene scene(random, count);
    std::vector<MixPixel> painted(count);
    paintScene(scene.row(), count, painted.data());
    for (const bool isOpaque : {false, true}) {
        auto mixed = randomPixels(random, count, isOpaque);
        auto expected = mixed;
        overlayScene(scene.row(), count, mixed.data());
        blendOverlay(expected.data(), painted.data(), std::int16_t(coverageOne), count);
        for (std::size_t i = 0; i < count; ++i)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(mixed[i].channel[c], expected[i].channel[c], 4) << i;
    }
}

TEST(SceneKernels, LeaveColoursWithinAlphaAndOpaquePixelsOpaque) {
    std::mt19937 random(13);
    constexpr std::size_t count = 4000;
    RandomScene scene(random, count);
    std::copy_n(Dither::row(3, 5), Dither::period, scene.dither.begin());
    for (const bool isOpaque : {false, true}) {
        auto mixed = randomPixels(random, count, isOpaque);
        overlayScene(scene.row(), count, mixed.data());
        for (const MixPixel& pixel : mixed) {
            for (int c = 0; c < 3; ++c) {
                ASSERT_GE(pixel.channel[c], 0);
                ASSERT_LE(pixel.channel[c], pixel.channel[3]);
            }
            ASSERT_LE(pixel.channel[3], mixOne);
            ASSERT_TRUE(!isOpaque || pixel.channel[3] == mixOne);
        }
    }
}

} // namespace
} // namespace framora::raster

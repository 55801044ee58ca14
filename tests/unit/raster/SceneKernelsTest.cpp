#include "editor/render/raster/SceneKernels.h"

#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/PixelBuffer.h"
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

/// Rows of any tint under stripes that run down to the right, at a third of their opacity.
struct RandomScene {
    static constexpr std::int16_t opacity = coverageOne / 3;

    RandomScene(std::mt19937& random, std::size_t width, int height, bool isDithered) {
        for (std::size_t i = 0; i < width * std::size_t(height); ++i) {
            const int alpha = below(random, coverageOne / 3);
            MixPixel color;
            for (int c = 0; c < 3; ++c)
                color.channel[c] = std::int16_t(2 * below(random, alpha) - alpha);
            color.channel[3] = std::int16_t(alpha);
            m_tint.push_back(color);
        }
        // Some all alike, some not.
        while (m_stripes.size() < width + std::size_t(height)) {
            const int stripe = -below(random, -SceneRow::covered);
            m_stripes.insert(m_stripes.end(), std::size_t(below(random, 60)), std::int16_t(stripe));
        }
        m_stripes.resize(m_stripes.size() + SceneRow::stripesSlack);
        for (std::size_t i = 0; i < m_stripes.size(); ++i)
            m_alike.push_back(alike(i, i > 0 ? m_alike.back() : 0));
        for (int y = 0; y < height; ++y) {
            const std::size_t diagonal = std::size_t(height - y);
            m_rows.push_back({m_tint.data() + width * std::size_t(y), m_stripes.data() + diagonal,
                              isDithered ? Dither::row(height % 8, y) : m_nothing.data(),
                              m_alike.data() + diagonal});
        }
    }
    RandomScene(const RandomScene&) = delete;

    const SceneRow& row() const { return m_rows.front(); }
    const SceneRow* rows() const { return m_rows.data(); }

private:
    std::uint8_t alike(std::size_t i, int before) const {
        const std::int16_t here = m_stripes[i];
        if (i + SceneRow::strip > m_stripes.size() || (here != 0 && here != SceneRow::covered))
            return 0;
        for (std::size_t k = 1; k < SceneRow::strip; ++k)
            if (m_stripes[i + k] != here)
                return 0;
        return std::uint8_t(i > 0 && m_stripes[i - 1] == here ? std::min(before + 1, 255) : 1);
    }

    const std::vector<MixPixel> m_nothing = std::vector<MixPixel>(Dither::period);
    std::vector<MixPixel> m_tint;
    std::vector<std::int16_t> m_stripes;
    std::vector<std::uint8_t> m_alike;
    std::vector<SceneRow> m_rows;
};

TEST(SceneKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(11);
        for (std::size_t width = 0; width < 130; ++width) {
            const int height = 1 + int(width % 17);
            SCOPED_TRACE(testing::Message() << target << ", " << width << " x " << height << " pixels");
            const RandomScene scene(random, width, height, true);
            const std::size_t stride = width + 3; // what lies between the rows must stay
            for (const bool isOpaque : {false, true}) {
                auto under = randomPixels(random, stride * std::size_t(height), isOpaque);
                // One that is not among some that are.
                under[under.size() / 2].channel[3] = std::int16_t(mixOne - 1);
                for (int c = 0; c < 3; ++c)
                    under[under.size() / 2].channel[c] /= 2;
                auto fast = under;
                auto slow = under;
                overlayScene(scene.rows(), height, RandomScene::opacity, width, fast.data(),
                             std::ptrdiff_t(stride));
                plain::overlayScene(scene.rows(), height, RandomScene::opacity, width, slow.data(),
                                    std::ptrdiff_t(stride));
                EXPECT_EQ(fast, slow);
                for (std::size_t i = width; i < under.size(); i += i % stride + 1 < stride ? 1 : width + 1)
                    ASSERT_EQ(fast[i], under[i]);
                paintScene(scene.row(), RandomScene::opacity, width, fast.data());
                plain::paintScene(scene.row(), RandomScene::opacity, width, slow.data());
                EXPECT_EQ(fast, slow);
            }
        }
    });
}

TEST(SceneKernels, DrawWhatTheyOverlay) {
    forEachTarget([](const char* target) {
        std::mt19937 random(14);
        for (std::size_t width = 1; width < 130; ++width) {
            const int height = 1 + int(width % 17);
            const RandomScene scene(random, width, height, true);
            const std::size_t stride = width + 3;
            for (const bool isOpaque : {false, true})
                for (const Storing storing : {Storing::cached, Storing::streamed}) {
                    SCOPED_TRACE(testing::Message() << target << ", " << width << " x " << height);
                    const auto under = randomPixels(random, stride * std::size_t(height), isOpaque);
                    auto mixed = under;
                    overlayScene(scene.rows(), height, RandomScene::opacity, width, mixed.data(),
                                 std::ptrdiff_t(stride));
                    PixelBuffer fast = PixelBuffer::create(int(width) + 1, height); // the last one must stay
                    PixelBuffer slow = PixelBuffer::create(int(width) + 1, height);
                    const auto rowsOf = [&](PixelBuffer& buffer) {
                        for (int y = 0; y < height; ++y)
                            buffer.mutableView().row(y)[width] = 0x12345678u;
                        MutablePixelView rows = buffer.mutableView();
                        rows.width = int(width);
                        return rows;
                    };
                    const MixRows rows{under.data(), std::ptrdiff_t(stride), isOpaque};
                    drawScene(scene.rows(), RandomScene::opacity, rows, rowsOf(fast), storing);
                    flushPixels();
                    plain::drawScene(scene.rows(), RandomScene::opacity, rows, rowsOf(slow));
                    for (int y = 0; y < height; ++y) {
                        std::vector<std::uint32_t> expected(width + 1, 0x12345678u);
                        packPixels(mixed.data() + stride * std::size_t(y), width, expected.data());
                        const std::uint32_t* row = fast.view().row(y);
                        ASSERT_EQ(std::vector<std::uint32_t>(row, row + width + 1), expected) << "row " << y;
                        row = slow.view().row(y);
                        ASSERT_EQ(std::vector<std::uint32_t>(row, row + width + 1), expected) << "row " << y;
                    }
                }
        }
    });
}

TEST(SceneKernels, OverlayWhatTheyPaint) {
    std::mt19937 random(12);
    constexpr std::size_t count = 4000;
    const RandomScene scene(random, count, 1, false);
    std::vector<MixPixel> painted(count);
    paintScene(scene.row(), RandomScene::opacity, count, painted.data());
    for (const bool isOpaque : {false, true}) {
        auto mixed = randomPixels(random, count, isOpaque);
        auto expected = mixed;
        overlayScene(scene.rows(), 1, RandomScene::opacity, count, mixed.data(), 0);
        blendOverlay(expected.data(), painted.data(), std::int16_t(coverageOne), count);
        for (std::size_t i = 0; i < count; ++i)
            for (int c = 0; c < 4; ++c)
                ASSERT_NEAR(mixed[i].channel[c], expected[i].channel[c], 4) << i;
    }
}

TEST(SceneKernels, LeaveColoursWithinAlphaAndOpaquePixelsOpaque) {
    std::mt19937 random(13);
    constexpr std::size_t count = 4000;
    const RandomScene scene(random, count, 1, true);
    for (const bool isOpaque : {false, true}) {
        auto mixed = randomPixels(random, count, isOpaque);
        overlayScene(scene.rows(), 1, RandomScene::opacity, count, mixed.data(), 0);
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

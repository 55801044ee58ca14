#include "editor/render/raster/ResampleKernels.h"

#include "unit/raster/EachTarget.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

std::vector<std::uint32_t> randomPicture(std::mt19937& random, std::size_t count) {
    std::vector<std::uint32_t> pixels(count);
    for (std::uint32_t& pixel : pixels) {
        // Black and white edges swing the cubic furthest.
        pixel = random() % 3 == 0 ? 0xffffffffu : random() % 2 == 0 ? 0xff000000u : std::uint32_t(random());
    }
    return pixels;
}

TEST(ResampleKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(3);
        for (const double step : {0.1, 0.5, 0.93, 1.0, 1.7, 3.3, 9.0})
            for (const int count : {1, 2, 3, 7, 8, 9, 31, 64, 129}) {
                SCOPED_TRACE(testing::Message() << target << ", step " << step << ", " << count << " pixels");
                constexpr int size = 300;
                FixedTaps taps(ResampleKernel(step, -3.3, size, 5, 5 + count), 5, 5 + count);
                taps.spreadWeights();
                std::vector<std::vector<std::uint32_t>> rows;
                std::vector<const std::uint32_t*> pointers;
                for (int i = 0; i < taps.taps(); ++i)
                    rows.push_back(randomPicture(random, std::size_t(count)));
                for (const auto& row : rows)
                    pointers.push_back(row.data());
                std::vector<MixPixel> fast(std::size_t(count) + 1, MixPixel{{1, 2, 3, 4}});
                std::vector<MixPixel> slow = fast;
                weighRows(pointers.data(), taps.weights(count / 2), taps.taps(), std::size_t(count),
                          fast.data());
                plain::weighRows(pointers.data(), taps.weights(count / 2), taps.taps(), std::size_t(count),
                                 slow.data());
                EXPECT_EQ(fast, slow);

                const FixedTaps::Span span = taps.span(0, count);
                const auto pixels = randomPicture(random, std::size_t(span.end - span.first) + 64);
                std::vector<MixPixel> source(pixels.size());
                const std::uint32_t* row = pixels.data();
                const std::int16_t one = FixedTaps::one;
                plain::weighRows(&row, &one, 1, pixels.size(), source.data());
                for (const Alpha alpha : {Alpha::any, Alpha::opaque}) {
                    weighColumns(source.data(), taps, 0, count, alpha, fast.data());
                    plain::weighColumns(source.data(), taps, 0, count, alpha, slow.data());
                    EXPECT_EQ(fast, slow);
                }
            }
    });
}

TEST(ResampleKernels, KeepAPlainSurface) {
    for (const double step : {0.21, 0.5, 1.9, 7.3}) {
        constexpr int count = 40;
        FixedTaps taps(ResampleKernel(step, 0.37, 500, 0, count), 0, count);
        taps.spreadWeights();
        const std::vector<std::uint32_t> pixels(600, 0xff8040c0u);
        const std::vector<const std::uint32_t*> rows(std::size_t(taps.taps()), pixels.data());
        std::vector<MixPixel> mixed(600);
        weighRows(rows.data(), taps.weights(7), taps.taps(), pixels.size(), mixed.data());
        std::vector<MixPixel> out(count);
        for (const Alpha alpha : {Alpha::any, Alpha::opaque}) {
            weighColumns(mixed.data(), taps, 0, count, alpha, out.data());
            for (const MixPixel& pixel : out) {
                const int expected[4] = {0xc0, 0x40, 0x80, 0xff};
                for (int c = 0; c < 4; ++c)
                    EXPECT_NEAR(pixel.channel[c], expected[c] * mixStep, mixStep / 4) << "step " << step;
                if (alpha == Alpha::opaque) {
                    EXPECT_EQ(pixel.channel[3], mixOne);
                }
            }
        }
    }
}

} // namespace
} // namespace framora::raster

#include "editor/render/raster/ResampleKernels.h"

#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/PixelBuffer.h"
#include "unit/raster/EachTarget.h"

#include <algorithm>
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

/// Some columns of a buffer.
MutablePixelView part(PixelBuffer& buffer, int first, int count) {
    const MutablePixelView all = buffer.mutableView();
    return {reinterpret_cast<std::byte*>(all.row(0) + first), count, all.height, all.stride};
}

/// Rows of pixels being mixed, with room between them.
struct Mixed {
    Mixed(int width, int height, int room)
        : pixels(std::size_t((width + room) * height), MixPixel{{1, 2, 3, 4}}), block{
                                                                                    pixels.data(),
                                                                                    std::size_t(width + room),
                                                                                    width, height} {}

    std::vector<MixPixel> pixels;
    MixBlock block;
};

TEST(ResampleKernels, WeighRowsAsTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(3);
        for (const double step : {0.1, 0.5, 0.93, 1.0, 1.2, 1.7, 3.3, 6.0, 9.0})
            for (const int width : {1, 2, 3, 7, 8, 9, 16, 31, 64, 75})
                for (const int first : {0, 40, 100}) {
                    SCOPED_TRACE(testing::Message() << target << ", step " << step << ", " << width
                                                    << " pixels, from row " << first);
                    constexpr int height = 50; // above the first outputs and below the last ones too
                    constexpr int rows = 17;
                    const std::size_t stride = std::size_t(width) + 3;
                    const auto pixels = randomPicture(random, stride * height);
                    const PixelView picture{reinterpret_cast<const std::byte*>(pixels.data()), width + 2,
                                            height, std::ptrdiff_t(stride * sizeof(pixels[0]))};
                    const FixedTaps taps(ResampleKernel(step, -1.3, height, 0, 117), 0, 117);
                    const Mixed fast(width, rows, 5);
                    const Mixed slow(width, rows, 5);
                    weighRows(picture, 2, taps, first, fast.block);
                    plain::weighRows(picture, 2, taps, first, slow.block);
                    EXPECT_EQ(fast.pixels, slow.pixels);
                }
    });
}

TEST(ResampleKernels, WeighAndPackColumnsAsTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(3);
        for (const double step : {0.1, 0.5, 0.53, 0.93, 1.0, 1.2, 1.7, 1.95, 2.0, 2.4, 2.9, 3.3, 9.0})
            for (const int count : {1, 2, 3, 7, 8, 9, 31, 64, 129})
                for (const int first : {0, 1, 20, 171}) {
                    SCOPED_TRACE(testing::Message()
                                 << target << ", step " << step << ", " << count << " pixels from " << first);
                    constexpr int size = 150;
                    constexpr int height = 3;
                    constexpr int outputs = 300;
                    FixedTaps taps(ResampleKernel(step, -3.3, size, 0, outputs), 0, outputs);
                    taps.spreadWeights();
                    const FixedTaps::Span span = taps.span(first, count);
                    const int width = span.end - span.first;
                    const auto pixels = randomPicture(random, std::size_t(width) * height);
                    const Mixed source(width, height, taps.paddedTaps() + int(filterSlack));
                    for (int y = 0; y < height; ++y)
                        widenRow(pixels.data() + std::ptrdiff_t(y) * width, std::size_t(width),
                                 source.block.row(y));
                    for (const Alpha alpha : {Alpha::any, Alpha::opaque}) {
                        const Mixed fast(count, height, 5);
                        const Mixed slow(count, height, 5);
                        weighColumns(source.block, taps, first, alpha, fast.block);
                        plain::weighColumns(source.block, taps, first, alpha, slow.block);
                        EXPECT_EQ(fast.pixels, slow.pixels);
                    }
                    // Rows as lines of the cache want them, and one pixel beside.
                    PixelBuffer expected = PixelBuffer::create(256, height);
                    plain::packColumns(source.block, taps, first, part(expected, 0, count));
                    for (const Storing storing : {Storing::cached, Storing::streamed})
                        for (const int beside : {0, 1}) {
                            PixelBuffer packed = PixelBuffer::create(256, height);
                            for (int y = 0; y < height; ++y)
                                packed.mutableView().row(y)[beside + count] = 0;
                            packColumns(source.block, taps, first, part(packed, beside, count), storing);
                            flushPixels();
                            for (int y = 0; y < height; ++y) {
                                const std::uint32_t* row = packed.view().row(y);
                                EXPECT_TRUE(
                                    std::equal(row + beside, row + beside + count, expected.view().row(y)));
                                EXPECT_EQ(row[beside + count], 0u) << "what lies behind";
                            }
                        }
                }
    });
}

TEST(ResampleKernels, KeepAPlainSurface) {
    for (const double step : {0.21, 0.5, 1.9, 7.3}) {
        constexpr int count = 40;
        constexpr int height = 30;
        FixedTaps taps(ResampleKernel(step, 0.37, 500, 0, count), 0, count);
        taps.spreadWeights();
        const FixedTaps rows(ResampleKernel(step, 0.37, height, 0, 9), 0, 9);
        const std::vector<std::uint32_t> pixels(600 * height, 0xff8040c0u);
        const PixelView picture{reinterpret_cast<const std::byte*>(pixels.data()), 600, height, 600 * 4};
        const Mixed mixed(600, 2, 0);
        weighRows(picture, 0, rows, 7, mixed.block);
        for (const Alpha alpha : {Alpha::any, Alpha::opaque}) {
            const Mixed out(count, 2, 0);
            weighColumns(mixed.block, taps, 0, alpha, out.block);
            for (const MixPixel& pixel : out.pixels) {
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

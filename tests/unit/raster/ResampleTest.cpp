#include "editor/render/raster/Resample.h"

#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/ResampleKernel.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace framora::raster {
namespace {

PixelBuffer makeNoise(int width, int height) {
    PixelBuffer picture = PixelBuffer::create(width, height);
    std::mt19937 random(5);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            picture.mutableView().row(y)[x] = std::uint32_t(random()) | 0xff000000u;
    return picture;
}

PixelBuffer resampled(const PixelBuffer& picture, int width, int height) {
    PixelBuffer result = PixelBuffer::create(width, height);
    resample(picture.view(), result.mutableView());
    return result;
}

TEST(Resample, CopiesOneToOneBitForBit) {
    const PixelBuffer picture = makeNoise(61, 47);
    const PixelBuffer copy = resampled(picture, 61, 47);
    for (int y = 0; y < 47; ++y)
        for (int x = 0; x < 61; ++x)
            ASSERT_EQ(copy.view().row(y)[x], picture.view().row(y)[x]);
}

TEST(Resample, KeepsAFlatPictureFlatAtEverySize) {
    PixelBuffer picture = PixelBuffer::create(37, 23);
    for (int y = 0; y < 23; ++y)
        for (int x = 0; x < 37; ++x)
            picture.mutableView().row(y)[x] = 0x80402010u;
    for (const int width : {1, 2, 5, 36, 38, 100, 400}) {
        const PixelBuffer result = resampled(picture, width, width);
        for (int y = 0; y < width; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(result.view().row(y)[x], 0x80402010u) << width;
    }
}

TEST(Resample, TurnsAFineGridIntoItsMean) {
    // Lines one pixel wide and as far apart, reduced by odd factors: no slow wave may come out. Slow is what
    // is left after averaging eight output pixels.
    PixelBuffer picture = PixelBuffer::create(1200, 8);
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 1200; ++x)
            picture.mutableView().row(y)[x] = x % 2 ? 0xffffffffu : 0xff000000u;
    for (const int width : {1130, 1001, 830, 613, 587, 555, 401, 399, 301, 173}) {
        const PixelBuffer result = resampled(picture, width, 8);
        const std::uint32_t* row = result.view().row(4);
        for (int x = 8; x + 16 < width; ++x) {
            double sum = 0;
            for (int i = 0; i < 8; ++i)
                sum += row[x + i] & 255;
            ASSERT_NEAR(sum / 8, 127.5, 12) << width << " at " << x;
        }
        for (int x = 8; width <= 700 && x + 8 < width; ++x)
            ASSERT_NEAR(int(row[x] & 255), 127.5, 8) << width << " at " << x;
    }
}

TEST(Resample, KeepsColoursWithinAlpha) {
    PixelBuffer picture = PixelBuffer::create(16, 1);
    for (int x = 0; x < 16; ++x)
        picture.mutableView().row(0)[x] = x % 4 < 2 ? 0xffffffffu : 0x00000000u;
    const PixelBuffer result = resampled(picture, 100, 3);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 100; ++x) {
            const std::uint32_t pixel = result.view().row(y)[x];
            for (int shift = 0; shift < 24; shift += 8)
                ASSERT_LE(pixel >> shift & 255, pixel >> 24);
        }
}

TEST(ResampleKernel, WeighsToOneAndStaysInside) {
    for (const double step : {1e-9, 0.01, 0.5, 1.0, 1.05, 3.7, 250.0, 1e9})
        for (const double origin : {-30.0, 0.0, 0.37, 80.0}) {
            const ResampleKernel kernel(step, origin, 50, 3, 40);
            for (int output = 3; output < 40; ++output) {
                const ResampleKernel::Taps taps = kernel.taps(output);
                ASSERT_GE(taps.first, 0);
                ASSERT_GE(taps.count, 1);
                ASSERT_LE(taps.first + taps.count, 50);
                double sum = 0;
                for (int i = 0; i < taps.count; ++i)
                    sum += double(taps.weights[i]);
                ASSERT_NEAR(sum, 1, 1e-5);
            }
        }
}

TEST(ResampleKernel, InterpolatesAtWholeNumbers) {
    EXPECT_EQ(catmullRom(0), 1);
    for (const double x : {-2.0, -1.0, 1.0, 2.0, 5.0})
        EXPECT_EQ(catmullRom(x), 0);
    EXPECT_DOUBLE_EQ(catmullRom(0.5), 0.5625);
}

} // namespace
} // namespace framora::raster

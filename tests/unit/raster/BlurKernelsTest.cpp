#include "editor/render/raster/BlurKernels.h"

#include "unit/raster/EachTarget.h"

#include <gtest/gtest.h>
#include <random>

namespace framora::raster {
namespace {

/// Any channels, also some that no valid pixel has.
std::vector<MixPixel> randomPixels(std::mt19937& random, std::size_t count) {
    std::vector<MixPixel> pixels(count);
    for (MixPixel& pixel : pixels)
        for (std::int16_t& channel : pixel.channel)
            channel = std::int16_t(random() % 4 == 0 ? mixOne : int(random() % 34000u) - 1000);
    return pixels;
}

/// Weights of both signs whose sum is 1.
std::vector<double> randomWeights(std::mt19937& random, int count) {
    std::vector<double> weights;
    double sum = 0;
    for (int i = 0; i < count; ++i) {
        weights.push_back(double(random() % 1000u) - 100);
        sum += weights.back();
    }
    for (double& weight : weights)
        weight = sum > 100 ? weight / sum : 1.0 / count;
    return weights;
}

TEST(BlurKernels, SumRowsAsTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(3);
        for (std::size_t count = 1; count < 40; ++count)
            for (const int tapCount : {1, 2, 4, 7, 30}) {
                SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels, " << tapCount);
                const BlurTaps taps({0}, {randomWeights(random, tapCount)}, BlurTaps::mixShift);
                const BlurTaps byteTaps({0}, {randomWeights(random, tapCount)}, BlurTaps::byteShift);
                std::vector<std::vector<MixPixel>> sources;
                std::vector<std::vector<std::uint32_t>> pictures;
                std::vector<const MixPixel*> rows;
                std::vector<const std::uint32_t*> pictureRows;
                for (int tap = 0; tap < taps.taps(0).count; ++tap) {
                    sources.push_back(randomPixels(random, count));
                    pictures.emplace_back();
                    for (std::size_t i = 0; i < count; ++i)
                        pictures.back().push_back(std::uint32_t(random()));
                }
                for (std::size_t tap = 0; tap < sources.size(); ++tap) {
                    rows.push_back(sources[tap].data());
                    pictureRows.push_back(pictures[tap].data());
                }
                std::vector<MixPixel> fast = randomPixels(random, count + 1); // the last one must stay
                std::vector<MixPixel> slow = fast;
                const BlurTaps::Taps all = taps.taps(0);
                sumRows(rows.data(), all.weights, all.count, taps.shift(), count, fast.data());
                plain::sumRows(rows.data(), all.weights, all.count, taps.shift(), count, slow.data());
                EXPECT_EQ(fast, slow);
                const BlurTaps::Taps bytes = byteTaps.taps(0);
                sumRows(pictureRows.data(), bytes.weights, bytes.count, byteTaps.shift(), count, fast.data());
                plain::sumRows(pictureRows.data(), bytes.weights, bytes.count, byteTaps.shift(), count,
                               slow.data());
                EXPECT_EQ(fast, slow);
            }
    });
}

TEST(BlurKernels, SumRunsAsTheirPlainTwinOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(4);
        std::vector<int> firsts;
        std::vector<std::vector<double>> rows;
        for (int output = 0; output < 50; ++output) {
            firsts.push_back(int(random() % 60u));
            rows.push_back(randomWeights(random, 1 + int(random() % 40u)));
        }
        const BlurTaps taps(firsts, rows, BlurTaps::mixShift);
        const auto sources = randomPixels(random, 101);
        std::vector<MixPixel> fast(48);
        std::vector<MixPixel> slow(48);
        sumRuns(sources.data(), taps, 2, 48, fast.data());
        plain::sumRuns(sources.data(), taps, 2, 48, slow.data());
        EXPECT_EQ(fast, slow) << target;
    });
}

TEST(BlurKernels, DitherAsTheirPlainTwinOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(5);
        for (std::size_t count = 0; count < 40; ++count) {
            auto fast = randomPixels(random, count + 1);
            auto slow = fast;
            ditherPixels(fast.data(), int(count), 3, count);
            plain::ditherPixels(slow.data(), int(count), 3, count);
            EXPECT_EQ(fast, slow) << target << ", " << count;
        }
    });
}

TEST(BlurKernels, DitheringLeavesWholeStepsAndAlpha) {
    for (int value = 0; value < 256; ++value) {
        std::vector<MixPixel> pixels(8);
        const auto channel = std::int16_t(value * mixStep);
        for (MixPixel& pixel : pixels)
            pixel = {{channel, 0, std::int16_t(channel / 2), channel}};
        ditherPixels(pixels.data(), 0, value, pixels.size());
        for (const MixPixel& pixel : pixels) {
            EXPECT_EQ((pixel.channel[0] + mixStep / 2) / mixStep, value);
            EXPECT_LE(pixel.channel[1], mixStep / 2);
            EXPECT_EQ(pixel.channel[3], channel);
            for (const std::int16_t color : pixel.channel)
                EXPECT_TRUE(color >= 0 && color <= channel);
        }
    }
}

TEST(BlurTaps, KeepAPlainSurfaceAsItIs) {
    for (const double deviation : {0.3, 1.0, 4.7, 90.0})
        for (const int size : {1, 2, 5, 300}) {
            const BlurTaps taps = gaussianTaps(deviation, size);
            ASSERT_EQ(taps.count(), size);
            for (int output = 0; output < size; ++output) {
                const BlurTaps::Taps here = taps.taps(output);
                int sum = 0;
                for (int tap = 0; tap < here.count; ++tap)
                    sum += here.weights[tap];
                EXPECT_EQ(sum, 1 << taps.shift()) << deviation << ", " << size << ": " << output;
                EXPECT_LE(here.first + here.count, size + 1);
            }
        }
}

} // namespace
} // namespace framora::raster

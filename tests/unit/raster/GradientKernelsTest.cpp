#include "editor/render/raster/GradientKernels.h"

#include "editor/render/raster/Dither.h"
#include "unit/raster/EachTarget.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

constexpr std::size_t mostPixels = 70;

TEST(GradientKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(11);
        std::uniform_real_distribution<float> place(-3, 3);
        std::vector<MixPixel> ramp(rampSize + 1);
        for (MixPixel& pixel : ramp) {
            const auto alpha = std::int16_t(random() % (mixOne + 1));
            pixel = {{std::int16_t(random() % unsigned(alpha + 1)), 0, alpha, alpha}};
        }
        for (std::size_t count = 0; count < mostPixels; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            const GradientRow row{place(random), place(random), place(random) / 50, place(random) / 50};
            std::vector<std::int32_t> fast(count + 1, -1);
            std::vector<std::int32_t> slow(count + 1, -1);
            radialPositions(row, count, fast.data());
            plain::radialPositions(row, count, slow.data());
            EXPECT_EQ(fast, slow);
            angularPositions(row, 0.3f, count, fast.data());
            plain::angularPositions(row, 0.3f, count, slow.data());
            EXPECT_EQ(fast, slow);
            std::vector<MixPixel> painted(count + 1, MixPixel{{1, 2, 3, 4}});
            std::vector<MixPixel> expected = painted;
            paintRamp(ramp.data(), fast.data(), -5, 3, count, painted.data());
            plain::paintRamp(ramp.data(), fast.data(), -5, 3, count, expected.data());
            EXPECT_EQ(painted, expected);
            ColorRun run;
            for (int c = 0; c < 4; ++c) {
                const auto channel = [&] {
                    return std::int64_t(random() % (c == 3 ? mixOne : mixOne / 2)) * ColorRun::one;
                };
                const std::int64_t first = channel();
                run.first[c] = std::int32_t(first + ColorRun::one / 2);
                run.step[c] =
                    std::int32_t((channel() - first) / std::int64_t(std::max<std::size_t>(count, 1)));
            }
            paintRun(run, 2, 5, count, painted.data());
            plain::paintRun(run, 2, 5, count, expected.data());
            EXPECT_EQ(painted, expected);
        }
    });
}

TEST(GradientKernels, KnowTheDirection) {
    for (int degrees = 0; degrees < 360; ++degrees) {
        const double angle = degrees * std::numbers::pi / 180;
        std::int32_t entry = 0;
        angularPositions({float(7 * std::sin(angle)), float(-7 * std::cos(angle)), 0, 0}, 0, 1, &entry);
        const double difference = entry / double(rampSize) - degrees / 360.0;
        EXPECT_LT(std::abs(difference - std::round(difference)), 0.6 / rampSize) << degrees;
    }
}

TEST(Dither, LeavesWholeStepsAndTheMean) {
    int sum = 0;
    for (int y = 0; y < Dither::period; ++y)
        for (int x = 0; x < Dither::period; ++x) {
            const MixPixel offset = *Dither::row(x, y);
            EXPECT_EQ(offset.channel[3], 0);
            EXPECT_LT(std::abs(offset.channel[0]), mixStep / 2);
            EXPECT_EQ(offset, *Dither::row(x + 8, y - 8));
            sum += offset.channel[1];
        }
    EXPECT_EQ(sum, 0);
}

TEST(Dither, TurnsHalfAStepIntoHalfThePixels) {
    const std::vector<MixPixel> ramp(rampSize + 1, MixPixel{{100 * mixStep + mixStep / 2, 0, 0, mixOne}});
    const std::vector<std::int32_t> positions(8, 7);
    int upper = 0;
    for (int y = 0; y < 8; ++y) {
        std::vector<MixPixel> row(8);
        paintRamp(ramp.data(), positions.data(), 0, y, 8, row.data());
        for (const MixPixel& pixel : row)
            upper += (pixel.channel[0] + mixStep / 2) / mixStep == 101;
    }
    EXPECT_EQ(upper, 32);
}

} // namespace
} // namespace framora::raster

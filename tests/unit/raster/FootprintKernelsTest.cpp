#include "editor/render/raster/FootprintKernels.h"

#include "editor/render/raster/FootprintSampler.h"
#include "editor/render/raster/ResampleKernels.h"
#include "unit/raster/EachTarget.h"
#include "unit/raster/RandomPicture.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

TEST(FootprintKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(17);
        std::uniform_real_distribution<float> unit(-1, 1);
        constexpr int width = 130;
        constexpr int height = 120;
        const auto picture = randomPicture(random, std::size_t(width) * height);
        std::vector<MixPixel> pixels(picture.size() + footprintSlack);
        plain::widenRow(picture.data(), picture.size(), pixels.data());
        const SourceBox box{pixels.data(), width, height};
        for (std::size_t count = 0; count < 40; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            const FootprintRow row{
                {9 * unit(random), 9 * unit(random), 1, 3 * unit(random), unit(random), unit(random) / 50},
                unit(random),
                20 * unit(random),
                unit(random) / 50,
                0.7f,
                FootprintTaps::widthCount - 1,
                count % 2 ? 128 : 256};
            FootprintPlaces fast;
            FootprintPlaces slow;
            const std::size_t start = count / 3;
            projectFootprints(row, start, count, fast);
            plain::projectFootprints(row, start, count, slow);
            for (std::size_t i = start; i < count; ++i)
                EXPECT_EQ(fast.at(i), slow.at(i));

            const FootprintLine lines[] = {{}, {2, 90, -31}, {3, 140, 200}};
            const FootprintLine& line = lines[count % 3];
            for (std::size_t i = 0; i < FootprintPlaces::most; ++i) {
                fast.across[i] = int(random() % (5 << FootprintTaps::widthBits));
                fast.down[i] = int(random() % (count % 2 ? 5 : 8 << FootprintTaps::widthBits));
                fast.columns[i] = (60 << FootprintTaps::phaseBits) + int(random() % 999);
                fast.rows[i] = (55 << FootprintTaps::phaseBits) + int(random() % 999);
            }
            const std::size_t first = random() % (FootprintPlaces::most - count);
            std::vector<MixPixel> read(count + 1, MixPixel{{1, 2, 3, 4}});
            std::vector<MixPixel> expected = read;
            readFootprints(box, fast, first, line, count, read.data());
            plain::readFootprints(box, fast, first, line, count, expected.data());
            EXPECT_EQ(read, expected);
        }
    });
}

TEST(FootprintTaps, KeepAPlainSurfaceAndTheMiddle) {
    for (int index = 0; index < FootprintTaps::widthCount; ++index) {
        const FootprintTaps& taps = FootprintTaps::of(index);
        for (int phase = 0; phase < FootprintTaps::phases; ++phase) {
            int sum = 0;
            double middle = 0;
            for (int tap = 0; tap < taps.count(); ++tap) {
                sum += taps.weights(phase)[tap];
                middle += double(taps.weights(phase)[tap]) * (taps.first(phase) + tap);
            }
            ASSERT_EQ(sum, FootprintTaps::one);
            ASSERT_NEAR(middle / sum, double(phase) / FootprintTaps::phases, 0.05) << index << ": " << phase;
            ASSERT_GE(taps.first(phase), -taps.reach());
            ASSERT_LE(taps.first(phase) + taps.count() - 1, taps.reach() + 1);
        }
    }
}

TEST(FootprintTaps, AreFoundByTheSquareOfTheirWidth) {
    EXPECT_EQ(FootprintTaps::index(0, 50), 0);
    EXPECT_EQ(FootprintTaps::index(1, 50), 0);
    EXPECT_EQ(FootprintTaps::index(2, 50), 1 << FootprintTaps::widthBits);
    EXPECT_EQ(FootprintTaps::index(4, 50), 2 << FootprintTaps::widthBits);
    EXPECT_EQ(FootprintTaps::index(1e30f, 50), 50);
    EXPECT_EQ(FootprintTaps::of(0).count(), 4) << "without a change of size it interpolates";
}

/// How far mix() is from read() at most, in steps of 255.
double worstDifference(const FootprintSampler& sampler, const TileRect& block, const TileRect& part) {
    std::vector<MixPixel> mixed(part.area());
    sampler.mix(block, part, mixed.data(), part.width);
    double worst = 0;
    for (int y = 0; y < part.height; ++y) {
        std::vector<Float4> row(std::size_t(part.width));
        sampler.read(block, part.x, part.y + y, part.width, row.data());
        for (int x = 0; x < part.width; ++x)
            for (int c = 0; c < 4; ++c) {
                const MixPixel& pixel = mixed[std::size_t(y * part.width + x)];
                worst = std::max(
                    worst, std::abs(double(row[std::size_t(x)][c]) - pixel.channel[c] / double(mixStep)));
            }
    }
    return worst;
}

TEST(FootprintSampler, MixesWhatItReadsToWithinAStep) {
    std::mt19937 random(9);
    PixelBuffer buffer = PixelBuffer::create(350, 310);
    for (int y = 0; y < 310; ++y) {
        const auto row = randomPicture(random, 350);
        std::copy(row.begin(), row.end(), buffer.mutableView().row(y));
    }
    const PicturePyramid pyramid(buffer.view());
    const Homography centre = Homography::translation(175, 155);
    for (const double scale : {0.95, 0.6, 0.3})
        for (const double tilt : {0.0, 20.0, 60.0, -75.0})
            for (const double degrees : {3.0, 31.0, 90.5}) {
                const Homography map = Homography::scaling(scale, scale) * Homography::tiltX(tilt, 400) *
                                       Homography::rotation(degrees);
                const FootprintSampler sampler(pyramid, centre * map.inverse());
                for (const TileRect& block : {TileRect{-64, -32, 64, 32}, TileRect{64, 0, 64, 32}}) {
                    const double worst = worstDifference(sampler, block, {block.x + 3, block.y + 5, 40, 9});
                    EXPECT_LT(worst, 1) << scale << ", " << tilt << ", " << degrees;
                }
            }
}

TEST(FootprintSampler, MixesBlocksThatSpreadFarOverThePictureInPiecesOfTheSameColours) {
    std::mt19937 random(10);
    PixelBuffer buffer = PixelBuffer::create(2400, 1600);
    for (int y = 0; y < 1600; ++y) {
        const auto row = randomPicture(random, 2400);
        std::copy(row.begin(), row.end(), buffer.mutableView().row(y));
    }
    const PicturePyramid pyramid(buffer.view());
    // Squeezed ten-fold along a diagonal: its long footprints are read from the picture itself.
    const Homography map =
        Homography::scaling(0.1, 1) * Homography::rotation(45) * Homography::translation(-1200, -800);
    const FootprintSampler sampler(pyramid, map.inverse());
    const TileRect block{-64, -32, 64, 32};
    EXPECT_LT(worstDifference(sampler, block, block), 1);
    // Whatever part of it is asked for.
    std::vector<MixPixel> whole(block.area());
    sampler.mix(block, block, whole.data(), block.width);
    for (const TileRect& part :
         {TileRect{-61, -27, 33, 7}, TileRect{-40, -32, 1, 32}, TileRect{-9, -1, 1, 1}}) {
        std::vector<MixPixel> mixed(part.area());
        sampler.mix(block, part, mixed.data(), part.width);
        for (int y = 0; y < part.height; ++y)
            for (int x = 0; x < part.width; ++x) {
                const auto& expected = whole[std::size_t(part.y - block.y + y) * std::size_t(block.width) +
                                             std::size_t(part.x - block.x + x)];
                EXPECT_TRUE(
                    std::ranges::equal(mixed[std::size_t(y * part.width + x)].channel, expected.channel))
                    << x << ", " << y << " of the part at " << part.x << ", " << part.y;
            }
    }
}

TEST(FootprintSampler, ReadsNotMuchForAPixelOfAPictureThatIsSeenNearlyFromItsSide) {
    const PixelBuffer buffer = [] {
        PixelBuffer checks = PixelBuffer::create(2560, 1600);
        for (int y = 0; y < 1600; ++y)
            for (int x = 0; x < 2560; ++x)
                checks.mutableView().row(y)[x] = (x + y) % 2 ? 0xffffffffu : 0xff000000u;
        return checks;
    }();
    const PicturePyramid pyramid(buffer.view());
    const Homography centre = Homography::translation(1280, 800);
    for (const double degrees : {89.5, 89.8, 89.9, 89.97, 89.99, -89.9}) {
        const Homography toSource =
            centre * (Homography::scaling(2, 2) * Homography::tiltY(degrees, 2560)).inverse();
        const FootprintSampler sampler(pyramid, toSource);
        int farthest = 0;
        int shown = 0;
        for (int y = -1760; y < 1760; y += 4)
            for (int x = -128; x < 128; ++x) {
                const Vec2 middle{x + 0.5, y + 2.5};
                const Vec2 source = toSource.map(middle);
                if (toSource.depth(middle) <= 0 || std::abs(source.x - 1280) > 1100 ||
                    std::abs(source.y - 800) > 700)
                    continue;
                const TileRect block{x & ~7, y, 8, 4};
                farthest = std::max(farthest, sampler.reach(block));
                // One grey wherever many checks lie under a pixel.
                Float4 pixel;
                sampler.read(block, x, y + 2, 1, &pixel);
                EXPECT_NEAR(pixel[0], 127.5, 3) << degrees << ": " << x << ", " << y;
                ++shown;
            }
        EXPECT_GT(shown, 500) << degrees;
        EXPECT_LT(farthest, 150) << degrees;
    }
}

} // namespace
} // namespace framora::raster

#include "editor/render/raster/CubicKernels.h"

#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/ProjectiveSampler.h"
#include "editor/render/raster/ResampleKernels.h"
#include "unit/raster/EachTarget.h"
#include "unit/raster/RandomPicture.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

TEST(CubicKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(5);
        for (std::size_t count = 0; count < 40; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            constexpr int width = 23;
            constexpr int height = 17;
            const auto picture = randomPicture(random, std::size_t(width) * height);
            std::vector<MixPixel> pixels(picture.size() + 1, MixPixel{{1, 2, 3, 4}});
            std::vector<MixPixel> expected = pixels;
            widenRow(picture.data(), picture.size() - count, pixels.data());
            plain::widenRow(picture.data(), picture.size() - count, expected.data());
            EXPECT_EQ(pixels, expected);
            plain::widenRow(picture.data(), picture.size(), pixels.data());
            const SourceBox box{pixels.data(), width, height};
            const std::size_t first = random() % (FootprintPlaces::most - count);
            FootprintPlaces places;
            for (std::size_t i = 0; i < FootprintPlaces::most; ++i) {
                // Some lie beyond the box.
                places.columns[i] = int(random() % 8000) - 800;
                places.rows[i] = int(random() % 6000) - 600;
                places.across[i] = int(random() % CubicTaps::widthCount);
                places.down[i] = int(random() % CubicTaps::widthCount);
            }
            const FootprintLine lines[] = {{}, {2, 90, -31}, {3, 140, 200}};
            const CubicOrigin origins[] = {{0, 0}, {2, -1}};
            std::vector<MixPixel> fast(count + 1, MixPixel{{1, 2, 3, 4}});
            std::vector<MixPixel> slow = fast;
            interpolateRow(box, origins[count % 2], places, first, lines[count % 3], count, fast.data());
            plain::interpolateRow(box, origins[count % 2], places, first, lines[count % 3], count,
                                  slow.data());
            EXPECT_EQ(fast, slow);
        }
    });
}

TEST(CubicKernels, StayInsideTheBoxWhateverTheMap) {
    // Every pixel of the box is white, and what lies around it is not.
    std::vector<MixPixel> pixels(64 + 200);
    std::fill_n(pixels.begin() + 100, 64, MixPixel{{32640, 32640, 32640, 32640}});
    const SourceBox box{pixels.data() + 100, 8, 8};
    FootprintPlaces places;
    std::vector<MixPixel> out(FootprintPlaces::most);
    for (const ProjectiveRow& row :
         {ProjectiveRow{-1e9f, 1e9f, 1, 1e8f, -1e8f, 0}, ProjectiveRow{1, 1, 1, 0, 0, -0.1f},
          ProjectiveRow{1, 1, 0, 0, 0, 0}, ProjectiveRow{NAN, NAN, NAN, 0, 0, 0}}) {
        projectFootprints({row, 0, 0, 0, 1, CubicTaps::widthCount - 1, CubicTaps::phases}, 0, out.size(),
                          places);
        interpolateRow(box, {}, places, 0, {}, out.size(), out.data());
        for (const MixPixel& pixel : out)
            EXPECT_GT(pixel.channel[0], 32600);
    }
}

/// What a wave of `cycles` a pixel becomes when it is read at every place between two pixels.
double passed(int width, double cycles) {
    double sum = 0;
    for (int phase = 0; phase < CubicTaps::phases; ++phase) {
        const double place = double(phase) / CubicTaps::phases;
        double value = 0;
        for (int tap = 0; tap < 4; ++tap)
            value += CubicTaps::weights(width, phase)[tap] *
                     std::cos(2 * std::numbers::pi * cycles * (tap - 1 - place));
        sum += value / CubicTaps::one;
    }
    return sum / CubicTaps::phases;
}

TEST(CubicTaps, KeepAPlainSurfaceAndTheMiddle) {
    for (int width = 0; width < CubicTaps::widthCount; ++width)
        for (int phase = 0; phase < CubicTaps::phases; ++phase) {
            const std::int16_t* weights = CubicTaps::weights(width, phase);
            double middle = 0;
            int sum = 0;
            for (int tap = 0; tap < 4; ++tap) {
                sum += weights[tap];
                middle += double(weights[tap]) * (tap - 1);
            }
            ASSERT_EQ(sum, CubicTaps::one);
            ASSERT_NEAR(middle / sum, double(phase) / CubicTaps::phases, 0.001) << width << ": " << phase;
        }
}

TEST(CubicTaps, PassLessOfWhatIsTooFineTheSmallerThePictureBecomes) {
    for (int width = 1; width < CubicTaps::widthCount; ++width)
        EXPECT_LE(passed(width, 0.45), passed(width - 1, 0.45)) << width;
    // The finest detail of an output whose pixels span so many of the picture's: about a third is left.
    const double step = std::exp2(0.5 * CubicTaps::lastThorough / (1 << FootprintTaps::widthBits));
    EXPECT_LT(passed(CubicTaps::lastThorough, 0.5 / step), 0.36);
    EXPECT_GT(passed(0, 0.5 / step), 0.5) << "which interpolation would pass half of";
    EXPECT_GT(passed(CubicTaps::lastThorough, 0.1), 0.85) << "and next to all of what is coarse";
}

/// How far mix() is from read() at most, in steps of 255, over a tile.
double worstDifference(const PicturePyramid& pyramid, const Homography& toSource, const TileRect& tile) {
    const ProjectiveSampler sampler(pyramid, toSource);
    std::vector<MixPixel> mixed(tile.area());
    sampler.mix(tile, mixed.data());
    double worst = 0;
    for (int y = 0; y < tile.height; ++y) {
        std::vector<Float4> row(std::size_t(tile.width));
        sampler.read(tile.x, tile.y + y, tile.width, row.data());
        for (int x = 0; x < tile.width; ++x)
            for (int c = 0; c < 4; ++c) {
                const double exact = double(row[std::size_t(x)][c]);
                const MixPixel& pixel = mixed[std::size_t(y * tile.width + x)];
                worst = std::max(worst, std::abs(exact - pixel.channel[c] / double(mixStep)));
            }
    }
    return worst;
}

TEST(ProjectiveSampler, MixesWhatItReadsToWithinAStep) {
    std::mt19937 random(9);
    PixelBuffer buffer = PixelBuffer::create(150, 110);
    for (int y = 0; y < 110; ++y) {
        const auto row = randomPicture(random, 150);
        std::copy(row.begin(), row.end(), buffer.mutableView().row(y));
    }
    const PicturePyramid pyramid(buffer.view());
    const Homography centre = Homography::translation(75, 55);
    for (const double scale : {1.0, 2.0, 3.7})
        for (const double degrees : {0.0, 12.0, 90.0, 217.0}) {
            const Homography map = Homography::scaling(scale, scale) * Homography::tiltX(degrees / 20, 400) *
                                   Homography::rotation(degrees);
            const Homography toSource = centre * map.inverse();
            for (const TileRect& tile :
                 {TileRect{-32, -16, 64, 32}, TileRect{40, 20, 17, 5}, TileRect{-200, -150, 64, 32}})
                EXPECT_LT(worstDifference(pyramid, toSource, tile), 1.0) << scale << ", " << degrees;
        }
}

} // namespace
} // namespace framora::raster

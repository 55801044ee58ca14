#include "editor/render/raster/ProjectiveKernels.h"

#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/ProjectiveSampler.h"
#include "editor/render/raster/ResampleKernels.h"
#include "unit/raster/EachTarget.h"

#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace framora::raster {
namespace {

std::vector<std::uint32_t> randomPicture(std::mt19937& random, std::size_t count) {
    std::vector<std::uint32_t> pixels(count);
    for (std::uint32_t& pixel : pixels)
        pixel = random() % 3 == 0   ? 0xffffffffu
                : random() % 2 == 0 ? 0u
                                    : 0xff000000u | std::uint32_t(random());
    return pixels;
}

TEST(ProjectiveKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(5);
        std::uniform_real_distribution<float> unit(-1, 1);
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
            const ProjectiveRow row{5 + 9 * unit(random), 5 + 9 * unit(random), 1,
                                    unit(random),         unit(random),         unit(random) / 50};
            std::vector<std::int32_t> columns(count + 1, -7);
            std::vector<std::int32_t> rows(count + 1, -7);
            auto plainColumns = columns;
            auto plainRows = rows;
            projectRow(row, box, count, columns.data(), rows.data());
            plain::projectRow(row, box, count, plainColumns.data(), plainRows.data());
            EXPECT_EQ(columns, plainColumns);
            EXPECT_EQ(rows, plainRows);
            std::vector<MixPixel> fast(count + 1, MixPixel{{1, 2, 3, 4}});
            std::vector<MixPixel> slow = fast;
            interpolateRow(box, columns.data(), rows.data(), count, fast.data());
            plain::interpolateRow(box, columns.data(), rows.data(), count, slow.data());
            EXPECT_EQ(fast, slow);
        }
    });
}

TEST(ProjectiveKernels, StayInsideTheBoxWhateverTheMap) {
    const std::vector<MixPixel> pixels(64);
    const SourceBox box{pixels.data(), 8, 8};
    std::vector<std::int32_t> columns(64);
    std::vector<std::int32_t> rows(64);
    for (const ProjectiveRow& row :
         {ProjectiveRow{-1e9f, 1e9f, 1, 1e8f, -1e8f, 0}, ProjectiveRow{1, 1, 1, 0, 0, -0.1f},
          ProjectiveRow{1, 1, 0, 0, 0, 0}, ProjectiveRow{NAN, NAN, NAN, 0, 0, 0}}) {
        projectRow(row, box, 64, columns.data(), rows.data());
        for (int i = 0; i < 64; ++i) {
            EXPECT_GE(columns[std::size_t(i)], 0);
            EXPECT_LE(columns[std::size_t(i)] >> positionBits, 4);
            EXPECT_GE(rows[std::size_t(i)], 0);
            EXPECT_LE(rows[std::size_t(i)] >> positionBits, 4);
        }
    }
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

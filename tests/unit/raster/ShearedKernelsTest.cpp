#include "editor/render/raster/ShearedKernels.h"

#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/ResampleKernel.h"
#include "editor/render/raster/ResampleKernels.h"
#include "editor/render/raster/ShearedBlock.h"
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

constexpr MixPixel guard{{1, 2, 3, 4}};

TEST(ShearedKernels, AreTheirPlainTwinsOnEveryVectorUnit) {
    forEachTarget([](const char* target) {
        std::mt19937 random(7);
        const auto between = [&random](double from, double to) {
            return std::uniform_real_distribution(from, to)(random);
        };
        for (std::size_t count = 1; count <= FootprintPlaces::most; ++count) {
            SCOPED_TRACE(testing::Message() << target << ", " << count << " pixels");
            const int columns = 4 + int(random() % 90);
            const int height = 4 + int(random() % 60);
            const auto picture = randomPicture(random, std::size_t((columns + ColumnBox::slack) * height));
            std::vector<MixPixel> pixels(picture.size());
            plain::widenRow(picture.data(), picture.size(), pixels.data());
            const ColumnBox box{pixels.data(), columns, height};

            const std::size_t rowCount = 1 + random() % mostShearedRows;
            std::vector<ShearedRow> rows(rowCount);
            constexpr double phase = double(CubicTaps::phases) * (1 << ShearedRow::lineBits);
            for (ShearedRow& row : rows) {
                // Some lie beyond the box, and some run to the left.
                row.x = float(between(-10, columns + 10));
                row.stepX = float(between(-1.5, 1.5));
                row.stepW = float(between(-1, 1)) / (random() % 2 == 0 ? 200 : 1100);
                row.downX = float(between(-0.3, 0.3));
                row.downW = float(between(-0.005, 0.005));
                row.line = std::int32_t(between(-10, height + 10) * phase);
                row.lineStep = std::int32_t(between(-0.3, 0.3) * phase);
                row.square = float(between(0.2, 2));
                row.squareStep = float(between(-0.02, 0.02));
            }
            const std::size_t first = random() % (FootprintPlaces::most - count + 1);
            const ShearedPart part{first, first + count, int(random() % 9) - 4, int(random() % 9) - 4,
                                   count % 3 == 0 ? 0 : int(random() % CubicTaps::widthCount)};
            const std::size_t stride = count + 1 + random() % 5;
            std::vector<MixPixel> fast(stride * rowCount, guard);
            std::vector<MixPixel> slow = fast;
            interpolateSheared(box, rows.data(), rowCount, part, fast.data(), std::ptrdiff_t(stride));
            plain::interpolateSheared(box, rows.data(), rowCount, part, slow.data(), std::ptrdiff_t(stride));
            EXPECT_EQ(fast, slow);
        }
    });
}

TEST(ShearedKernels, WidenColumnsAsTheirPlainTwinDoes) {
    forEachTarget([](const char* target) {
        std::mt19937 random(8);
        for (std::size_t count = 0; count < 40; ++count) {
            const std::size_t rowCount = 4 + random() % 20;
            SCOPED_TRACE(testing::Message() << target << ", " << count << " by " << rowCount << " pixels");
            const auto picture = randomPicture(random, rowCount * count + 1);
            std::vector<const std::uint32_t*> rows;
            for (std::size_t i = 0; i < rowCount; ++i)
                rows.push_back(picture.data() + i * count);
            std::vector<MixPixel> fast(count * rowCount + 1, guard);
            std::vector<MixPixel> slow = fast;
            widenColumns(rows.data(), rowCount, count, fast.data());
            plain::widenColumns(rows.data(), rowCount, count, slow.data());
            EXPECT_EQ(fast, slow);
            for (std::size_t x = 0; x < count; ++x)
                for (std::size_t y = 0; y < rowCount; ++y)
                    EXPECT_EQ(slow[x * rowCount + y].channel[1], (rows[y][x] >> 8 & 255) << sourceShift);
        }
    });
}

PixelBuffer noise(int width, int height) {
    std::mt19937 random(9);
    PixelBuffer buffer = PixelBuffer::create(width, height);
    for (int y = 0; y < height; ++y) {
        const auto row = randomPicture(random, std::size_t(width));
        std::copy(row.begin(), row.end(), buffer.mutableView().row(y));
    }
    return buffer;
}

/// From the output, whose origin shows a picture's middle, to the picture.
Homography view(PixelView picture, double scale, double degrees, double tilt = 0) {
    return Homography::translation(picture.width / 2.0, picture.height / 2.0) *
           (Homography::scaling(scale, scale) * Homography::tiltX(tilt, 4.0 * picture.width) *
            Homography::rotation(degrees))
               .inverse();
}

constexpr TileRect block{-64, -32, 64, 32};

TEST(ShearedBlock, TakesRowsThatLieNearlyAlongThePictures) {
    const PixelBuffer buffer = noise(200, 160);
    const auto isTaken = [&](double degrees) {
        return ShearedBlock::make(buffer.view(), view(buffer.view(), 2, degrees), block, 0).has_value();
    };
    for (const double degrees : {0.0, 12.0, -14.0, 90.0, 80.0, 180.0, 193.0, 270.0})
        EXPECT_TRUE(isTaken(degrees)) << degrees;
    for (const double degrees : {15.0, 45.0, -60.0, 135.0, 250.0})
        EXPECT_FALSE(isTaken(degrees)) << degrees;
    EXPECT_FALSE(ShearedBlock::make(buffer.view(), Homography::scaling(0, 0), block, 0).has_value());
    EXPECT_FALSE(ShearedBlock::make(buffer.view(), Homography::scaling(NAN, NAN), block, 0).has_value());
}

TEST(ShearedBlock, MixesWhatItReadsToWithinAStep) {
    const PixelBuffer buffer = noise(200, 160);
    for (const double scale : {0.8, 2.0, 7.0})
        for (const double degrees : {0.0, 5.0, 13.0, 94.0, 183.0, 262.0})
            for (const double tilt : {0.0, 40.0}) {
                SCOPED_TRACE(testing::Message() << scale << ", " << degrees << ", " << tilt);
                const auto sheared =
                    ShearedBlock::make(buffer.view(), view(buffer.view(), scale, degrees, tilt), block,
                                       scale < 1 ? CubicTaps::widthCount - 1 : 0);
                ASSERT_TRUE(sheared);
                std::vector<MixPixel> mixed(block.area());
                sheared->mix(block, mixed.data(), block.width);
                double worst = 0;
                for (int y = 0; y < block.height; ++y) {
                    std::vector<Float4> row(std::size_t(block.width));
                    sheared->read(block.y + y, 0, block.width, row.data());
                    for (int x = 0; x < block.width; ++x)
                        for (int c = 0; c < 4; ++c)
                            worst =
                                std::max(worst, std::abs(double(row[std::size_t(x)][c]) -
                                                         mixed[std::size_t(y * block.width + x)].channel[c] /
                                                             double(mixStep)));
                }
                EXPECT_LT(worst, 0.5);
            }
}

TEST(ShearedBlock, GivesTheSameColoursWhateverPartIsAskedFor) {
    const PixelBuffer buffer = noise(60, 50); // the block reaches beyond it
    for (const double degrees : {9.0, 97.0}) {
        const auto sheared = ShearedBlock::make(buffer.view(), view(buffer.view(), 0.9, degrees, 20), block,
                                                CubicTaps::widthCount - 1);
        ASSERT_TRUE(sheared);
        std::vector<MixPixel> whole(block.area());
        sheared->mix(block, whole.data(), block.width);
        for (const TileRect& part :
             {TileRect{-27, -20, 23, 7}, TileRect{-20, -21, 1, 21}, TileRect{-9, -1, 1, 1}}) {
            std::vector<MixPixel> mixed(part.area());
            sheared->mix(part, mixed.data(), part.width);
            for (int y = 0; y < part.height; ++y)
                for (int x = 0; x < part.width; ++x)
                    EXPECT_EQ(mixed[std::size_t(y * part.width + x)],
                              whole[std::size_t((part.y - block.y + y) * block.width + part.x - block.x + x)])
                        << x << ", " << y << " of the part at " << part.x << ", " << part.y;
        }
    }
}

/// The mean distance of what is read from a wave, of so many cycles a pixel across and down, to the wave, in
/// steps of 255: by a sheared block, and by a cubic over four by four pixels in doubles.
struct Distances {
    double sheared = 0;
    double square = 0;
};
Distances distances(double cyclesX, double cyclesY, double degrees) {
    const auto wave = [&](double x, double y) {
        return 127.5 + 110 * std::cos(2 * std::numbers::pi * (x * cyclesX + y * cyclesY));
    };
    PixelBuffer buffer = PixelBuffer::create(120, 120);
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 120; ++x)
            buffer.mutableView().row(y)[x] =
                0xff000000u | std::uint32_t(std::lround(wave(x + 0.5, y + 0.5))) * 0x010101u;
    const Homography toPicture = view(buffer.view(), 2, degrees);
    const auto sheared = ShearedBlock::make(buffer.view(), toPicture, block, 0);
    std::vector<MixPixel> mixed(block.area());
    sheared->mix(block, mixed.data(), block.width);
    Distances sums;
    for (int y = 0; y < block.height; ++y)
        for (int x = 0; x < block.width; ++x) {
            const Vec2 at = toPicture.map({block.x + x + 0.5, block.y + y + 0.5});
            const double exact = wave(at.x, at.y);
            const auto& pixel = mixed[std::size_t(y * block.width + x)];
            sums.sheared += std::abs(pixel.channel[0] / double(mixStep) - exact);
            const int left = int(std::floor(at.x - 0.5)) - 1;
            const int top = int(std::floor(at.y - 0.5)) - 1;
            double square = 0;
            for (int j = top; j < top + 4; ++j)
                for (int i = left; i < left + 4; ++i)
                    square += (buffer.view().row(j)[i] & 255) * catmullRom(at.x - 0.5 - i) *
                              catmullRom(at.y - 0.5 - j);
            sums.square += std::abs(square - exact);
        }
    return {sums.sheared / double(block.area()), sums.square / double(block.area())};
}

TEST(ShearedBlock, ReadsFineDetailAboutAsWellAsFourByFourPixels) {
    for (const double degrees : {0.0, 4.0, 9.0, 14.0})
        for (const auto& [x, y] : {std::pair(0.25, 0.0), std::pair(0.0, 0.25), std::pair(0.1, 0.1),
                                   std::pair(0.2, 0.2), std::pair(0.3, 0.1)}) {
            // Better where it lies aslant as rows do, worse where it lies the other way.
            const Distances one = distances(x, y, degrees);
            const Distances other = distances(x, -y, degrees);
            EXPECT_LT(one.sheared + other.sheared, 1.15 * (one.square + other.square))
                << degrees << ": " << x << ", " << y;
            EXPECT_GT(one.square, 0.1) << "the wave is no smooth one";
        }
}

} // namespace
} // namespace framora::raster

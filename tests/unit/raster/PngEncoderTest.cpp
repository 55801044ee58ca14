#include "editor/render/raster/PngEncoder.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PixelBuffer.h"

#include <QImage>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace framora::raster {
namespace {

enum class Content { flat, noise, translucentNoise };

PixelBuffer makePicture(int width, int height, Content content) {
    PixelBuffer picture = PixelBuffer::create(width, height);
    std::mt19937 random(7);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint32_t bits = std::uint32_t(random());
            std::uint32_t pixel = 0xff204060u + std::uint32_t(y / 3);
            if (content == Content::noise)
                pixel = bits | 0xff000000u;
            if (content == Content::translucentNoise) {
                const std::uint32_t alpha = bits >> 24;
                pixel = alpha << 24;
                for (int shift = 0; shift < 24; shift += 8)
                    pixel |= (bits >> shift & 255) * alpha / 255 << shift;
            }
            picture.mutableView().row(y)[x] = pixel;
        }
    return picture;
}

QImage decoded(const std::vector<std::uint8_t>& png) {
    return QImage::fromData(png.data(), int(png.size()), "PNG");
}

TEST(PngEncoder, WritesAnOpaquePictureAsRgbThatReadsBackAlike) {
    for (const Content content : {Content::flat, Content::noise})
        for (const QSize size : {QSize(1, 1), QSize(7, 3), QSize(640, 481), QSize(1701, 1203)}) {
            const PixelBuffer picture = makePicture(size.width(), size.height(), content);
            const std::vector<std::uint8_t> png = encodePng(picture.view());
            ASSERT_GT(png.size(), 26u);
            EXPECT_EQ(png[25], 2) << "colour type";
            const QImage image = decoded(png);
            ASSERT_EQ(image.size(), size);
            EXPECT_FALSE(image.hasAlphaChannel());
            for (int y = 0; y < size.height(); ++y)
                for (int x = 0; x < size.width(); ++x)
                    ASSERT_EQ(image.pixel(x, y), picture.view().row(y)[x]) << x << "," << y;
        }
}

TEST(PngEncoder, DividesColoursByAlphaExactly) {
    // Every premultiplied pair of alpha and colour there is.
    PixelBuffer picture = PixelBuffer::create(256, 256);
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int c = 0; c < 256; ++c) {
            const std::uint32_t colour = std::uint32_t(std::min(c, alpha));
            picture.mutableView().row(alpha)[c] =
                std::uint32_t(alpha) << 24 | colour << 16 | colour << 8 | colour;
        }
    const std::vector<std::uint8_t> png = encodePng(picture.view());
    EXPECT_EQ(png[25], 6) << "colour type";
    const QImage image = decoded(png);
    ASSERT_EQ(image.size(), QSize(256, 256));
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int c = 0; c < 256; ++c) {
            const int colour = std::min(c, alpha);
            const int plain = alpha ? (2 * 255 * colour + alpha) / (2 * alpha) : 0;
            ASSERT_EQ(image.pixel(c, alpha), qRgba(plain, plain, plain, alpha)) << alpha << " " << c;
        }
}

TEST(PngEncoder, KeepsTranslucentPicturesWhole) {
    const PixelBuffer picture = makePicture(900, 700, Content::translucentNoise);
    const QImage image = decoded(encodePng(picture.view()));
    ASSERT_EQ(image.size(), QSize(900, 700));
    for (int y = 0; y < 700; ++y)
        for (int x = 0; x < 900; ++x) {
            const QRgb pixel = image.pixel(x, y);
            const std::uint32_t premultiplied = picture.view().row(y)[x];
            ASSERT_EQ(qAlpha(pixel), int(premultiplied >> 24));
            ASSERT_EQ(std::lround(qRed(pixel) * qAlpha(pixel) / 255.0), long(premultiplied >> 16 & 255));
        }
}

TEST(PngEncoder, CarriesTheResolution) {
    const PixelBuffer picture = makePicture(4, 4, Content::flat);
    EXPECT_EQ(pixelsPerMetre(144), 5669u);
    const QImage image = decoded(encodePng(picture.view(), pixelsPerMetre(144)));
    EXPECT_EQ(image.dotsPerMeterX(), 5669);
    EXPECT_EQ(image.dotsPerMeterY(), 5669);
    EXPECT_EQ(pixelsPerMetre(0), 0u);
    EXPECT_EQ(pixelsPerMetre(std::nan("")), 0u);
    EXPECT_EQ(pixelsPerMetre(1e300), 0u);
}

TEST(PngEncoder, ReadsOnlyTheViewsOwnPixels) {
    const PixelBuffer picture = makePicture(40, 30, Content::noise);
    PixelView part = picture.view();
    part.data += 5 * part.stride + 3 * 4;
    part.width = 11;
    part.height = 13;
    const QImage image = decoded(encodePng(part));
    ASSERT_EQ(image.size(), QSize(11, 13));
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 11; ++x)
            ASSERT_EQ(image.pixel(x, y), picture.view().row(y + 5)[x + 3]);
}

TEST(PngEncoder, WritesTheSameBytesWhateverTheThreads) {
    // A large picture's stripes are others.
    for (const int height : {900, 2100}) {
        const PixelBuffer picture = makePicture(1200, height, Content::translucentNoise);
        const std::vector<std::uint8_t> all = encodePng(picture.view(), 5669);
        setParallelThreadLimit(1);
        const std::vector<std::uint8_t> one = encodePng(picture.view(), 5669);
        setParallelThreadLimit(0);
        EXPECT_EQ(all, one) << height;
    }
}

TEST(PngEncoder, GivesUpAPictureOfAsManyRowsAsThereCanBe) {
    // Its rows end somewhere on the way.
    for (const PngSpeed speed : {PngSpeed::fastest, PngSpeed::compact}) {
        PngSource endless{1, std::numeric_limits<int>::max(), true, {}};
        endless.rows = [](int first, int end, PixelBuffer& room) -> PixelView {
            if (first > 1'000'000)
                return {};
            room = makePicture(1, end - first, Content::flat);
            return room.view();
        };
        EXPECT_FALSE(writePng(endless, 0, speed, [](std::span<const std::uint8_t>) {}));
    }
}

TEST(PngEncoder, GivesNothingForAnEmptyPicture) {
    EXPECT_TRUE(encodePng({}).empty());
    EXPECT_TRUE(encodePng(PixelBuffer::create(0, 5).view()).empty());
    EXPECT_TRUE(PixelBuffer::create(5, -1).isEmpty());
}

} // namespace
} // namespace framora::raster

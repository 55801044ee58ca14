#include "screencapture/portal/RawPicture.h"

#include <QImage>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// The numbers are Qt's own.
TEST(RawPictureTest, UnpacksEachFormatAsQtReadsIt) {
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_ARGB32, QImage::Format_ARGB32_Premultiplied,
          QImage::Format_RGBX8888, QImage::Format_RGBA8888, QImage::Format_RGBA8888_Premultiplied}) {
        QImage image(16, 16, QImage::Format_ARGB32);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x)
                image.setPixel(x, y, qRgba(x * 17, y * 17, 255 - x * 9, (x + y * 16) & 255));
        image = image.convertToFormat(format);
        const RawPicture raw{16, 16, uint32_t(image.bytesPerLine()), uint32_t(format), 1};
        ASSERT_EQ(raw.byteCount(), std::size_t(image.sizeInBytes()));
        const auto unpacked =
            raw.unpack({reinterpret_cast<const std::byte*>(image.constBits()), raw.byteCount()});
        ASSERT_TRUE(unpacked);
        const QImage expected = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < 16; ++y)
            for (int x = 0; x < 16; ++x) {
                const QRgb wanted = reinterpret_cast<const QRgb*>(expected.constScanLine(y))[x];
                const QRgb got = unpacked->row(y)[x];
                EXPECT_EQ(qAlpha(got), qAlpha(wanted));
                EXPECT_NEAR(qRed(got), qRed(wanted), 1) << format << " " << x << "," << y;
                EXPECT_NEAR(qGreen(got), qGreen(wanted), 1);
                EXPECT_NEAR(qBlue(got), qBlue(wanted), 1);
            }
    }
}

TEST(RawPictureTest, PassesOverWhatStandsBehindEachRow) {
    const std::vector<uint32_t> rows = {1, 2, 3, 99, 4, 5, 6, 99};
    const RawPicture raw{3, 2, 16, QImage::Format_ARGB32_Premultiplied, 1};
    const auto unpacked = raw.unpack(std::as_bytes(std::span(rows)));
    ASSERT_TRUE(unpacked);
    EXPECT_EQ(unpacked->row(0)[2], 3U);
    EXPECT_EQ(unpacked->row(1)[0], 4U);
    EXPECT_EQ(unpacked->row(1)[2], 6U);
}

TEST(RawPictureTest, RefusesShapesThatMakeNoSense) {
    const auto count = [](uint32_t width, uint32_t height, uint32_t stride, uint32_t format) {
        return RawPicture{width, height, stride, format, 1}.byteCount();
    };
    EXPECT_EQ(count(10, 20, 40, 6), 800U);
    EXPECT_EQ(count(0, 20, 40, 6), 0U);
    EXPECT_EQ(count(10, 0, 40, 6), 0U);
    EXPECT_EQ(count(10, 20, 39, 6), 0U);
    EXPECT_EQ(count(10, 20, 4000000000U, 6), 0U);
    EXPECT_EQ(count(40000, 20, 160000, 6), 0U);
    EXPECT_EQ(count(10, 4000000000U, 40, 6), 0U);
    for (const uint32_t format : {0U, 1U, 3U, 7U, 15U, 19U, 1000U})
        EXPECT_EQ(count(10, 20, 40, format), 0U) << format;
}

TEST(RawPictureTest, RefusesBytesThatAreNotAsAnnounced) {
    const std::vector<std::byte> bytes(801);
    const RawPicture raw{10, 20, 40, 6, 1};
    EXPECT_FALSE(raw.unpack(std::span(bytes).first(799)));
    EXPECT_FALSE(raw.unpack(bytes));
    EXPECT_TRUE(raw.unpack(std::span(bytes).first(800)));
}

} // namespace
} // namespace framora

#include "screencapture/portal/PngFile.h"

#include <QBuffer>
#include <QImage>
#include <gtest/gtest.h>

namespace framora {
namespace {

std::vector<uint8_t> pngOf(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return {bytes.begin(), bytes.end()};
}

QImage imageOf(const std::vector<uint8_t>& file) {
    return QImage::fromData(file.data(), int(file.size()), "PNG");
}

QImage picture(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgba(x * 5, y * 7, x + y, x * y));
    return image;
}

TEST(PngFileTest, TellsTheSizeOfAWholeFile) {
    const auto size = pngSizeOf(pngOf(picture(37, 21)));
    ASSERT_TRUE(size);
    EXPECT_EQ(size->width, 37);
    EXPECT_EQ(size->height, 21);
}

TEST(PngFileTest, RefusesEveryFileThatIsCutOff) {
    const auto whole = pngOf(picture(9, 5));
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(pngSizeOf(std::span(whole).first(length))) << length;
}

TEST(PngFileTest, RefusesEveryFileWithOneWrongBit) {
    const auto whole = pngOf(picture(9, 5));
    for (std::size_t at = 0; at < whole.size(); ++at) {
        auto damaged = whole;
        damaged[at] ^= 0x10;
        EXPECT_FALSE(pngSizeOf(damaged)) << at;
    }
}

TEST(PngFileTest, WritesTheResolutionAndNothingElseAnew) {
    QImage image = picture(37, 21);
    for (const int before : {0, 3780}) {
        image.setDotsPerMeterX(before);
        image.setDotsPerMeterY(before);
        const auto file = pngOf(image);
        const auto result = pngWithResolution(file, 5669);
        ASSERT_TRUE(pngSizeOf(result));
        const QImage read = imageOf(result);
        EXPECT_EQ(read.dotsPerMeterX(), 5669);
        EXPECT_EQ(read.dotsPerMeterY(), 5669);
        EXPECT_EQ(read.convertToFormat(QImage::Format_ARGB32), image);
        // Once more changes nothing: there is one resolution, not two.
        EXPECT_EQ(pngWithResolution(result, 5669), result);
    }
}

} // namespace
} // namespace framora

#include "editor/render/PictureCompleteness.h"

#include "editor/render/PictureFile.h"

#include <QBuffer>
#include <QImageWriter>
#include <QtEndian>
#include <cstring>
#include <gtest/gtest.h>
#include <random>

namespace framora {
namespace {

/// Noise: no piece of it can be missing unnoticed.
QByteArray encoded(const char* format, int compression = -1) {
    QImage image(80, 60, QImage::Format_RGB32);
    std::mt19937 random(3);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, QRgb(random()) | 0xff000000u);
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(95);
    writer.setCompression(compression);
    EXPECT_TRUE(writer.write(image)) << format;
    return file;
}

TEST(PictureCompleteness, AWholeFileIsNotCutOff) {
    for (const char* format : {"png", "jpg", "webp", "tiff", "bmp"})
        EXPECT_FALSE(isCutOff(encoded(format))) << format;
    EXPECT_FALSE(isCutOff(encoded("tiff", 1))) << "compressed";
    EXPECT_FALSE(isCutOff(QByteArrayView("just a line of text"))) << "of no known format";
}

TEST(PictureCompleteness, AWebpOrTiffCutOffAnywhereIsRefused) {
    for (const auto& [name, whole] : {std::pair("webp", encoded("webp")), std::pair("tiff", encoded("tiff")),
                                      std::pair("compressed tiff", encoded("tiff", 1))}) {
        ASSERT_TRUE(loadPicture(whole)) << name;
        for (int piece = 0; piece < 32; ++piece) {
            const QByteArray part = whole.left(whole.size() * piece / 32);
            EXPECT_FALSE(loadPicture(part)) << name << " " << piece;
        }
    }
}

TEST(PictureCompleteness, TiffOffsetsBeyondTheEndAreFoundInEitherByteOrder) {
    // One strip of four bytes; the count of its bytes stands second.
    for (const bool isLittle : {true, false}) {
        QByteArray file(46, '\0');
        const auto put16 = [&](int at, quint16 value) {
            isLittle ? qToLittleEndian(value, file.data() + at) : qToBigEndian(value, file.data() + at);
        };
        const auto put32 = [&](int at, quint32 value) {
            isLittle ? qToLittleEndian(value, file.data() + at) : qToBigEndian(value, file.data() + at);
        };
        std::memcpy(file.data(), isLittle ? "II" : "MM", 2);
        put16(2, 42);
        put32(4, 8);
        put16(8, 2);
        const auto putEntry = [&](int at, quint16 tag, quint32 value) {
            put16(at, tag);
            put16(at + 2, 4);
            put32(at + 4, 1);
            put32(at + 8, value);
        };
        putEntry(10, 273, 42);
        putEntry(22, 279, 4);
        EXPECT_FALSE(isCutOff(file));
        EXPECT_TRUE(isCutOff(QByteArrayView(file).chopped(1)));
        putEntry(10, 273, 0xffffffffu);
        EXPECT_TRUE(isCutOff(file));
        putEntry(10, 273, 42);
        putEntry(22, 279, 0xffffffffu);
        EXPECT_TRUE(isCutOff(file));
        put32(14, 0x7fffffffu); // as many offsets
        EXPECT_TRUE(isCutOff(file));
        put32(4, 0xfffffff0u); // the directory itself
        EXPECT_TRUE(isCutOff(file));
    }
}

} // namespace
} // namespace framora

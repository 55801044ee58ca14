#include "editor/render/SrgbPicture.h"
#include "editor/render/PictureFile.h"
#include "support/PngChunks.h"

#include <QBuffer>
#include <QColorSpace>
#include <gtest/gtest.h>

namespace framora {
namespace {

QImage colors(QImage::Format format) {
    QImage image(64, 32, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(x * 4, y * 8, (x + y) * 2, 255 - x - y));
    return image.convertToFormat(format);
}

QByteArray png(const QImage& image) {
    QByteArray file;
    QBuffer buffer(&file);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "PNG"));
    return file;
}

QByteArray gamma(quint32 value) {
    return pngChunk("gAMA", {value});
}

const QByteArray srgbPrimaries = pngChunk("cHRM", {31270, 32900, 64000, 33000, 30000, 60000, 15000, 6000});
const QByteArray almostSrgbPrimaries =
    pngChunk("cHRM", {31269, 32901, 63999, 33001, 30001, 60000, 15000, 6001});
const QByteArray widePrimaries = pngChunk("cHRM", {31270, 32900, 68000, 32000, 26500, 69000, 15000, 6000});
const QByteArray adobePrimaries = pngChunk("cHRM", {31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000});

/// Kinds of PNG that are read in different ways.
constexpr QImage::Format kinds[] = {QImage::Format_RGB32,    QImage::Format_ARGB32,
                                    QImage::Format_RGBX64,   QImage::Format_RGBA64,
                                    QImage::Format_Indexed8, QImage::Format_Grayscale8};

TEST(SrgbPicture, OfAPngThatMeansSrgbHasTheNumbersOfTheFile) {
    for (const QImage::Format kind : kinds) {
        const QByteArray bare = png(colors(kind));
        const LoadedPicture expected = loadPicture(bare);
        ASSERT_TRUE(expected) << kind;
        const QByteArray ways[] = {gamma(45455),
                                   gamma(45455) + srgbPrimaries,
                                   gamma(45455) + almostSrgbPrimaries,
                                   gamma(45454),
                                   gamma(45500) + srgbPrimaries,
                                   srgbPrimaries,
                                   pngChunk("sRGB", QByteArray(1, '\0')),
                                   pngChunk("sRGB", QByteArray(1, '\0')) + gamma(45455) + srgbPrimaries};
        for (const QByteArray& way : ways)
            EXPECT_EQ(loadPicture(withChunks(bare, way)).image, expected.image)
                << kind << " " << way.toHex().toStdString();
    }
}

TEST(SrgbPicture, OfAPngThatMeansSomethingElseIsConverted) {
    for (const QImage::Format kind : kinds) {
        if (kind == QImage::Format_Grayscale8)
            continue; // has no primaries
        const QByteArray bare = png(colors(kind));
        const QImage plain = loadPicture(bare).image;
        for (const QByteArray& way : {gamma(100000), gamma(50000), gamma(55556) + srgbPrimaries,
                                      gamma(45455) + widePrimaries, gamma(45471) + adobePrimaries})
            EXPECT_NE(loadPicture(withChunks(bare, way)).image, plain)
                << kind << " " << way.toHex().toStdString();
    }
}

TEST(SrgbPicture, OfAProfileIsConvertedThoughItsCurveIsThatGamma) {
    QByteArray profile = QColorSpace(QColorSpace::Primaries::SRgb, 2.2f).iccProfile();
    const qsizetype name = profile.lastIndexOf("desc") + 8; // of one byte, a zero, with zeros behind it
    profile.replace(name, 10, QByteArray("\0\0\0\6plain\0", 10));
    const QColorSpace named = QColorSpace::fromIccProfile(profile);
    QImage image = colors(QImage::Format_RGB32);
    const QImage numbers = srgbPicture(QImage(image));
    image.setColorSpace(named);
    ASSERT_EQ(named.description(), QStringLiteral("plain"));
    EXPECT_NE(srgbPicture(std::move(image)), numbers);
}

} // namespace
} // namespace framora

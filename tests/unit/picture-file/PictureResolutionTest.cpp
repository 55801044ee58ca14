#include "platform/PictureResolution.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QtEndian>
#include <gtest/gtest.h>

namespace framora {
namespace {

QByteArray bigEndian32(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray chunk(const char* type, const QByteArray& data) {
    return bigEndian32(quint32(data.size())) + type + data + QByteArray(4, '\0');
}

const QByteArray pngStart = QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", QByteArray(13, '\1'));

QByteArray png(quint32 x, quint32 y, char unit = 1) {
    return pngStart + chunk("gAMA", QByteArray(4, '\0')) +
           chunk("pHYs", bigEndian32(x) + bigEndian32(y) + QByteArray(1, unit)) + chunk("IDAT", "x");
}

QByteArray jpeg(char unit, quint16 x, quint16 y) {
    QByteArray density(4, '\0');
    qToBigEndian(x, density.data());
    qToBigEndian(y, density.data() + 2);
    const QByteArray body = QByteArray("JFIF\0\1\2", 7) + QByteArray(1, unit) + density + QByteArray(2, '\0');
    return QByteArray("\xff\xd8\xff\xe0\x00\x10", 6) + body + QByteArray("\xff\xda\x00\x02", 4);
}

TEST(PictureResolution, EveryQuarterStepOfAPngComesBack) {
    for (int quarters = 1; quarters <= 64; ++quarters) {
        const double ratio = quarters * 0.25;
        const double exact = 72.0 * ratio / 0.0254;
        const auto perMetre = quint32(std::lround(exact));
        EXPECT_EQ(storedPixelRatio(png(perMetre, perMetre)), ratio) << perMetre;
        EXPECT_EQ(storedPixelRatio(png(quint32(exact), quint32(exact))), ratio) << "the fraction cut off";
    }
}

TEST(PictureResolution, OtherResolutionsGiveOne) {
    for (const double dpi : {96.0, 100.0, 120.0, 300.0, 400.0, 73.0, 143.0, 600.0}) {
        const auto perMetre = quint32(std::lround(dpi / 0.0254));
        EXPECT_EQ(storedPixelRatio(png(perMetre, perMetre)), 1.0) << dpi;
    }
    EXPECT_EQ(storedPixelRatio(png(0, 0)), 1.0);
    EXPECT_EQ(storedPixelRatio(png(5669, 2835)), 1.0) << "two axes that differ";
    EXPECT_EQ(storedPixelRatio(png(5669, 5669, 0)), 1.0) << "a mere aspect ratio";
}

TEST(PictureResolution, APngThatStoresNoneGivesOne) {
    EXPECT_EQ(storedPixelRatio(pngStart + chunk("IDAT", "x") + chunk("pHYs", QByteArray(9, '\1'))), 1.0);
    EXPECT_EQ(storedPixelRatio(pngStart), 1.0);
}

TEST(PictureResolution, JpegDensitiesCountPerInchAndPerCentimetre) {
    EXPECT_EQ(storedPixelRatio(jpeg(1, 144, 144)), 2.0);
    EXPECT_EQ(storedPixelRatio(jpeg(1, 90, 90)), 1.25);
    EXPECT_EQ(storedPixelRatio(jpeg(1, 72, 72)), 1.0);
    EXPECT_EQ(storedPixelRatio(jpeg(1, 96, 96)), 1.0);
    EXPECT_EQ(storedPixelRatio(jpeg(2, 57, 57)), 2.0) << "144 dpi is 56.7 per centimetre";
    EXPECT_EQ(storedPixelRatio(jpeg(2, 59, 59)), 1.0);
    EXPECT_EQ(storedPixelRatio(jpeg(0, 144, 144)), 1.0) << "a mere aspect ratio";
    EXPECT_EQ(storedPixelRatio(jpeg(1, 144, 72)), 1.0);
}

TEST(PictureResolution, AnotherSegmentMayStandBeforeTheDensity) {
    const QByteArray comment("\xff\xfe\x00\x05hey", 7);
    QByteArray file = jpeg(1, 216, 216);
    file.insert(2, comment);
    EXPECT_EQ(storedPixelRatio(file), 3.0);
}

TEST(PictureResolution, FilesCutAnywhereAndOtherFilesGiveOneOrTheTruth) {
    for (const QByteArray& file : {png(5669, 5669), jpeg(1, 144, 144)}) {
        ASSERT_EQ(storedPixelRatio(file), 2.0);
        for (qsizetype length = 0; length < file.size(); ++length) {
            const double ratio = storedPixelRatio(QByteArrayView(file).first(length));
            EXPECT_TRUE(ratio == 1.0 || ratio == 2.0) << length;
        }
    }
    EXPECT_EQ(storedPixelRatio({}), 1.0);
    EXPECT_EQ(storedPixelRatio("GIF89a and more bytes"), 1.0);
    EXPECT_EQ(storedPixelRatio(QByteArray("\xff\xd8\xff\xe0\xff\xff", 6)), 1.0);
    EXPECT_EQ(storedPixelRatio(pngStart + QByteArray("\xff\xff\xff\xffpHYs", 8) + QByteArray(20, '\0')), 1.0);
}

TEST(PictureResolution, ItReadsWhatTheImageLibraryWrites) {
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.setDotsPerMeterX(5669);
    image.setDotsPerMeterY(5669);
    for (const char* format : {"PNG", "JPG"}) {
        QByteArray file;
        QBuffer buffer(&file);
        buffer.open(QIODevice::WriteOnly);
        ASSERT_TRUE(image.save(&buffer, format));
        EXPECT_EQ(storedPixelRatio(file), 2.0) << format;
    }
}

} // namespace
} // namespace framora

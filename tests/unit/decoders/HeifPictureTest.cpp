#include "editor/render/DecoderProcess.h"
#include "editor/render/decoders/DecodedPicture.h"
#include "unit/decoders/DecoderTest.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QDir>
#include <QTest>
#include <QThread>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>

namespace framora {
namespace {

using HeifPicture = DecoderTest;

QImage flat(QColor color) {
    QImage image(64, 48, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

TEST_F(HeifPicture, IsReadUnderBothExtensionsInAnyCase) {
    const QByteArray file = heifFile(fourQuarters(64, 48));
    ASSERT_FALSE(file.isEmpty());
    for (const char* name : {"a.heic", "b.heif", "c.HEIC"}) {
        const QImage image = decode(write(QString::fromLatin1(name), file));
        EXPECT_EQ(image.size(), QSize(64, 48)) << name;
        EXPECT_EQ(cornerColors(image), QStringLiteral("RGBW")) << name;
        EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
        EXPECT_EQ(image.devicePixelRatio(), 1);
    }
}

TEST_F(HeifPicture, IsToldByItsContentWhereTheExtensionIsWrong) {
    EXPECT_EQ(cornerColors(decode(write("heif.jpg", heifFile(fourQuarters(64, 48))))),
              QStringLiteral("RGBW"));
    ASSERT_TRUE(fourQuarters(64, 48).save(path("png.heic"), "png"));
    EXPECT_EQ(cornerColors(decode(path("png.heic"))), QStringLiteral("RGBW"));
}

TEST_F(HeifPicture, ComesUprightFromEveryOrientation) {
    // How a picture that is stored as red, green / blue, white is to be shown, by EXIF's numbers.
    const char* const shown[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const QImage image =
            decode(write("turned.heic", heifFile(fourQuarters(64, 32), {.orientation = orientation})));
        EXPECT_EQ(image.size(), orientation < 5 ? QSize(64, 32) : QSize(32, 64)) << orientation;
        EXPECT_EQ(cornerColors(image), QLatin1String(shown[orientation - 1])) << orientation;
    }
}

TEST_F(HeifPicture, OfTenAndTwelveBitsKeepsItsColours) {
    const QColor color(200, 100, 50);
    for (const int bits : {10, 12}) {
        const QImage image = decode(write("deep.heic", heifFile(flat(color), {.bits = bits})));
        SCOPED_TRACE(bits);
        expectColor(image, {32, 24}, color, 2);
    }
}

TEST_F(HeifPicture, WithAlphaIsPremultiplied) {
    for (const int bits : {8, 10}) {
        SCOPED_TRACE(bits);
        const QImage image = decode(
            write("alpha.heic", heifFile(flat(QColor(200, 100, 50, 128)), {.bits = bits, .hasAlpha = true})));
        ASSERT_FALSE(image.isNull());
        const QRgb pixel = reinterpret_cast<const QRgb*>(image.constScanLine(24))[32];
        EXPECT_NEAR(qAlpha(pixel), 128, 2);
        EXPECT_NEAR(qRed(pixel), 100, 3);
        EXPECT_NEAR(qGreen(pixel), 50, 3);
        EXPECT_NEAR(qBlue(pixel), 25, 3);
    }
}

TEST_F(HeifPicture, ObeysItsMatrixAndItsRange) {
    const QColor color(210, 90, 40);
    for (const int matrix : {1, 6, 9})
        for (const bool isFullRange : {true, false}) {
            SCOPED_TRACE(testing::Message() << "matrix " << matrix << ", full range " << isFullRange);
            const QImage image = decode(
                write("matrix.heic", heifFile(flat(color), {.matrix = matrix, .isFullRange = isFullRange})));
            expectColor(image, {32, 24}, color, 4);
        }
}

TEST_F(HeifPicture, OfAnotherColourSpaceBecomesSrgb) {
    // sRGB's orange (230, 120, 30) as Display P3 has it.
    QImage wide = flat(QColor(230, 120, 30));
    wide.setColorSpace(QColorSpace::SRgb);
    wide.convertToColorSpace(QColorSpace::DisplayP3);
    const QByteArray profile = QColorSpace(QColorSpace::DisplayP3).iccProfile();
    ASSERT_GT(std::abs(wide.pixelColor(0, 0).red() - 230), 5) << "there is something to convert";
    expectColor(decode(write("profile.heic", heifFile(wide, {.profile = profile}))), {32, 24},
                QColor(230, 120, 30), 4);
    expectColor(decode(write("label.heic", heifFile(wide, {.primaries = 12}))), {32, 24},
                QColor(230, 120, 30), 4);
    expectColor(decode(write("deep.heic", heifFile(wide, {.bits = 10, .primaries = 12}))), {32, 24},
                QColor(230, 120, 30), 3);
}

TEST_F(HeifPicture, CodedAsAv1IsReadToo) {
    EXPECT_EQ(cornerColors(decode(write("av1.heif", heifFile(fourQuarters(64, 48), {.isAv1 = true})))),
              QStringLiteral("RGBW"));
}

TEST_F(HeifPicture, OfOddSizeKeepsIt) {
    EXPECT_EQ(decode(write("odd.heic", heifFile(fourQuarters(67, 45)))).size(), QSize(67, 45));
}

/// The line of this process's memory map that holds the address.
std::string mappingOf(const void* address) {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t first = 0;
        std::uintptr_t end = 0;
        if (std::sscanf(line.c_str(), "%" SCNxPTR "-%" SCNxPTR, &first, &end) == 2 &&
            first <= std::uintptr_t(address) && std::uintptr_t(address) < end)
            return line;
    }
    return {};
}

TEST_F(HeifPicture, LiesWhereItsDecoderHasWrittenIt) {
    for (const bool hasAlpha : {false, true}) {
        SCOPED_TRACE(hasAlpha);
        const QImage image = decode(write(
            "a.heic", heifFile(flat(QColor(200, 100, 50, hasAlpha ? 128 : 255)), {.hasAlpha = hasAlpha})));
        ASSERT_FALSE(image.isNull());
        const std::string mapping = mappingOf(image.constBits());
        EXPECT_NE(mapping.find("memfd:framora-picture"), std::string::npos) << mapping;
        EXPECT_NE(mapping.find(" rw-s "), std::string::npos) << "not copied when it is touched: " << mapping;
    }
}

TEST_F(HeifPicture, CannotBeTakenAwayByWhatIsLeftOfItsDecoder) {
    // A decoder that leaves a process behind, which has the picture's memory still.
    QByteArray written(DecodedPicture::pixelsOffset + DecodedPicture::pixelBytes(64, 48), '\xff');
    const DecodedPicture header{DecodedPicture::finished, 64, 48, 0, 0};
    std::memcpy(written.data(), &header, sizeof header);
    write("picture", written);
    const QString decoder = write("decoder", R"sh(#!/bin/sh
cd "$(dirname "$0")" && cat picture
(while [ ! -e go ]; do sleep 0.01; done; truncate -s 0 /proc/self/fd/1; touch gone) &
)sh");
    ASSERT_TRUE(QFile::setPermissions(decoder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QFile file(path("picture"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QDir programs(QCoreApplication::applicationDirPath());
    const QImage image = decodeInProcess(programs.relativeFilePath(decoder), file.handle());
    write("go", "");
    ASSERT_FALSE(image.isNull());
    ASSERT_TRUE(QTest::qWaitFor([this] { return QFile::exists(path("gone")); }));
    EXPECT_EQ(image.pixel(63, 47), 0xffffffffu);
}

TEST_F(HeifPicture, IsDecodedOnAnyThread) {
    const QString file = write("a.heic", heifFile(fourQuarters(64, 48)));
    QImage images[3];
    std::vector<std::unique_ptr<QThread>> threads;
    for (QImage& image : images)
        threads.emplace_back(QThread::create([&image, &file] { image = decode(file); }))->start();
    for (const auto& thread : threads)
        thread->wait();
    for (const QImage& image : images)
        EXPECT_EQ(cornerColors(image), QStringLiteral("RGBW"));
}

} // namespace
} // namespace framora

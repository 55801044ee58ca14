#include "editor/render/raster/PixelBuffer.h"
#include "editor/render/raster/PngEncoder.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QProcess>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>
#include <png.h>
#include <random>

namespace framora::raster {
namespace {

enum class Kind { text, magnified, photograph, flat, noise, dithered, translucent };
constexpr std::array kinds = {Kind::text,  Kind::magnified, Kind::photograph, Kind::flat,
                              Kind::noise, Kind::dithered,  Kind::translucent};

QImage makeText(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(QColor(250, 250, 252));
    QPainter painter(&image);
    painter.fillRect(0, 0, width, 30, QColor(52, 70, 110));
    for (int line = 0; line * 18 < height; ++line) {
        painter.setPen(line % 3 ? QColor(30, 30, 40) : QColor(20, 90, 200));
        painter.drawText(12, 48 + line * 18,
                         QStringLiteral("%1 if (value > %2) return words.at(%3); // as before")
                             .arg(line)
                             .arg(line * 7919 % 1000)
                             .arg(line * 104729 % 977));
    }
    return image;
}

QImage makePicture(Kind kind, int width, int height) {
    std::mt19937 random(unsigned(width * 31 + height));
    QImage image(width, height,
                 kind == Kind::translucent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (kind == Kind::text)
        return makeText(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const double u = double(x) / width;
            const double v = double(y) / height;
            const auto grain = [&](int size) { return int(random() % unsigned(2 * size + 1)) - size; };
            QRgb pixel = qRgb(51, 102, 153);
            if (kind == Kind::noise)
                pixel = 0xff000000u | QRgb(random());
            if (kind == Kind::photograph) {
                const int light = int(110 + 70 * std::sin(9 * u + 4 * v * v) + 40 * std::cos(37 * u * v));
                pixel = qRgb(qBound(0, light + grain(6), 255), qBound(0, light - 20 + grain(6), 255),
                             qBound(0, 230 - light + grain(7), 255));
            }
            if (kind == Kind::dithered || kind == Kind::magnified) {
                const double level = kind == Kind::dithered ? random() % 1000 / 1000.0 : 0.5;
                pixel = qRgb(int(40 + 20 * v + level), int(70 + 20 * v + 9 * u + level),
                             int(150 - 30 * u + level));
            }
            if (kind == Kind::translucent) {
                const int alpha = int(255 * std::min(1.0, 2.2 * u));
                pixel = qPremultiply(qRgba(int(200 * v), (x / 9 + y / 7) % 2 ? 90 : 160, 40, alpha));
            }
            reinterpret_cast<QRgb*>(image.scanLine(y))[x] = pixel;
        }
    if (kind == Kind::magnified && width > 40 && height > 40) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(20, 20, width - 40, height - 40),
                          makeText((width - 40) / 2, (height - 40) / 2));
    }
    return image;
}

std::vector<std::uint8_t> encoded(const QImage& image, PngSpeed speed = PngSpeed::compact) {
    const QImage pixels = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return encodePng({reinterpret_cast<const std::byte*>(pixels.constBits()), pixels.width(), pixels.height(),
                      pixels.bytesPerLine()},
                     std::uint32_t(image.dotsPerMeterX()), speed);
}

/// R, G, B, A, by libpng without Qt's help.
std::vector<std::uint8_t> decodedByLibpng(const std::vector<std::uint8_t>& file) {
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_memory(&png, file.data(), file.size()))
        return {};
    png.format = PNG_FORMAT_RGBA;
    std::vector<std::uint8_t> pixels(PNG_IMAGE_SIZE(png));
    if (!png_image_finish_read(&png, nullptr, pixels.data(), 0, nullptr) || png.warning_or_error)
        return {};
    return pixels;
}

std::vector<std::uint8_t> expectedRgba(const QImage& image) {
    const QImage plain =
        image.convertToFormat(QImage::Format_ARGB32_Premultiplied).convertToFormat(QImage::Format_ARGB32);
    std::vector<std::uint8_t> pixels;
    for (int y = 0; y < plain.height(); ++y)
        for (int x = 0; x < plain.width(); ++x) {
            const QRgb p = reinterpret_cast<const QRgb*>(plain.constScanLine(y))[x];
            pixels.insert(pixels.end(), {std::uint8_t(qRed(p)), std::uint8_t(qGreen(p)),
                                         std::uint8_t(qBlue(p)), std::uint8_t(qAlpha(p))});
        }
    return pixels;
}

/// The largest difference of any sample; Qt's own division by alpha is one off here and there.
int difference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    if (a.size() != b.size())
        return 256;
    int most = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        most = std::max(most, std::abs(a[i] - b[i]));
    return most;
}

TEST(PngDecoders, LibpngReadsEveryWidthAndKind) {
    for (const Kind kind : kinds)
        for (const PngSpeed speed : {PngSpeed::compact, PngSpeed::fastest})
            for (int width = 1; width <= 70; ++width) {
                const QImage image = makePicture(kind, width, 1 + width * 13 % 23);
                ASSERT_LE(difference(decodedByLibpng(encoded(image, speed)), expectedRgba(image)),
                          kind == Kind::translucent ? 1 : 0)
                    << "kind " << int(kind) << ", width " << width;
            }
}

TEST(PngDecoders, LibpngReadsHeightsAroundTheStripes) {
    // Rows of 8193 bytes: a stripe of a megabyte has 127 of them, in a picture of over 8 of them 128.
    for (const PngSpeed speed : {PngSpeed::compact, PngSpeed::fastest})
        for (const int height : {126, 127, 128, 254, 255, 1023, 1024, 1025, 1151, 1152, 1153}) {
            const QImage image = makePicture(Kind::magnified, 2731, height);
            ASSERT_EQ(difference(decodedByLibpng(encoded(image, speed)), expectedRgba(image)), 0) << height;
        }
}

TEST(PngDecoders, AnIndependentReaderSeesTheSamePixels) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.png"));
    for (const Kind kind : {Kind::magnified, Kind::photograph, Kind::translucent})
        for (const PngSpeed speed : {PngSpeed::compact, PngSpeed::fastest}) {
            const QImage image = makePicture(kind, 1100, 700);
            const std::vector<std::uint8_t> png = encoded(image, speed);
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(reinterpret_cast<const char*>(png.data()), qint64(png.size()));
            file.close();
            QProcess python;
            python.start(QStringLiteral("/usr/bin/python3"),
                         {QStringLiteral("-c"),
                          QStringLiteral("import sys; from PIL import Image; i = Image.open(sys.argv[1]); "
                                         "sys.stdout.buffer.write(i.convert('RGBA').tobytes())"),
                          path});
            if (!python.waitForStarted())
                GTEST_SKIP() << "no python3";
            ASSERT_TRUE(python.waitForFinished(60000));
            const QByteArray error = python.readAllStandardError();
            if (error.contains("No module named"))
                GTEST_SKIP() << "python3-pil is not installed";
            ASSERT_TRUE(error.isEmpty()) << error.toStdString();
            const QByteArray bytes = python.readAllStandardOutput();
            EXPECT_EQ(std::vector<std::uint8_t>(bytes.begin(), bytes.end()), decodedByLibpng(png))
                << int(kind);
        }
}

TEST(PngDecoders, IsNoLargerThanQtsFile) {
    for (const Kind kind : kinds)
        for (const QSize size : {QSize(1, 1), QSize(2, 3), QSize(16, 16), QSize(64, 48), QSize(200, 150),
                                 QSize(640, 480), QSize(1500, 1100)}) {
            const QImage image = makePicture(kind, size.width(), size.height());
            QBuffer usual;
            usual.open(QIODevice::WriteOnly);
            ASSERT_TRUE(image.save(&usual, "PNG"));
            // The usual search may find a match or two more where there are a few hundred bytes in all.
            const std::size_t slack = size.width() <= 16 ? 4 : 0;
            EXPECT_LE(encoded(image).size(), std::size_t(usual.size()) + slack)
                << "kind " << int(kind) << ", " << size.width() << "x" << size.height();
        }
}

} // namespace
} // namespace framora::raster

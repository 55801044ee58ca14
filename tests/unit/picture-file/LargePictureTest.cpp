#include "editor/render/SrgbPicture.h"

#include <QColorSpace>
#include <gtest/gtest.h>

namespace framora {
namespace {

/// More rows than are converted at a time, and a part of that at the end.
QImage large() {
    QImage image(401, 497, QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgba(x * 7 % 256, y * 5 % 256, (x + y) * 3 % 256, 255 - x * y % 97));
    return image;
}

TEST(LargePicture, IsConvertedByPartsAsItIsAsAWhole) {
    constexpr QImage::Format target = QImage::Format_ARGB32_Premultiplied;
    const QImage picture = large();
    for (const QImage::Format format :
         {QImage::Format_Mono, QImage::Format_Indexed8, QImage::Format_Grayscale8, QImage::Format_Grayscale16,
          QImage::Format_RGB16, QImage::Format_RGB888, QImage::Format_RGB32, QImage::Format_ARGB32, target,
          QImage::Format_RGBA8888, QImage::Format_RGBX64, QImage::Format_RGBA64_Premultiplied})
        for (const bool isWide : {false, true}) {
            QImage image = picture.convertToFormat(format);
            QImage whole = image;
            if (isWide) {
                image.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
                whole = image.convertedToColorSpace(QColorSpace(QColorSpace::SRgb));
            }
            whole.convertTo(target);
            whole.setColorSpace(QColorSpace());
            const QImage shared = image;
            const QImage before = image.copy();
            const QImage converted = srgbPicture(std::move(image));
            EXPECT_EQ(converted.format(), target);
            EXPECT_FALSE(converted.colorSpace().isValid());
            EXPECT_EQ(converted, whole) << format << (isWide ? " with a wide gamut" : "");
            EXPECT_EQ(shared, before) << format << ": whoever shares it keeps it as it was";
        }
}

} // namespace
} // namespace framora

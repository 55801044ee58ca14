#include "editor/render/CompositionRasterizer.h"
#include "editor/render/HexColor.h"
#include "editor/render/ScreenshotRenderer.h"

#include <gtest/gtest.h>
#include <random>

namespace framora::golden {
namespace {

QImage noise(int width, int height, double pixelRatio) {
    std::mt19937 engine(7);
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            reinterpret_cast<quint32*>(image.scanLine(y))[x] = engine() | 0xff000000u;
    image.setDevicePixelRatio(pixelRatio);
    return image;
}

ScreenshotStyleConfig plainStyle() {
    ScreenshotStyleConfig style;
    style.showMockup = false;
    style.padding = 10.0;
    style.backgroundType = BackgroundType::color;
    style.customColor = parseHexColor(u"336699");
    return style;
}

/// The part of the export that lies where the screenshot was put.
QImage cut(const QImage& drawn, QPoint at, QSize size) {
    QImage part = drawn.copy(QRect(at, size));
    part.setDevicePixelRatio(1.0);
    return part;
}

TEST(PixelCopy, AScreenshotOfTheExportsRatioIsCopiedBitForBit) {
    QImage image =
        noise(121, 83, 2.0); // an odd size: its centre lies between the canvas's pixels, or on them
    const QImage drawn = renderComposition(image, plainStyle());
    ASSERT_EQ(drawn.size(), QSize(121 + 40, 83 + 40));
    image.setDevicePixelRatio(1.0);
    EXPECT_EQ(cut(drawn, {20, 20}, image.size()), image);
    EXPECT_EQ(drawn.pixel(19, 50), 0xff336699u);
    EXPECT_EQ(drawn.pixel(141, 50), 0xff336699u);
    EXPECT_EQ(drawn.pixel(50, 19), 0xff336699u);
    EXPECT_EQ(drawn.pixel(50, 103), 0xff336699u);
}

TEST(PixelCopy, ItIsCopiedBetweenRoundCornersToo) {
    QImage image = noise(160, 120, 2.0);
    ScreenshotStyleConfig style = plainStyle();
    style.showMockup = true;
    style.borderRadius = 10.0;
    const QImage drawn = renderComposition(image, style);
    image.setDevicePixelRatio(1.0);
    EXPECT_EQ(cut(drawn, {20 + 30, 20}, {100, 120}), image.copy(30, 0, 100, 120));
    EXPECT_EQ(cut(drawn, {20, 20 + 30}, {160, 60}), image.copy(0, 30, 160, 60));
}

TEST(PixelCopy, AnOffsetOfWholePixelsMovesTheCopy) {
    QImage image = noise(100, 80, 2.0);
    ScreenshotStyleConfig style = plainStyle();
    style.screenshotOffset = {3.5, -2.0};
    const QImage drawn = renderComposition(image, style);
    image.setDevicePixelRatio(1.0);
    EXPECT_EQ(cut(drawn, {20 + 7, 20 - 4}, image.size()), image);
}

TEST(PixelCopy, ScalesThatMeetThePixelsCopyThemToo) {
    QImage image = noise(100, 80, 1.0);
    ScreenshotStyleConfig style = plainStyle();
    style.imageScale = 50.0; // one pixel a pixel of the export
    const QImage drawn = renderComposition(image, style);
    image.setDevicePixelRatio(1.0);
    EXPECT_EQ(cut(drawn, {(240 - 100) / 2, (200 - 80) / 2}, image.size()), image);
}

TEST(PixelCopy, ABackgroundOfTheCanvasSizeIsCopied) {
    const QImage image = noise(40, 30, 2.0);
    const QImage background = noise(80, 70, 1.0);
    Composition composition;
    composition.image = image;
    composition.config = plainStyle();
    composition.config.backgroundType = BackgroundType::image;
    composition.config.screenshotOffset = {1000.0, 0.0};
    composition.isRendering = true;
    composition.preloadedBackgroundImage = background;
    EXPECT_EQ(cut(CompositionRasterizer().drawFrame(composition,
                                                    outputFrame(pointSize(image), composition.config), 2.0),
                  {0, 0}, background.size()),
              background);
}

TEST(PixelCopy, AFineGridMadeSmallerIsEvenlyGrey) {
    QImage image(400, 300, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            reinterpret_cast<quint32*>(image.scanLine(y))[x] = (x + y) % 2 ? 0xffffffffu : 0xff000000u;
    image.setDevicePixelRatio(2.0);
    ScreenshotStyleConfig style = plainStyle();
    for (const auto& [scale, rotation] : {std::pair(49.0, 0.0), std::pair(37.0, 0.0), std::pair(37.0, 20.0),
                                          std::pair(21.0, 45.0), std::pair(12.0, 3.0)}) {
        style.imageScale = scale;
        style.rotation = rotation;
        const QImage drawn = renderComposition(image, style);
        int least = 255;
        int most = 0;
        for (int y = -8; y <= 8; ++y)
            for (int x = -8; x <= 8; ++x) {
                const int grey = qGreen(drawn.pixel(drawn.width() / 2 + x, drawn.height() / 2 + y));
                least = std::min(least, grey);
                most = std::max(most, grey);
            }
        EXPECT_LE(most - least, 24) << scale << " % at " << rotation;
        EXPECT_NEAR((most + least) / 2.0, 127, 12) << scale << " % at " << rotation;
    }
}

} // namespace
} // namespace framora::golden

#pragma once

#include "editor/model/ScreenshotStyleConfig.h"

#include <QImage>
#include <random>

namespace framora {

/// Opaque noise: any filtering or shift changes it.
inline QImage noisePicture(int width, int height, double pixelRatio = 1) {
    QImage image(width, height, QImage::Format_RGB32);
    std::mt19937 random(11);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, QRgb(random()) | 0xff000000u);
    image.setDevicePixelRatio(pixelRatio);
    return image;
}

inline QImage flatPicture(int width, int height, QColor color = Qt::red, double pixelRatio = 1) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    image.setDevicePixelRatio(pixelRatio);
    return image;
}

/// A style that shows the screenshot and nothing else: no background, no mockup.
inline ScreenshotStyleConfig bareStyle() {
    ScreenshotStyleConfig config;
    config.backgroundType = BackgroundType::transparent;
    config.showMockup = false;
    return config;
}

} // namespace framora

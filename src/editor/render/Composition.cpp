#include "editor/render/Composition.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framora {
namespace {

/// The image with its padding and the room that a mockup gets.
QSizeF contentSize(QSizeF imageSize, const ScreenshotStyleConfig& config) {
    const bool hasFrame = config.showMockup && config.mockupStyle != MockupStyle::defaultStyle;
    const double extra = hasFrame ? 6 * config.mockupBorderSize : 0;
    return {imageSize.width() + 2 * config.padding + extra, imageSize.height() + 2 * config.padding + extra};
}

} // namespace

QSizeF pointSize(const QImage& image) {
    const double ratio = image.devicePixelRatio();
    return {image.width() / ratio, image.height() / ratio};
}

double mockupPadding(const ScreenshotStyleConfig& config) {
    if (!config.showMockup)
        return 0;
    switch (config.mockupStyle) {
    case MockupStyle::defaultStyle:
        return 0;
    case MockupStyle::glassEffect:
        return 3 * config.mockupBorderSize / 2;
    case MockupStyle::border:
        return 3 * config.mockupBorderSize;
    }
    return 0;
}

QSizeF canvasSize(QSizeF imageSize, const ScreenshotStyleConfig& config) {
    if (config.selectedSocialPreset)
        return {double(config.selectedSocialPreset->width), double(config.selectedSocialPreset->height)};
    return contentSize(imageSize, config);
}

double screenshotScale(QSizeF imageSize, const ScreenshotStyleConfig& config) {
    const double scale = config.imageScale / 100;
    if (!config.selectedSocialPreset)
        return scale;
    constexpr double margins = 40;
    const double horizontal =
        (config.selectedSocialPreset->width - margins) / (imageSize.width() + 2 * config.padding);
    const double vertical =
        (config.selectedSocialPreset->height - margins) / (imageSize.height() + 2 * config.padding);
    return scale * std::min(std::min(horizontal, vertical), 1.0);
}

QSizeF outputFrame(QSizeF imageSize, const ScreenshotStyleConfig& config) {
    const QSizeF content = contentSize(imageSize, config);
    const double angle = config.rotation * std::numbers::pi / 180;
    const double c = std::abs(std::cos(angle));
    const double s = std::abs(std::sin(angle));
    return {(content.width() * c + content.height() * s) * config.scale,
            (content.width() * s + content.height() * c) * config.scale};
}

} // namespace framora

#pragma once

#include "editor/model/Geometry.h"
#include "editor/model/ScreenshotStyleConfig.h"

#include <QImage>
#include <QSizeF>

namespace framora {

/// Everything that one picture is drawn from, in the preview and in the export alike.
struct Composition {
    QImage image; ///< The screenshot; its size in points is its pixels over its devicePixelRatio.
    ScreenshotStyleConfig config;
    bool isRendering = false;             ///< For the export: no checkerboard and no grain.
    QImage preloadedBackgroundImage = {}; ///< Shown before loadedBackgroundImage; null when absent.
    double canvasCornerRadius = 24;       ///< Points; for who shows the canvas, nothing is clipped to it.
    Size dragOffset = {};                 ///< Points, added to the style's offset while the user drags.
    QImage loadedBackgroundImage = {};    ///< What the preview has loaded; null when absent.

    /// The picture of an `image` background; null when there is none.
    const QImage& backgroundImage() const {
        return preloadedBackgroundImage.isNull() ? loadedBackgroundImage : preloadedBackgroundImage;
    }
};

/// The size of a picture in points.
QSizeF pointSize(const QImage& image);

/// How far the mockup stands out on each side of the screenshot, in points: what is drawn, not what is
/// reserved.
double mockupPadding(const ScreenshotStyleConfig& config);

/// The canvas in points: the social preset's size, else the image with its padding and the room for its
/// mockup.
QSizeF canvasSize(QSizeF imageSize, const ScreenshotStyleConfig& config);

/// The factor of the screenshot inside the canvas: `imageScale`, times what fits it into a social preset.
double screenshotScale(QSizeF imageSize, const ScreenshotStyleConfig& config);

/// The exported frame in points: the box around the turned canvas, times `scale`. It comes from the image,
/// the padding and the mockup alone, also where a social preset lays out the canvas: the canvas is then cut
/// or has transparent room around it.
QSizeF outputFrame(QSizeF imageSize, const ScreenshotStyleConfig& config);

} // namespace framora

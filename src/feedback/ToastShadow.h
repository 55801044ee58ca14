#pragma once

#include <QImage>
#include <QRectF>

namespace framora {

/// The soft black shadow of a rounded rectangle.
struct ToastShadow {
    double sigma = 1;   ///< Standard deviation of its softness.
    double offsetY = 0; ///< Downwards.
    double opacity = 1;

    /// In pixels, and fainter by `factor`.
    constexpr ToastShadow scaled(double pixelRatio, double factor) const {
        return {sigma * pixelRatio, offsetY * pixelRatio, opacity * factor};
    }
    /// Darkens a premultiplied picture by the shadow of `rect` (pixels) with corners of `radius`.
    void drawUnder(QImage& image, const QRectF& rect, double radius) const;
};

} // namespace framora

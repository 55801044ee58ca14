#pragma once

#include "editor/render/raster/PixelView.h"

#include <QImage>

namespace framora {

/// The pixels of a picture of the format ARGB32_Premultiplied (or RGB32, whose alpha is 255), for the
/// kernels.
inline raster::PixelView rasterView(const QImage& image) {
    return {reinterpret_cast<const std::byte*>(image.constBits()), image.width(), image.height(),
            image.bytesPerLine()};
}

/// The same, to be written; detaches the picture.
inline raster::MutablePixelView mutableRasterView(QImage& image) {
    return {reinterpret_cast<std::byte*>(image.bits()), image.width(), image.height(), image.bytesPerLine()};
}

} // namespace framora

#include "editor/render/ImageResampler.h"

#include "editor/render/Composition.h"
#include "editor/render/RasterView.h"
#include "editor/render/raster/Resample.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace framora {

QSizeF resizedSize(QSizeF size, double maxWidth, double maxHeight) {
    const double aspect = size.width() / size.height();
    double width = 0;
    double height = 0;
    if (aspect > 1) {
        width = maxWidth;
        height = maxWidth / aspect;
    } else {
        width = maxHeight * aspect;
        height = maxHeight;
    }
    if (width > maxWidth) {
        width = maxWidth;
        height = maxWidth / aspect;
    }
    if (height > maxHeight) {
        height = maxHeight;
        width = maxHeight * aspect;
    }
    return {width, height};
}

QImage resizedImage(const QImage& image, double maxWidth, double maxHeight) {
    constexpr double longestSide = 32767;
    if (image.isNull() ||
        !(maxWidth > 0 && maxHeight > 0 && maxWidth <= longestSide && maxHeight <= longestSide))
        return {};
    const QSizeF size = resizedSize(pointSize(image), maxWidth, maxHeight);
    const int width = std::max(1, int(std::lround(size.width())));
    const int height = std::max(1, int(std::lround(size.height())));
    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage result(width, height, QImage::Format_ARGB32_Premultiplied);
    if (source.isNull() || result.isNull())
        return {};
    try {
        raster::resample(rasterView(source), mutableRasterView(result));
    } catch (const std::bad_alloc&) {
        return {};
    }
    return result;
}

} // namespace framora

#include "editor/render/SrgbPicture.h"

#include <QColorSpace>

namespace framora {

QImage srgbPicture(QImage&& image) {
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace(QColorSpace::SRgb));
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    image.setColorSpace(QColorSpace());
    return std::move(image);
}

} // namespace framora

#pragma once

#include <QImage>

namespace framora {

/// The picture in sRGB as ARGB32_Premultiplied, without a colour space of its own; in place where it is not
/// shared. Null when it is, or when memory is short.
QImage srgbPicture(QImage&& image);

} // namespace framora

#pragma once

#include <QImage>

namespace framora {

/// The picture in sRGB as ARGB32_Premultiplied, without a colour space of its own; in place where its pixels
/// have 32 bits and it is not shared. Null when it is. Throws std::bad_alloc.
QImage srgbPicture(QImage&& image);

} // namespace framora

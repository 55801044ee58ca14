#pragma once

#include <QImage>

namespace framora {

/// A picture of at most `largest` pixels with the aspect kept, one pixel a side at least; a picture that fits
/// stays as it is. Premultiplied ARGB or RGB32, pixel ratio 1. Reads only a grid of samples of a large
/// picture, so that it takes a millisecond or two whatever the size. Null for a null picture.
QImage thumbnailOf(const QImage& picture, QSize largest);

} // namespace framora

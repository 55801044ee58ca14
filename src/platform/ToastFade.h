#pragma once

#include <QImage>

namespace framora {

/// Every premultiplied pixel of `from` times `alpha`, 0 to 1, into `to`, which is as large and of the same
/// format, 32 bits a pixel.
void fadeToast(const QImage& from, QImage& to, double alpha);

} // namespace framora

#pragma once

#include <QImage>

namespace framora {

/// The picture scaled to fit `maxWidth` x `maxHeight` with its aspect kept; a small one is enlarged. The
/// result has one pixel a point, whole pixels and at least one a side. Null when the picture is, or when a
/// bound is not above zero or out of all proportion, or memory is short. Uses nothing but its own picture:
/// safe on any thread.
QImage resizedImage(const QImage& image, double maxWidth, double maxHeight);

/// The size that resizedImage() aims at, before it is rounded to whole pixels.
QSizeF resizedSize(QSizeF size, double maxWidth, double maxHeight);

} // namespace framora

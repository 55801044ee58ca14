#pragma once

#include <QImage>

namespace framora::comparison {

/// How far two pictures are apart over all four channels, premultiplied.
struct PictureDifference {
    double mean = 255;   ///< levels
    double farShare = 1; ///< of the channels, those more than 16 levels apart
};

/// Pictures of different sizes, and null ones, are as far apart as can be.
PictureDifference comparePictures(const QImage& a, const QImage& b);

} // namespace framora::comparison

#pragma once

#include <QByteArrayView>

namespace framora {

/// How many pixels make a point, from the resolution stored in a PNG or JPEG file. A resolution of 72 dpi
/// times a multiple of 0.25 counts, the same on both axes; anything else, and a file that stores none,
/// gives 1. Only the file's own words count: decoders fill in the screen's resolution where the file says
/// nothing.
double storedPixelRatio(QByteArrayView encodedFile);

} // namespace framora

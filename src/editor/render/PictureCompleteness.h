#pragma once

#include <QByteArrayView>

namespace framora {

/// Whether a PNG, JPEG, GIF, BMP, WebP or TIFF file ends before its own structure says so. Several decoders
/// paint what is missing in some colour and call it a success. False for formats that it does not know.
bool isCutOff(QByteArrayView file);

} // namespace framora

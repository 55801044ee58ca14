#pragma once

#include <QByteArrayView>

namespace framora {

/// Whether a TIFF file's first picture has data that lies beyond the file's end. False for what is no TIFF
/// file or is damaged otherwise: the decoder's to say.
bool isCutOffTiff(QByteArrayView file);

} // namespace framora

#pragma once

#include <QtGlobal>

namespace framora {

/// The pixels of the largest picture or track that the header of a HEIF picture, QuickTime or MPEG-4 video
/// claims; 0 when it claims none where such files do. A guess of what decoding will take, nothing to rely on.
qint64 isoMediaPixels(int fileDescriptor);

/// HEIF files are ISO media files, whatever their name; no other still picture is.
bool isHeif(int fileDescriptor);

} // namespace framora

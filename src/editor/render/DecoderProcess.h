#pragma once

#include <QImage>
#include <QString>

namespace framora {

/// Runs one of the decoders (framora-heif, framora-video-still) on an open file and waits for its picture,
/// for some twenty seconds at most. Upright, ARGB32_Premultiplied in sRGB; null when the decoder is missing,
/// finds no picture, exceeds its bounds or dies. The descriptor stays the caller's. From any thread.
QImage decodeInProcess(const QString& decoder, int fileDescriptor);

} // namespace framora

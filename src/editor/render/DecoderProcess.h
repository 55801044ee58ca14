#pragma once

#include <QImage>
#include <QSize>
#include <QString>
#include <stop_token>

namespace framora {

/// What a decoder is asked for.
struct DecoderOrder {
    QSize box = {};            ///< The picture may be reduced while it fills this box in one direction.
    unsigned seconds = 0;      ///< More than these it may not take; 0 for its own bound.
    int threads = 0;           ///< 0: as many as it takes by itself.
    qint64 bytes = 0;          ///< More memory than this it may not take; 0 for its own bound.
    std::stop_token stop = {}; ///< Ends it, with no picture.
};

/// Runs one of the decoders (framora-heif, framora-video-still) on an open file and waits for its picture,
/// for some twenty seconds at most. Upright, ARGB32_Premultiplied in sRGB; null when the decoder is missing,
/// finds no picture, exceeds its bounds or dies. The descriptor stays the caller's. From any thread. Throws
/// std::bad_alloc.
/// `order` may ask for less than all of the picture.
QImage decodeInProcess(const QString& decoder, int fileDescriptor, const DecoderOrder& order = {});

} // namespace framora

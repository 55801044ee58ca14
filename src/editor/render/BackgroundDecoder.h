#pragma once

#include <QImage>
#include <QUrl>

namespace framora {

/// Turns the file of an image background into a picture. Safe on any thread.
class BackgroundDecoder {
public:
    /// The picture, upright and in sRGB; null when the file is missing, is of no known format, is cut off or
    /// claims a size beyond all reason. Videos give nothing.
    static QImage decode(const QUrl& url);
    /// The same, and the next decode() of the unchanged file gets this picture without reading it: for a
    /// picture that two want one after the other. The last one is kept until then.
    static QImage decodeForTwo(const QUrl& url);

    /// Whether the extension is "mov" or "mp4", in any case.
    static bool isVideo(const QUrl& url);
};

} // namespace framora

#pragma once

#include "editor/render/PictureFile.h"

#include <QImage>
#include <QUrl>
#include <stop_token>

namespace framora {

/// Turns the file of an image background into a picture. Safe on any thread.
class BackgroundDecoder {
public:
    /// The picture, upright and in sRGB; null when the file is missing, is no regular file, is of no known
    /// format, is cut off, claims a size beyond all reason or finds no memory. Of a video it is the frame
    /// shown at one second, or the first one of a shorter clip, scaled down into 3840 x 2160 where it is
    /// larger. Videos and HEIF pictures are decoded by a process of their own, which ends after twenty
    /// seconds at the latest, others in as much processor time at most. Once `stop` is asked for it ends
    /// within a moment, without a picture.
    static QImage decode(const QUrl& url, const std::stop_token& stop = {});
    /// The same with one line that says why there is none.
    static LoadedPicture load(const QUrl& url, const std::stop_token& stop = {});
    /// The same, and the next decode() of the unchanged file gets this picture without reading it: for a
    /// picture that two want one after the other. The last one is kept until then.
    static QImage decodeForTwo(const QUrl& url, const std::stop_token& stop = {});
    /// The second will not come.
    static void forget(const QUrl& url);

    /// Whether the extension is "mov" or "mp4", in any case.
    static bool isVideo(const QUrl& url);
};

} // namespace framora

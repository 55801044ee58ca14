#include "editor/render/BackgroundDecoder.h"

#include "editor/render/DecoderProcess.h"
#include "editor/render/IsoMediaSize.h"
#include "editor/render/PictureCompleteness.h"
#include "editor/render/PictureFile.h"
#include "editor/render/SrgbPicture.h"
#include "editor/render/StillFormat.h"
#include "editor/render/WebpReduction.h"
#include "platform/RegularFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <utility>

namespace framora {

namespace {

/// A picture that was decoded for two, until the second comes for it.
struct KeptPicture {
    QUrl url;
    QDateTime modified;
    QImage image;
};

QMutex keptMutex;
KeptPicture kept;

KeptPicture takeKept(const QUrl& url) {
    const QMutexLocker lock(&keptMutex);
    return url == kept.url ? std::exchange(kept, {}) : KeptPicture();
}

QDateTime modificationTime(const QUrl& url) {
    return QFileInfo(url.toLocalFile()).lastModified();
}

bool isWebp(QFile& file) {
    constexpr qint64 startBytes = 16;
    return qstrcmp(stillFormat(file.peek(startBytes)), "webp") == 0;
}

/// Not by the reader for all kinds, which cannot be stopped within a picture of this one.
QImage decodeWebp(QFile& file, const std::stop_token& stop) {
    const QByteArray encoded = file.size() <= maximumPictureBytes ? file.readAll() : QByteArray();
    DecodingWatch watch({.stop = stop});
    if (isCutOff(encoded))
        return {};
    if (auto image = reducedWebp(encoded, 1, watch))
        return srgbPicture(std::move(*image));
    return loadPicture(encoded, {.stop = stop}).image;
}

QImage decodeFile(const QUrl& url, const std::stop_token& stop) {
    QFile file;
    if (!openRegularFile(file, url.toLocalFile()))
        return {};
    if (BackgroundDecoder::isVideo(url))
        return decodeInProcess(QStringLiteral("framora-video-still"), file.handle(), {.stop = stop});
    if (isHeif(file.handle()))
        return decodeInProcess(QStringLiteral("framora-heif"), file.handle(), {.stop = stop});
    if (isWebp(file))
        return decodeWebp(file, stop);
    return loadPicture(file, {.stop = stop}).image;
}

} // namespace

bool BackgroundDecoder::isVideo(const QUrl& url) {
    const QString extension = QFileInfo(url.path()).suffix().toLower();
    return extension == QLatin1String("mov") || extension == QLatin1String("mp4");
}

QImage BackgroundDecoder::decode(const QUrl& url, const std::stop_token& stop) {
    if (!url.isLocalFile() || stop.stop_requested())
        return {};
    const KeptPicture taken = takeKept(url);
    // A file system may take its time to say: not while the main thread may wait for the lock.
    if (!taken.image.isNull() && taken.modified == modificationTime(url))
        return taken.image;
    return decodeFile(url, stop);
}

QImage BackgroundDecoder::decodeForTwo(const QUrl& url, const std::stop_token& stop) {
    if (stop.stop_requested())
        return {};
    const QDateTime modified = modificationTime(url);
    QImage image = decode(url, stop);
    const QMutexLocker lock(&keptMutex);
    kept = {url, modified, image};
    return image;
}

void BackgroundDecoder::forget(const QUrl& url) {
    const QMutexLocker lock(&keptMutex);
    if (url == kept.url)
        kept = {};
}

} // namespace framora

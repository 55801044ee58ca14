#include "editor/render/BackgroundDecoder.h"

#include "editor/render/DecoderProcess.h"
#include "editor/render/IsoMediaSize.h"
#include "editor/render/PictureCompleteness.h"
#include "editor/render/SrgbPicture.h"
#include "editor/render/StillFormat.h"
#include "editor/render/WebpReduction.h"
#include "platform/RegularFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <cerrno>
#include <new>
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

LoadedPicture orUnreadable(QImage image) {
    if (image.isNull())
        return {.image = QImage(), .error = QStringLiteral("not a picture or video that can be read")};
    return {.image = std::move(image), .error = QString()};
}

/// Not by the reader for all kinds, which cannot be stopped within a picture of this one.
LoadedPicture decodeWebp(QFile& file, const std::stop_token& stop) {
    const QByteArray encoded = file.size() <= maximumPictureBytes ? file.readAll() : QByteArray();
    DecodingWatch watch({.stop = stop});
    if (isCutOff(encoded))
        return orUnreadable({});
    errno = 0;
    if (auto image = reducedWebp(encoded, 1, watch)) {
        if (image->isNull() && errno == ENOMEM)
            throw std::bad_alloc();
        return orUnreadable(srgbPicture(std::move(*image)));
    }
    return loadPicture(encoded, {.stop = stop});
}

LoadedPicture decodeFile(const QUrl& url, const std::stop_token& stop) try {
    QFile file;
    if (!openRegularFile(file, url.toLocalFile()))
        return orUnreadable({});
    const auto byProcess = [&](const QString& decoder) {
        return orUnreadable(decodeInProcess(decoder, file.handle(), {.stop = stop}));
    };
    if (BackgroundDecoder::isVideo(url))
        return byProcess(QStringLiteral("framora-video-still"));
    if (isHeif(file.handle()))
        return byProcess(QStringLiteral("framora-heif"));
    return isWebp(file) ? decodeWebp(file, stop) : loadPicture(file, {.stop = stop});
} catch (const std::bad_alloc&) {
    return {.image = QImage(), .error = QStringLiteral("not enough memory for the picture")};
}

} // namespace

bool BackgroundDecoder::isVideo(const QUrl& url) {
    const QString extension = QFileInfo(url.path()).suffix().toLower();
    return extension == QLatin1String("mov") || extension == QLatin1String("mp4");
}

QImage BackgroundDecoder::decode(const QUrl& url, const std::stop_token& stop) {
    return load(url, stop).image;
}

LoadedPicture BackgroundDecoder::load(const QUrl& url, const std::stop_token& stop) {
    if (!url.isLocalFile() || stop.stop_requested())
        return orUnreadable({});
    const KeptPicture taken = takeKept(url);
    // A file system may take its time to say: not while the main thread may wait for the lock.
    if (!taken.image.isNull() && taken.modified == modificationTime(url))
        return {.image = taken.image, .error = QString()};
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

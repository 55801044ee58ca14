#include "editor/render/BackgroundDecoder.h"

#include "editor/render/PictureFile.h"

#include <QDateTime>
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

QDateTime modificationTime(const QUrl& url) {
    return QFileInfo(url.toLocalFile()).lastModified();
}

} // namespace

bool BackgroundDecoder::isVideo(const QUrl& url) {
    const QString extension = QFileInfo(url.path()).suffix().toLower();
    return extension == QLatin1String("mov") || extension == QLatin1String("mp4");
}

QImage BackgroundDecoder::decode(const QUrl& url) {
    if (!url.isLocalFile() || isVideo(url))
        return {};
    {
        const QMutexLocker lock(&keptMutex);
        const KeptPicture taken = url == kept.url ? std::exchange(kept, {}) : KeptPicture();
        if (!taken.image.isNull() && taken.modified == modificationTime(url))
            return taken.image;
    }
    return loadPicture(url.toLocalFile()).image;
}

QImage BackgroundDecoder::decodeForTwo(const QUrl& url) {
    const QDateTime modified = modificationTime(url);
    QImage image = decode(url);
    const QMutexLocker lock(&keptMutex);
    kept = {url, modified, image};
    return image;
}

} // namespace framora

#include "editor/render/BackgroundDecoder.h"

#include "editor/render/DecoderProcess.h"
#include "editor/render/PictureFile.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <array>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
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

/// Opens a regular file only, and never waits for the other end of a pipe.
bool openRegularFile(QFile& file, const QString& path) {
    const int descriptor = open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    struct stat status {};
    if (descriptor < 0)
        return false;
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
        file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return true;
    close(descriptor);
    return false;
}

/// HEIF files are ISO media files, whatever their name; no other still picture is.
bool isHeif(int descriptor) {
    std::array<char, 8> start{};
    return pread(descriptor, start.data(), start.size(), 0) == ssize_t(start.size()) &&
           QByteArrayView(start).sliced(4) == "ftyp";
}

QImage decodeFile(const QUrl& url) {
    QFile file;
    if (!openRegularFile(file, url.toLocalFile()))
        return {};
    if (BackgroundDecoder::isVideo(url))
        return decodeInProcess(QStringLiteral("framora-video-still"), file.handle());
    if (isHeif(file.handle()))
        return decodeInProcess(QStringLiteral("framora-heif"), file.handle());
    return loadPicture(file).image;
}

} // namespace

bool BackgroundDecoder::isVideo(const QUrl& url) {
    const QString extension = QFileInfo(url.path()).suffix().toLower();
    return extension == QLatin1String("mov") || extension == QLatin1String("mp4");
}

QImage BackgroundDecoder::decode(const QUrl& url) {
    if (!url.isLocalFile())
        return {};
    {
        const QMutexLocker lock(&keptMutex);
        const KeptPicture taken = url == kept.url ? std::exchange(kept, {}) : KeptPicture();
        if (!taken.image.isNull() && taken.modified == modificationTime(url))
            return taken.image;
    }
    return decodeFile(url);
}

QImage BackgroundDecoder::decodeForTwo(const QUrl& url) {
    const QDateTime modified = modificationTime(url);
    QImage image = decode(url);
    const QMutexLocker lock(&keptMutex);
    kept = {url, modified, image};
    return image;
}

} // namespace framora

#include "editor/render/BackgroundDecoder.h"

#include "editor/render/PictureFile.h"

#include <QFileInfo>

namespace framora {

bool BackgroundDecoder::isVideo(const QUrl& url) {
    const QString extension = QFileInfo(url.path()).suffix().toLower();
    return extension == QLatin1String("mov") || extension == QLatin1String("mp4");
}

QImage BackgroundDecoder::decode(const QUrl& url) {
    if (!url.isLocalFile() || isVideo(url))
        return {};
    return loadPicture(url.toLocalFile()).image;
}

} // namespace framora

#include "editor/model/StartupTexture.h"

#include "editor/render/BackgroundDecoder.h"
#include "editor/render/WallpaperThumbnails.h"
#include "platform/ResourceBundle.h"

#include <QFileInfo>

namespace framora {

std::optional<StartupTexture> StartupTexture::load(const ResourceBundle& resources) {
    const QString name = QStringLiteral("Black and White Gradient Macbook Wallpaper_Texture");
    std::optional<QUrl> url = resources.url(name, QStringLiteral("png"), QStringLiteral("public"));
    if (!url)
        url = resources.urlAnywhere(name, QStringLiteral("png"));
    if (!url) {
        const QString path = resources.resourcePath() + QStringLiteral("/public/%1.png").arg(name);
        if (QFileInfo::exists(path))
            url = QUrl::fromLocalFile(path);
    }
    if (!url)
        return {};
    // The canvas asks for the same picture as soon as it is shown.
    const QImage picture = BackgroundDecoder::decodeForTwo(*url);
    if (picture.isNull())
        return {};
    return StartupTexture{*url, thumbnailOf(picture)};
}

} // namespace framora

#include "render-cli/DefaultStyle.h"

#include <QDir>
#include <QFileInfo>

namespace framora {

ScreenshotStyleConfig defaultStyle(const QString& programFolder) {
    ScreenshotStyleConfig style = ScreenshotStyleConfig::shared();
    const QString texture =
        QDir(programFolder)
            .absoluteFilePath(QStringLiteral("../share/framora/public/"
                                             "Black and White Gradient Macbook Wallpaper_Texture.png"));
    if (QFileInfo(texture).isReadable()) {
        style.backgroundImageURL = QUrl::fromLocalFile(QDir::cleanPath(texture));
        style.backgroundType = BackgroundType::image;
    }
    return style;
}

} // namespace framora

#include "platform/desktop/pictures/DesktopSettingsPlace.h"

#include <QFileInfo>
#include <QSettings>

namespace framora {

std::vector<QUrl> lxqtPictures(const DesktopSettingsPlace& place) {
    QStringList folders = place.systemConfig;
    folders.prepend(place.configFolder);
    for (const QString& folder : folders) {
        for (const char* profile : {"lxqt", "default"}) {
            const QString path =
                QStringLiteral("%1/pcmanfm-qt/%2/settings.conf").arg(folder, QLatin1String(profile));
            constexpr qint64 largest = 1 << 20; // the reader takes all of it
            const QFileInfo file(path);
            if (!file.isFile() || file.size() > largest)
                continue;
            QSettings settings(path, QSettings::IniFormat);
            settings.beginGroup(QStringLiteral("Desktop"));
            const QString picture = settings.value(QStringLiteral("Wallpaper")).toString();
            if (settings.value(QStringLiteral("WallpaperMode")).toString() == u"none" ||
                !picture.startsWith(u'/'))
                return {};
            // One setting for all screens; it is shown on each, or once across all.
            return std::vector<QUrl>(place.screens.size(), QUrl::fromLocalFile(picture));
        }
    }
    return {};
}

} // namespace framora

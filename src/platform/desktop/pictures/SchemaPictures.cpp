#include "platform/desktop/pictures/DesktopSettingsPlace.h"
#include "platform/desktop/pictures/TimedPictures.h"

#include <QFileInfo>

namespace framora {
namespace {

/// A setting holds a URI, or in older ones a path; what is written of a slide show is its list.
QUrl pictureFile(const QString& setting, const QDateTime& now) {
    QUrl url = setting.startsWith(u'/') ? QUrl::fromLocalFile(setting) : QUrl(setting);
    if (!url.isLocalFile())
        return {};
    if (url.path().endsWith(QLatin1String(".xml"), Qt::CaseInsensitive))
        url = timedPicture(url.toLocalFile(), now);
    return url;
}

/// These desktops have one setting for all screens.
std::vector<QUrl> onEachScreen(const DesktopSettingsPlace& place, const QString& schema, const QString& key) {
    const auto options = place.schemaValue(schema, QStringLiteral("picture-options"));
    const auto setting = place.schemaValue(schema, key);
    if (!setting || options == QStringLiteral("none"))
        return {};
    const QUrl url = pictureFile(*setting, place.now);
    if (url.isEmpty())
        return {};
    return std::vector<QUrl>(place.screens.size(), url);
}

} // namespace

std::vector<QUrl> gnomePictures(const DesktopSettingsPlace& place) {
    const QString background = QStringLiteral("org.gnome.desktop.background");
    const auto scheme =
        place.schemaValue(QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("color-scheme"));
    if (scheme == QStringLiteral("prefer-dark")) {
        auto dark = onEachScreen(place, background, QStringLiteral("picture-uri-dark"));
        if (!dark.empty())
            return dark;
    }
    return onEachScreen(place, background, QStringLiteral("picture-uri"));
}

std::vector<QUrl> cinnamonPictures(const DesktopSettingsPlace& place) {
    return onEachScreen(place, QStringLiteral("org.cinnamon.desktop.background"),
                        QStringLiteral("picture-uri"));
}

std::vector<QUrl> matePictures(const DesktopSettingsPlace& place) {
    return onEachScreen(place, QStringLiteral("org.mate.background"), QStringLiteral("picture-filename"));
}

} // namespace framora

#include "platform/desktop/pictures/DesktopSettingsPlace.h"
#include "platform/desktop/pictures/KdeConfig.h"
#include "platform/desktop/pictures/PicturePackage.h"

#include <QDir>
#include <QFileInfo>
#include <optional>

namespace framora {
namespace {

/// One desktop of one activity on one screen.
struct Containment {
    QString picture; ///< As it is set: a path, a URL, or the name of a package; empty for the theme's own.
    int screen = -1;
    bool isOfActivity = false;
    bool showsPicture = false;
};

QString generalGroup(const QString& containment, const QString& plugin) {
    return QStringLiteral("%1][Wallpaper][%2][General").arg(containment, plugin);
}

std::vector<Containment> containments(const KdeConfig& applets, const QString& activity) {
    std::vector<Containment> found;
    for (const QString& group : applets.groups()) {
        // "Containments][12" and no deeper.
        if (!group.startsWith(QLatin1String("Containments][")) || group.count(QLatin1String("][")) != 1)
            continue;
        const QString plugin = applets.value(group, QStringLiteral("wallpaperplugin"));
        if (plugin.isEmpty()) // a panel
            continue;
        Containment containment;
        containment.screen = applets.value(group, QStringLiteral("lastScreen"), QStringLiteral("-1")).toInt();
        containment.isOfActivity = applets.value(group, QStringLiteral("activityId")) == activity;
        containment.showsPicture =
            plugin == u"org.kde.image" || plugin == u"org.kde.slideshow" || plugin == u"org.kde.potd";
        containment.picture = applets.value(generalGroup(group, plugin), QStringLiteral("Image"));
        found.push_back(containment);
    }
    return found;
}

/// What a look that nobody has changed brings along.
QString pictureOfLook(const DesktopSettingsPlace& place, const KdeConfig& globals) {
    const QString look = globals.value(QStringLiteral("KDE"), QStringLiteral("LookAndFeelPackage"),
                                       QStringLiteral("org.kde.breeze.desktop"));
    for (const QString& folder : place.dataFolders) {
        const KdeConfig defaults(
            QStringLiteral("%1/plasma/look-and-feel/%2/contents/defaults").arg(folder, look));
        const QString picture = defaults.value(QStringLiteral("Wallpaper"), QStringLiteral("Image"));
        if (!picture.isEmpty())
            return picture;
    }
    return QStringLiteral("Next");
}

/// As the toolkit of that desktop tells a dark colour scheme.
bool isDark(const KdeConfig& globals) {
    const QStringList parts =
        globals.value(QStringLiteral("Colors:Window"), QStringLiteral("BackgroundNormal")).split(u',');
    if (parts.size() < 3)
        return false;
    constexpr int leastLight = 192;
    return (parts[0].toInt() * 11 + parts[1].toInt() * 16 + parts[2].toInt() * 5) / 32 < leastLight;
}

QUrl pictureFile(const DesktopSettingsPlace& place, const QString& setting, QSize screen, bool dark) {
    QString path = setting.startsWith(u'/') ? setting : QUrl(setting).toLocalFile();
    if (path.isEmpty() && !setting.isEmpty() && !setting.contains(u'/'))
        for (const QString& folder : place.dataFolders)
            if (const QString package = folder + QStringLiteral("/wallpapers/") + setting;
                path.isEmpty() && QFileInfo(package).isDir())
                path = package;
    if (path.isEmpty())
        return {};
    path = QDir::cleanPath(path);
    if (QFileInfo(path).isDir())
        path = pictureOfPackage(path, screen, dark);
    return path.isEmpty() ? QUrl() : QUrl::fromLocalFile(path);
}

} // namespace

std::vector<QUrl> plasmaPictures(const DesktopSettingsPlace& place) {
    const KdeConfig applets(place.configFolder + QStringLiteral("/plasma-org.kde.plasma.desktop-appletsrc"));
    const KdeConfig globals(place.configFolder + QStringLiteral("/kdeglobals"));
    const KdeConfig activities(place.configFolder + QStringLiteral("/kactivitymanagerdrc"));
    const auto all =
        containments(applets, activities.value(QStringLiteral("main"), QStringLiteral("currentActivity")));
    const bool dark = isDark(globals);
    std::vector<QUrl> pictures;
    for (std::size_t i = 0; i < place.screens.size(); ++i) {
        const Containment* chosen = nullptr;
        for (const Containment& each : all)
            if (each.screen == int(i) && (!chosen || (each.isOfActivity && !chosen->isOfActivity)))
                chosen = &each;
        if (!chosen || !chosen->showsPicture)
            continue;
        const QString setting = chosen->picture.isEmpty() ? pictureOfLook(place, globals) : chosen->picture;
        const QUrl url = pictureFile(place, setting, place.screens[i].pixelFrame.size(), dark);
        if (!url.isEmpty())
            pictures.push_back(url);
    }
    return pictures;
}

} // namespace framora

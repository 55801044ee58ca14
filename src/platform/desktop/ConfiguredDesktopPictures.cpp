#include "platform/desktop/ConfiguredDesktopPictures.h"

#include "platform/desktop/pictures/DesktopSettingsPlace.h"

namespace framora {
namespace {

struct Desktop {
    const char* name; ///< In XDG_CURRENT_DESKTOP.
    std::vector<QUrl> (*pictures)(const DesktopSettingsPlace&);
};

constexpr Desktop desktops[] = {
    {"X-Cinnamon", cinnamonPictures}, {"Cinnamon", cinnamonPictures}, {"MATE", matePictures},
    {"XFCE", xfcePictures},           {"KDE", plasmaPictures},        {"LXQt", lxqtPictures},
    {"GNOME", gnomePictures},         {"Budgie", gnomePictures},      {"Unity", gnomePictures},
    {"Pantheon", gnomePictures},
};

} // namespace

DesktopPictures::Lookup ConfiguredDesktopPictures::lookup() {
    DesktopSettingsPlace place = DesktopSettingsPlace::ofThisSession();
    place.screens = m_screens.screens();
    // The desktop's own name first, then those whose ways it shares: "ubuntu:GNOME".
    for (const QString& name : qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':'))
        for (const Desktop& desktop : desktops)
            if (name.compare(QLatin1String(desktop.name), Qt::CaseInsensitive) == 0)
                return [place, &desktop](const std::stop_token& stop) {
                    DesktopSettingsPlace asked = place;
                    asked.schemaValue = [&](const QString& schema, const QString& key) {
                        return DesktopSettingsPlace::valueOfSchema(schema, key, stop);
                    };
                    return desktop.pictures(asked);
                };
    return [](const std::stop_token&) { return std::vector<QUrl>(); };
}

} // namespace framora

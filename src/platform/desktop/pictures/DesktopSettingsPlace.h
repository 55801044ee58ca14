#pragma once

#include "platform/Screens.h"

#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <optional>
#include <stop_token>
#include <vector>

namespace framora {

/// Where a desktop keeps its settings, and the screens that they are asked for.
struct DesktopSettingsPlace {
    QString configFolder;        ///< The user's.
    QStringList systemConfig;    ///< The system's, the most important first.
    QStringList dataFolders;     ///< The user's first, then the system's.
    std::vector<Screen> screens; ///< In their order.
    QDateTime now;               ///< Local; slide shows go by it.
    /// The value of a key of a settings schema; nothing when the schema or the key is not installed.
    std::function<std::optional<QString>(const QString& schema, const QString& key)> schemaValue;

    /// As the environment of this process says.
    static DesktopSettingsPlace ofThisSession();
    /// What `schemaValue` is in a session. Waits a second at most, and no longer once `stop` is asked for.
    static std::optional<QString> valueOfSchema(const QString& schema, const QString& key,
                                                const std::stop_token& stop = {});
};

// The pictures, one a screen, none for a screen without; the files need not exist.

/// GNOME, and the desktops that keep its settings: Budgie, Unity, Pantheon.
std::vector<QUrl> gnomePictures(const DesktopSettingsPlace& place);
std::vector<QUrl> cinnamonPictures(const DesktopSettingsPlace& place);
std::vector<QUrl> matePictures(const DesktopSettingsPlace& place);
std::vector<QUrl> xfcePictures(const DesktopSettingsPlace& place);
std::vector<QUrl> plasmaPictures(const DesktopSettingsPlace& place);
std::vector<QUrl> lxqtPictures(const DesktopSettingsPlace& place);

} // namespace framora

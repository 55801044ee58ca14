#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

/// The desktop theme that an XSETTINGS manager names ("Adwaita-dark"); empty where none runs. Takes a
/// connection of its own for the moment.
QString x11ThemeName();

/// Net/ThemeName in the value of an _XSETTINGS_SETTINGS property; empty when it is not there or damaged.
QString themeNameInXSettings(const QByteArray& property);

} // namespace framora

#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace framora {

/// The desktop theme that an XSETTINGS manager names ("Adwaita-dark"); empty where none runs. Takes a
/// connection of its own for the moment.
QString x11ThemeName();

/// The sound theme that it names ("freedesktop"), likewise. Any thread may ask.
QString x11SoundThemeName();

/// The text of the setting `name` in the value of an _XSETTINGS_SETTINGS property; empty when it is not there
/// or damaged.
QString textInXSettings(const QByteArray& property, QByteArrayView name);

} // namespace framora

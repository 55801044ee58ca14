#pragma once

#include <QByteArray>
#include <QString>

namespace framora {

/// The application id under which the desktop's portals know a process outside any sandbox: what the desktop
/// put into the name of the systemd unit that it started the program in. Empty when it was started otherwise,
/// as from a terminal; portals keep one common record for all such programs.
QString hostApplicationId();

/// The same from the contents of a /proc/PID/cgroup.
QString applicationIdOfControlGroup(const QByteArray& controlGroups);

} // namespace framora

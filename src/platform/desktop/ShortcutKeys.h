#pragma once

#include <QString>

namespace framora {

/// Whether a desktop's text for a shortcut ("Meta+Alt+$", "<Super><Alt>dollar") says the same keys as a
/// trigger in the portals' syntax ("LOGO+ALT+dollar"), whatever their order and case.
bool isSameShortcut(const QString& trigger, const QString& desktopText);

} // namespace framora

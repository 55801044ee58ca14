#include "platform/desktop/CurrentDesktop.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

namespace framora {

bool isCurrentDesktop(const char* name) {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP")
        .split(u':', Qt::SkipEmptyParts)
        .contains(QLatin1String(name), Qt::CaseInsensitive);
}

HandBinding handBindingOfDesktop() {
    HandBinding binding{HandBinding::Kind::command, QCoreApplication::applicationFilePath()};
    if (isCurrentDesktop("sway") || qEnvironmentVariableIsSet("SWAYSOCK"))
        binding.kind = HandBinding::Kind::sway;
    else if (isCurrentDesktop("GNOME"))
        binding.kind = HandBinding::Kind::gnome;
    return binding;
}

} // namespace framora

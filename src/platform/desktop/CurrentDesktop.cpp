#include "platform/desktop/CurrentDesktop.h"

#include <QString>
#include <QStringList>

namespace framora {

bool isCurrentDesktop(const char* name) {
    return qEnvironmentVariable("XDG_CURRENT_DESKTOP")
        .split(u':', Qt::SkipEmptyParts)
        .contains(QLatin1String(name), Qt::CaseInsensitive);
}

} // namespace framora

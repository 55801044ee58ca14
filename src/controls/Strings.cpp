#include "controls/Strings.h"

#include "platform/Localized.h"

namespace framora {

QString Strings::localized(const QString& key) {
    return framora::localized(key);
}

} // namespace framora

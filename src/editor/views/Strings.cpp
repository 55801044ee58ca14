#include "editor/views/Strings.h"

#if __has_include("platform/Localized.h")
#include "platform/Localized.h"
#else
namespace framora {
static QString localized(const QString& key) {
    return key;
}
} // namespace framora
#endif

namespace framora {

QString Strings::localized(const QString& key) {
    return framora::localized(key);
}

} // namespace framora

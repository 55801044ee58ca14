#include "platform/ProgramVersion.h"

namespace framora {

QString programVersion() {
    return QStringLiteral(FRAMORA_VERSION);
}

} // namespace framora

#pragma once

#include <QString>

namespace framora {

/// The program's version as the build was configured with, "1.2.3".
QString programVersion();

} // namespace framora

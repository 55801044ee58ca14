#pragma once

#include <QIcon>

namespace framora {

/// The program's own icon, for its windows and the task bar.
QIcon applicationIcon();

} // namespace framora

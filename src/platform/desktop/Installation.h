#pragma once

#include <QString>

namespace framora {

// Where the program's own parts stand: beside the program in the build tree, else where an installation keeps
// them, told from the program's own place, so that an installed tree may be moved as a whole. A path is given
// also when nothing is there.

/// An executable that only the program itself starts.
QString privateExecutable(const QString& name);
/// The shared object of a module, named without its suffix.
QString modulePath(const QString& name);

} // namespace framora

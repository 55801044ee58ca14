#pragma once

#include "Contender.h"

#include <QList>

namespace framora::comparison {

/// What the machine takes for one copy and for one fill of an output bitmap, memory touched before, the rows
/// divided over all threads.
QList<Contender> machineSpeed();

} // namespace framora::comparison

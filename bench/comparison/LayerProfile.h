#pragma once

#include "Turns.h"
#include "Workloads.h"

namespace framora::comparison {

/// Where an export's time goes: the whole picture, the same without one of its layers each, and without any.
/// A layer takes about the difference, and what it saves of the layers that it hides.
QList<Contender> layerProfile(Workload workload, const Inputs& inputs);

} // namespace framora::comparison

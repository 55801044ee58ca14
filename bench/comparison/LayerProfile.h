#pragma once

#include "Turns.h"
#include "Workloads.h"

namespace framora::comparison {

/// Where an export's time goes: the whole picture, and the same without one of its layers each. A layer's
/// share is about the difference.
QList<Contender> layerProfile(Workload workload, const Inputs& inputs);

} // namespace framora::comparison

#pragma once

#include "Contender.h"
#include "Workloads.h"

#include <optional>

namespace framora::comparison {

/// W1 by Cairo on a target that is allocated and touched, bilinear; nothing when it was not there at build
/// time.
std::optional<Contender> cairoExport(const Inputs& inputs);

} // namespace framora::comparison

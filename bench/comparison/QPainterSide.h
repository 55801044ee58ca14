#pragma once

#include "Contender.h"
#include "Workloads.h"

namespace framora::comparison {

/// W1 and W2 by QPainter on a target that is allocated and touched: bilinear, antialiased.
Contender painterExport(Workload workload, const Inputs& inputs);

/// The photograph by Qt's own reader, to 32 bits a pixel.
Contender painterDecode(const Inputs& inputs);

/// A target filled with W1's gradient.
QImage gradientTarget(const Inputs& inputs);

} // namespace framora::comparison

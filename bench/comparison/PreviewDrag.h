#pragma once

#include "Turns.h"
#include "Workloads.h"

namespace framora::comparison {

/// W6: frames of the preview while the screenshot is dragged by whole pixels, after the first frame.
Measurement dragPreview(Workload workload, const Inputs& inputs, int frames);

} // namespace framora::comparison

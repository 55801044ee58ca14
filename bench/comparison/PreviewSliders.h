#pragma once

#include "Turns.h"
#include "Workloads.h"

namespace framora::comparison {

/// Frames of the preview while one slider after the other is dragged to and fro, with a screenshot of
/// 3840 x 2160: a measurement for each.
QList<Measurement> dragSliders(const Inputs& inputs, int frames);

} // namespace framora::comparison

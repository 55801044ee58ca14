#pragma once

#include "Contender.h"
#include "Workloads.h"

#include <optional>

namespace framora::comparison {

// OpenCV on all its threads, on targets that are allocated and touched; nothing when it was not there at
// build time.

/// W2's screenshot alone: the cubic warp onto a target that holds the gradient already, corners not rounded.
std::optional<Contender> openCvWarp(const Inputs& inputs);

/// W3's background alone: stretched bilinearly and blurred, in three channels.
std::optional<Contender> openCvBlur(const Inputs& inputs);

} // namespace framora::comparison

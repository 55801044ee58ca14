#pragma once

#include <hwy/highway.h>

namespace framora::raster {

/// Calls body(name) once for every kind of vector unit that this machine has and the kernels are built for;
/// they run on that one meanwhile.
template <typename Body> void forEachTarget(const Body& body) {
    for (std::int64_t targets = hwy::SupportedTargets() & HWY_TARGETS; targets != 0;) {
        const std::int64_t target = targets & -targets;
        targets &= ~target;
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        body(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

} // namespace framora::raster

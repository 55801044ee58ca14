#pragma once

#include "editor/render/raster/Homography.h"

#include <vector>

namespace framora::raster {

/// Where a layer lies: the map from its own points to output pixels, and the maps whose depth must be
/// positive for a point to be seen, one for every projection on the way.
struct Placement {
    Homography toOutput;
    std::vector<Homography> projections;

    /// The same layer seen with `inner` applied before.
    Placement after(const Homography& inner) const;
};

} // namespace framora::raster

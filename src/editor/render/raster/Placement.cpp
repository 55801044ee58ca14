#include "editor/render/raster/Placement.h"

namespace framora::raster {

Placement Placement::after(const Homography& inner) const {
    Placement placement{toOutput * inner, {}};
    for (const Homography& projection : projections)
        placement.projections.push_back(projection * inner);
    return placement;
}

} // namespace framora::raster

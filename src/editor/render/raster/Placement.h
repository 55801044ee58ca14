#pragma once

#include "editor/render/raster/Homography.h"

#include <vector>

namespace framora::raster {

/// Where a layer lies: the map from its own points to output pixels, counted from the pixel (originX,
/// originY), and the maps whose depth must be positive for a point to be seen, one for every projection on
/// the way.
///
/// A layer that is moved by whole pixels moves its origin and keeps its map, bit for bit.
struct Placement {
    Homography toOutput = {};
    std::vector<Homography> projections = {};
    int originX = 0;
    int originY = 0;

    /// From output pixels, counted from the output's own top left, to the layer's points.
    Homography toLocal() const;
    /// Adds a movement in output pixels: the whole part to the origin, the rest, to the nearest 4096th, to
    /// the map. Movements out of all proportion leave the map not finite.
    void move(double x, double y);
    bool operator==(const Placement&) const = default;
};

} // namespace framora::raster

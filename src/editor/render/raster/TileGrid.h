#pragma once

#include <algorithm>
#include <cstdint>

namespace framora::raster {

/// Where the tiles of a picture begin along one axis: each is `size` pixels long, but the first one ends at
/// `lead` if that is above 0, and the last one with the picture.
struct TileAxis {
    int length = 0; ///< Of the picture.
    int size = 1;
    int lead = 0; ///< 0...size - 1.

    int indexOf(int at) const { return at < lead ? 0 : (at - lead) / size + (lead > 0 ? 1 : 0); }
    int count() const { return length > 0 ? indexOf(length - 1) + 1 : 0; }
    /// The picture's end for count().
    int start(int index) const {
        const int before = lead > 0 ? size - lead : 0;
        return int(std::clamp<std::int64_t>(std::int64_t(index) * size - before, 0, length));
    }
    bool operator==(const TileAxis&) const = default;
};

/// Where the tiles of a picture begin.
struct TileGrid {
    TileAxis columns;
    TileAxis rows;
    bool operator==(const TileGrid&) const = default;
};

} // namespace framora::raster

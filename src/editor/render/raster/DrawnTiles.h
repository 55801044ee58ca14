#pragma once

#include "editor/render/raster/Compositor.h"
#include "editor/render/raster/TileGrid.h"

#include <cstdint>
#include <vector>

namespace framora::raster {

/// What the tiles of one picture show, so that the next frame is drawn over them without those that would
/// come out the same. Between two frames nobody else writes to the picture, or clear() is called.
///
/// A layer is known again by its fields and its paint, which has to be the same object; so whoever builds
/// layers keeps the paints that did not change. The last frame's paints are held until the next one.
class DrawnTiles {
public:
    /// Nothing is known of the picture: the next frame is drawn whole.
    void clear();

    /// Whether the last frame wrote anything into a part of the picture.
    bool hasChanged(const TileRect& part) const;
    /// The largest rectangle of tiles that the last frame left as they were; without area when there is none.
    TileRect unchanged() const;

    // For compose().

    /// Starts a frame of `layers`.
    void begin(MutablePixelView picture, const TileGrid& grid, const std::vector<Layer>& layers);
    /// Tells a layer of this frame, or its colours without its shape, from every other that was ever drawn
    /// here.
    std::uint64_t serial(std::size_t layer) const { return m_serials[layer].ofLayer; }
    std::uint64_t colorSerial(std::size_t layer) const { return m_serials[layer].ofColors; }
    /// The tile whose first pixel is given shows what `content` tells from now on. False when it does
    /// already. Different tiles by different threads. Who then cannot draw it calls clear().
    bool take(int x, int y, std::uint64_t content);

private:
    struct Serials {
        std::uint64_t ofLayer;
        std::uint64_t ofColors;
    };
    std::size_t index(int column, int row) const {
        return std::size_t(row) * std::size_t(m_grid.columns.count()) + std::size_t(column);
    }

    MutablePixelView m_picture;
    TileGrid m_grid;
    std::vector<Layer> m_layers; ///< Of the last frame.
    std::vector<Serials> m_serials;
    std::uint64_t m_lastSerial = 0;
    std::vector<std::uint64_t> m_contents; ///< Of each tile; 0 where it is not known.
    std::vector<std::uint8_t> m_isChanged;
};

} // namespace framora::raster

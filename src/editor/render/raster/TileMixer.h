#pragma once

#include "editor/render/raster/BandCoverage.h"
#include "editor/render/raster/Layer.h"
#include "editor/render/raster/MixTile.h"
#include "editor/render/raster/PixelView.h"

#include <vector>

namespace framora::raster {

/// Mixes layers on the tiles of a band of rows, one after the other. For one thread; its memory is used again
/// for the next band.
class TileMixer {
public:
    /// Two blocks of pixels being mixed and one of coverage stay in the nearest caches.
    static constexpr std::size_t mostPixels = 2048;
    static constexpr int mostColumns = 128; ///< Of a tile.

    /// `layers` and their `shapes` must live until the last tile of the band.
    void beginBand(const TileRect& band, const std::vector<Layer>& layers,
                   const std::vector<LayerShape>& shapes);
    /// Finds what is seen of a tile of the band; everything below is about that tile.
    void begin(const TileRect& tile);

    /// The first layer of which something is seen; their number when no layer touches the tile.
    std::size_t firstSeen() const { return m_first; }
    /// How much of the tile a layer from firstSeen() on takes.
    const Share& share(std::size_t layer) const { return m_shares[layer]; }
    /// Whether nothing is seen but firstSeen(), which covers the tile whole with its paint alone.
    bool isSole() const;
    /// The pixels, valid until the next call. Some layer touches the tile.
    const MixPixel* mix();
    /// The same as pixels of a picture.
    void draw(MutablePixelView out, Storing storing);

private:
    void mixLayers(std::size_t end);
    void blendLayer(std::size_t index);
    void mixEdge(const Layer& layer, const TileRect& block);
    bool coversTile(std::size_t layer) const {
        return m_shares[layer].kind == Share::whole && m_shares[layer].touched.width == m_tile.width;
    }
    std::size_t overlayOnTop() const;
    bool isSurelyOpaque(std::size_t end) const;

    const std::vector<Layer>* m_layers = nullptr;
    TileRect m_tile;
    std::size_t m_first = 0;
    BandCoverage m_coverage;
    std::vector<Share> m_shares; ///< Nothing is known of the layers before the first that is seen.
    std::vector<MixPixel> m_mixed = std::vector<MixPixel>(mostPixels);
    std::vector<MixPixel> m_shaded = std::vector<MixPixel>(mostPixels); ///< Of one layer.
    std::vector<MixPixel> m_covered = std::vector<MixPixel>(mostPixels);
};

} // namespace framora::raster

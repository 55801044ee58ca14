#include "editor/render/raster/Compositor.h"

#include "editor/render/raster/DrawnTiles.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/TileMixer.h"

#include <algorithm>

namespace framora::raster {
namespace {

constexpr TileRect longTile{0, 0, 128, 16};
constexpr TileRect squareTile{0, 0, 64, 32};
static_assert(longTile.width <= TileMixer::mostColumns && longTile.area() <= TileMixer::mostPixels);
static_assert(squareTile.width <= TileMixer::mostColumns && squareTile.area() <= TileMixer::mostPixels);
static_assert(longTile.width % TileTaker::grain == 0 && longTile.height % TileTaker::grain == 0);
static_assert(squareTile.width % TileTaker::grain == 0 && squareTile.height % TileTaker::grain == 0);
// A larger picture is out of the caches before anybody reads it.
constexpr std::size_t cachedBytes = std::size_t(16) << 20;

/// What a tile shows, told from all else that may have been drawn there.
std::uint64_t contentOf(const TileMixer& tile, const DrawnTiles& drawn, std::size_t layers) {
    std::uint64_t content = 0x2545f4914f6cdd1du; // of nothing
    for (std::size_t i = tile.firstSeen(); i < layers; ++i)
        if (tile.share(i).kind != Share::none) {
            content += tile.share(i).kind == Share::whole ? drawn.colorSerial(i) : drawn.serial(i);
            content *= 0x9e3779b97f4a7c15u;
            content ^= content >> 29;
        }
    return std::max<std::uint64_t>(content, 1);
}

/// The layers' shapes, ready to be asked for their rows.
std::vector<LayerShape> shapesOf(const std::vector<Layer>& layers, int height) {
    std::vector<LayerShape> shapes;
    shapes.reserve(layers.size());
    for (const Layer& layer : layers) {
        LayerShape& shape = shapes.emplace_back();
        shape.shape = Coverage(layer.shape.outline(layer.placement));
        shape.shape.index(height);
        if (layer.hole) {
            shape.hole = Coverage(layer.hole->outline(layer.placement));
            shape.hole.index(height);
            shape.hasHole = true;
        }
    }
    return shapes;
}

/// The tiles of a picture of so many pixels, starting at its corner.
TileGrid plainGrid(const std::vector<Layer>& layers, int width, int height) {
    const bool isSquare =
        std::ranges::any_of(layers, [](const Layer& layer) { return layer.paint->prefersSquareTiles(); });
    const TileRect& size = isSquare ? squareTile : longTile;
    return {{width, size.width}, {height, size.height}};
}

/// The same, starting where the uppermost of the paints that work in blocks wants them.
TileGrid bestGrid(const std::vector<Layer>& layers, int width, int height) {
    TileGrid grid = plainGrid(layers, width, height);
    for (const Layer& layer : layers)
        if (const auto corner = layer.paint->blockCorner()) {
            const auto lead = [](int start, int size) { return (start % size + size) % size; };
            grid.columns.lead = lead(corner->x, grid.columns.size);
            grid.rows.lead = lead(corner->y, grid.rows.size);
        }
    return grid;
}

/// This thread's mixer, ready for a band of rows.
TileMixer& mixerFor(const TileRect& band, const std::vector<Layer>& layers,
                    const std::vector<LayerShape>& shapes) {
    thread_local TileMixer mixer;
    mixer.beginBand(band, layers, shapes);
    return mixer;
}

/// Calls draw(band, mixer) for every row of tiles, each by one thread.
template <typename Draw>
void forEachBand(const TileGrid& grid, const std::vector<Layer>& layers, const Draw& draw) {
    const std::vector<LayerShape> shapes = shapesOf(layers, grid.rows.length);
    parallelFor(grid.rows.count(), [&](int row) {
        const int top = grid.rows.start(row);
        const TileRect band{0, top, grid.columns.length, grid.rows.start(row + 1) - top};
        draw(band, mixerFor(band, layers, shapes));
    });
}

/// Draws a band of rows into `out`, whose first row is the band's. What is `drawn` already, if that is given,
/// is left as it is.
void drawBand(MutablePixelView out, const TileRect& band, const TileAxis& columns, Storing storing,
              std::size_t layers, DrawnTiles* drawn, TileMixer& mixer) {
    for (int column = 0; column < columns.count(); ++column) {
        const int x = columns.start(column);
        const TileRect tile{x, band.y, columns.start(column + 1) - x, band.height};
        mixer.begin(tile);
        if (!drawn || drawn->take(tile.x, tile.y, contentOf(mixer, *drawn, layers)))
            mixer.draw({reinterpret_cast<std::byte*>(out.row(0) + x), tile.width, tile.height, out.stride},
                       storing);
    }
}

} // namespace

void compose(MutablePixelView output, const std::vector<Layer>& layers, DrawnTiles* drawn) {
    if (output.isEmpty())
        return;
    const bool isLarge = std::size_t(output.height) * std::size_t(output.stride) > cachedBytes;
    // Tiles that start where lines of the cache do are written in whole lines.
    constexpr std::size_t line = 64;
    const std::size_t misplaced = reinterpret_cast<std::uintptr_t>(output.data) % line;
    const bool isRegular = isLarge && std::size_t(output.stride) % line == 0 && misplaced > 0;
    TileGrid grid = bestGrid(layers, output.width, output.height);
    if (grid.columns.lead == 0 && isRegular)
        grid.columns.lead = int((line - misplaced) / sizeof(std::uint32_t));
    if (drawn)
        drawn->begin(output, grid, layers);
    forEachBand(grid, layers, [&](const TileRect& band, TileMixer& mixer) {
        const MutablePixelView rows{reinterpret_cast<std::byte*>(output.row(band.y)), band.width, band.height,
                                    output.stride};
        drawBand(rows, band, grid.columns, isLarge ? Storing::streamed : Storing::cached, layers.size(),
                 drawn, mixer);
        if (isLarge)
            flushPixels();
    });
}

struct Compositor::Shapes {
    std::vector<LayerShape> ofLayers;
    TileGrid grid;
};

Compositor::Compositor(int width, int height, std::vector<Layer> layers)
    : m_width(width), m_height(height), m_layers(std::move(layers)),
      m_shapes(
          std::make_unique<Shapes>(Shapes{shapesOf(m_layers, height), bestGrid(m_layers, width, height)})) {}

Compositor::~Compositor() = default;

const TileAxis& Compositor::rowTiles() const {
    return m_shapes->grid.rows;
}

void Compositor::draw(MutablePixelView rows, int top) const {
    const TileGrid& grid = m_shapes->grid;
    const int bottom = top + rows.height;
    for (int y = top, end = 0; y < bottom; y = end) {
        end = std::min(grid.rows.start(grid.rows.indexOf(y) + 1), bottom);
        const TileRect band{0, y, m_width, end - y};
        const MutablePixelView out{reinterpret_cast<std::byte*>(rows.row(y - top)), rows.width, band.height,
                                   rows.stride};
        drawBand(out, band, grid.columns, Storing::cached, m_layers.size(), nullptr,
                 mixerFor(band, m_layers, m_shapes->ofLayers));
    }
}

bool Compositor::isSurelyOpaque() const {
    for (std::size_t i = m_layers.size(); i-- > 0;) {
        const Layer& layer = m_layers[i];
        const LayerShape& shape = m_shapes->ofLayers[i];
        if (hidesWhatLiesUnder(layer) && layer.paint->isOpaque() && !shape.hasHole) {
            int y = 0;
            while (y < m_height) {
                const Coverage::Run run = shape.shape.extent(y, m_width);
                if (run.fullFirst > 0 || run.fullEnd < m_width)
                    break;
                ++y;
            }
            if (y == m_height)
                return true;
        }
        if (layer.blend == Layer::Blend::replace)
            return false;
    }
    return false;
}

void composeTiles(int width, int height, const std::vector<Layer>& layers, TileTaker& taker) {
    const TileGrid grid = plainGrid(layers, width, height);
    forEachBand(grid, layers, [&](const TileRect& band, TileMixer& mixer) {
        thread_local std::vector<TileTaker::Columns> wanted;
        wanted.clear();
        taker.findWanted(band.y, band.y + band.height, wanted);
        for (const TileTaker::Columns& piece : wanted)
            for (int x = piece.first; x < piece.end; x += grid.columns.size) {
                const TileRect tile{x, band.y, std::min(grid.columns.size, piece.end - x), band.height};
                mixer.begin(tile);
                if (mixer.firstSeen() == layers.size() ||
                    (mixer.isSole() && taker.takeSole(tile, mixer.firstSeen())))
                    continue;
                taker.take(tile, mixer.mix());
            }
    });
}

} // namespace framora::raster

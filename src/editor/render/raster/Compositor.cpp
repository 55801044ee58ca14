#include "editor/render/raster/Compositor.h"

#include "editor/render/raster/BandCoverage.h"
#include "editor/render/raster/DrawnTiles.h"
#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PixelEffects.h"
#include "editor/render/raster/SharedEdge.h"
#include "editor/render/raster/TileGrid.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace framora::raster {
namespace {

// Two blocks of pixels being mixed and one of coverage stay in the nearest caches.
constexpr TileRect longTile{0, 0, 128, 16};
constexpr TileRect squareTile{0, 0, 64, 32};
static_assert(longTile.width * longTile.height == squareTile.width * squareTile.height);
static_assert(longTile.height % TileTaker::grain == 0 && squareTile.width % TileTaker::grain == 0);
// A larger picture is out of the caches before anybody reads it.
constexpr std::size_t cachedBytes = std::size_t(16) << 20;
constexpr std::size_t tileArea = std::size_t(longTile.width) * longTile.height;

/// What one thread needs while it draws a band of tiles.
struct Scratch {
    BandCoverage layers;
    std::vector<Share> shares;
    std::vector<MixPixel> mixed = std::vector<MixPixel>(tileArea);
    std::vector<MixPixel> shaded = std::vector<MixPixel>(tileArea);
    std::vector<MixPixel> coverage = std::vector<MixPixel>(tileArea);
};

void mixLayer(const Layer& layer, const TileRect& block, MixPixel* out) {
    const bool isUsualNoise = !layer.noise || (layer.noise->intensity >= 0 && layer.noise->intensity <= 1);
    if (isUsualNoise && (!layer.adjustment || layer.adjustment->isUsual())) {
        layer.paint->mix(block, out);
        if (layer.adjustment)
            adjustPixels(out, block.area(), layer.adjustment->saturation, layer.adjustment->brightness);
        for (int y = block.y; layer.noise && y < block.y + block.height; ++y, out += block.width)
            grainPixels(out, std::size_t(block.width), block.x - layer.noise->originX,
                        y - layer.noise->originY, layer.noise->intensity);
        return;
    }
    std::array<Float4, longTile.width> colors;
    for (int y = block.y; y < block.y + block.height; ++y) {
        layer.paint->shade(block.x, y, block.width, colors.data());
        if (layer.adjustment)
            adjustColors(colors.data(), block.width, layer.adjustment->saturation,
                         layer.adjustment->brightness);
        if (layer.noise)
            addNoise(colors.data(), block.width, block.x - layer.noise->originX, y - layer.noise->originY,
                     layer.noise->intensity);
        for (int x = 0; x < block.width; ++x)
            *out++ = toMix(colors[std::size_t(x)]);
    }
}

Float4 toFloats(const MixPixel& pixel) {
    return Float4{float(pixel.channel[0]), float(pixel.channel[1]), float(pixel.channel[2]),
                  float(pixel.channel[3])} *
           splat(1.0f / mixOne);
}

/// Mixes a layer that shares its edge onto the pixels on it, and takes their coverage away.
void mixEdge(const Layer& layer, const TileRect& block, const TileRect& tile, Scratch& scratch) {
    const auto most = std::int16_t(replicated(layer.opacity).channel[0]);
    for (int y = 0; y < block.height; ++y)
        for (int x = 0; x < block.width; ++x) {
            const std::size_t i = std::size_t(y) * std::size_t(block.width) + std::size_t(x);
            MixPixel& coverage = scratch.coverage[i];
            if (coverage.channel[0] <= 0 || coverage.channel[0] >= most)
                continue;
            MixPixel& under = scratch.mixed[std::size_t(block.y - tile.y + y) * std::size_t(tile.width) +
                                            std::size_t(block.x - tile.x + x)];
            under = toMix(mixedInside(toFloats(under), toFloats(scratch.shaded[i]) * splat(layer.opacity),
                                      float(coverage.channel[0]) / float(most),
                                      layer.blend == Layer::Blend::overlay));
            coverage = {};
        }
}

/// Mixes pixels of a layer, each as far as it is covered.
void blendCovered(const Layer& layer, MixPixel* under, const MixPixel* shaded, const MixPixel* coverage,
                  std::size_t count) {
    switch (layer.blend) {
    case Layer::Blend::normal:
        return blendOver(under, shaded, coverage, count);
    case Layer::Blend::overlay:
        return blendOverlay(under, shaded, coverage, count);
    case Layer::Blend::replace:
        return blendInstead(under, shaded, coverage, count);
    }
}

/// Mixes pixels of a layer that covers them whole.
void blendWhole(const Layer& layer, MixPixel* under, const MixPixel* shaded, const MixPixel* coverage,
                std::size_t count) {
    const std::int16_t even = replicated(layer.opacity).channel[0];
    if (layer.opacity == 1 && (layer.blend == Layer::Blend::replace ||
                               (layer.blend == Layer::Blend::normal && layer.paint->isOpaque())))
        std::copy_n(shaded, count, under);
    else if (layer.blend == Layer::Blend::replace)
        blendInstead(under, shaded, coverage, count);
    else if (layer.blend == Layer::Blend::overlay)
        blendOverlay(under, shaded, even, count);
    else if (layer.opacity == 1)
        blendOver(under, shaded, count);
    else
        blendOver(under, shaded, even, count);
}

/// Whether what a layer covers whole is its paint in overlay mode and nothing else.
bool isPlainOverlay(const Layer& layer) {
    return layer.blend == Layer::Blend::overlay && layer.opacity == 1 && !layer.adjustment && !layer.noise;
}

/// Mixes pixels that a layer covers whole and whose rows are `stride` apart, if its paint can do that at
/// once.
bool blendAtOnce(const Layer& layer, const TileRect& block, MixPixel* under, std::ptrdiff_t stride) {
    return isPlainOverlay(layer) && layer.paint->overlay(block, under, stride);
}

/// Mixes a layer onto row y. What it covers whole is mixed as such, and what it does not touch stays as it
/// is, both to the last bit: so no pixel depends on the block that it is mixed in.
void blendRow(const Layer& layer, const BandCoverage::Runs& runs, int left, int y, MixPixel* under,
              const MixPixel* shaded, const MixPixel* coverage) {
    const auto& [run, hole] = runs;
    const auto blend = [&](auto mix, int from, int to) {
        if (from < to &&
            (mix != blendWhole || !blendAtOnce(layer, {from, y, to - from, 1}, under + (from - left), 0)))
            mix(layer, under + (from - left), shaded + (from - left), coverage + (from - left),
                std::size_t(to - from));
    };
    if (hole.isEmpty()) {
        blend(blendCovered, run.first, run.fullFirst);
        blend(blendWhole, run.fullFirst, run.fullEnd);
        blend(blendCovered, run.fullEnd, run.end);
        return;
    }
    std::array ends = {run.fullFirst, hole.first,  hole.fullFirst, hole.fullEnd,
                       hole.end,      run.fullEnd, run.end};
    std::ranges::sort(ends);
    int from = run.first;
    for (const int end : ends) {
        const int to = std::min(end, run.end);
        const bool isOutside = hole.fullFirst < hole.fullEnd && from >= hole.fullFirst && to <= hole.fullEnd;
        const bool isWhole =
            from >= run.fullFirst && to <= run.fullEnd && (to <= hole.first || from >= hole.end);
        if (isWhole)
            blend(blendWhole, from, to);
        else if (!isOutside)
            blend(blendCovered, from, to);
        from = std::max(from, to);
    }
}

/// Mixes a layer onto the tile where it touches it.
void blendLayer(const Layer& layer, std::size_t index, const Share& share, const TileRect& tile,
                Scratch& scratch) {
    const TileRect& block = share.touched;
    const bool isPartly = share.kind == Share::partly;
    MixPixel* const first =
        scratch.mixed.data() + std::ptrdiff_t(block.y - tile.y) * tile.width + (block.x - tile.x);
    if (!isPartly && blendAtOnce(layer, block, first, tile.width))
        return;
    mixLayer(layer, block, scratch.shaded.data());
    if (isPartly)
        scratch.layers.cover(index, layer.opacity, block, scratch.coverage.data());
    else if (layer.blend == Layer::Blend::replace && layer.opacity < 1)
        std::fill_n(scratch.coverage.data(), block.area(), replicated(layer.opacity));
    if (isPartly && layer.sharesEdge)
        mixEdge(layer, block, tile, scratch);
    const auto width = std::size_t(block.width);
    for (int y = 0; y < block.height; ++y) {
        MixPixel* under = first + std::ptrdiff_t(y) * tile.width;
        const MixPixel* shaded = scratch.shaded.data() + std::size_t(y) * width;
        const MixPixel* coverage = scratch.coverage.data() + std::size_t(y) * width;
        if (isPartly)
            blendRow(layer, scratch.layers.runs(index, block, block.y + y), block.x, block.y + y, under,
                     shaded, coverage);
        else
            blendWhole(layer, under, shaded, coverage, width);
    }
}

/// Finds the layers' shares of a tile and says from which layer on something is seen of it, their number when
/// none touches it. The shares of what lies below are not written, and those above it are without the columns
/// at the tile's sides that an opaque layer hides.
std::size_t firstSeen(const std::vector<Layer>& layers, const TileRect& tile, Scratch& scratch) {
    std::vector<Share>& shares = scratch.shares;
    std::size_t first = 0;
    int left = tile.x;
    int right = tile.x + tile.width;
    for (std::size_t i = layers.size(); i-- > 0;) {
        shares[i] = scratch.layers.share(i, tile);
        TileRect& touched = shares[i].touched;
        const int end = std::min(touched.x + touched.width, right);
        touched.x = std::max(touched.x, left);
        touched.width = end - touched.x;
        if (touched.width <= 0)
            shares[i] = {};
        if (shares[i].kind == Share::none || !hidesWhatLiesUnder(layers[i]))
            continue;
        const auto [hiddenFirst, hiddenEnd] = scratch.layers.wholeColumns(i);
        if (hiddenFirst <= left)
            left = std::max(left, hiddenEnd);
        if (hiddenEnd >= right)
            right = std::min(right, hiddenFirst);
        if (left >= right) {
            first = i;
            break;
        }
    }
    while (first < layers.size() && shares[first].kind == Share::none)
        ++first;
    return first;
}

/// What a tile shows, told from all else that may have been drawn there.
std::uint64_t contentOf(const DrawnTiles& drawn, const std::vector<Layer>& layers, std::size_t first,
                        const Scratch& scratch) {
    std::uint64_t content = 0x2545f4914f6cdd1du; // of nothing
    for (std::size_t i = first; i < layers.size(); ++i)
        if (scratch.shares[i].kind != Share::none) {
            const bool isWhole = scratch.shares[i].kind == Share::whole;
            content += isWhole ? drawn.colorSerial(i) : drawn.serial(i);
            content *= 0x9e3779b97f4a7c15u;
            content ^= content >> 29;
        }
    return std::max<std::uint64_t>(content, 1);
}

/// The one layer that is seen of a tile, which it covers whole with nothing but its paint, if there is one.
const Layer* soleLayer(const std::vector<Layer>& layers, std::size_t first, const TileRect& tile,
                       const std::vector<Share>& shares) {
    if (first == layers.size() || shares[first].kind != Share::whole ||
        shares[first].touched.width != tile.width || !hidesWhatLiesUnder(layers[first]) ||
        layers[first].adjustment || layers[first].noise)
        return nullptr;
    const auto isSeen = [](const Share& share) { return share.kind != Share::none; };
    return std::any_of(shares.begin() + std::ptrdiff_t(first) + 1, shares.end(), isSeen) ? nullptr
                                                                                         : &layers[first];
}

/// Mixes the layers [first, end) onto a tile, into scratch.mixed; the first one is seen.
void mixLayers(const std::vector<Layer>& layers, const TileRect& tile, std::size_t first, std::size_t end,
               Scratch& scratch) {
    const std::vector<Share>& shares = scratch.shares;
    if (shares[first].kind == Share::whole && shares[first].touched.width == tile.width &&
        layers[first].opacity == 1) {
        mixLayer(layers[first], tile, scratch.mixed.data());
        ++first;
    } else {
        std::fill_n(scratch.mixed.data(), tile.area(), MixPixel{});
    }
    for (std::size_t i = first; i < end; ++i)
        if (shares[i].kind != Share::none)
            blendLayer(layers[i], i, shares[i], tile, scratch);
}

/// Mixes a tile into scratch.mixed, from the first layer that is seen on. False when no layer touches it;
/// then nothing is written.
bool mixTile(const std::vector<Layer>& layers, const TileRect& tile, std::size_t first, Scratch& scratch) {
    if (first == layers.size())
        return false;
    mixLayers(layers, tile, first, layers.size(), scratch);
    return true;
}

/// The layer that is the last one on a tile and lies over all of it in overlay mode; the layers' number for
/// none. Not the first one that is seen.
std::size_t overlayOnTop(const std::vector<Layer>& layers, std::size_t first, const TileRect& tile,
                         const std::vector<Share>& shares) {
    std::size_t top = layers.size() - 1;
    while (top > first && shares[top].kind == Share::none)
        --top;
    const Layer& layer = layers[top];
    const bool isWhole = shares[top].kind == Share::whole && shares[top].touched.width == tile.width;
    return top > first && isWhole && isPlainOverlay(layer) ? top : layers.size();
}

/// Whether nothing shows through what the layers [first, end) make of a tile.
bool isSurelyOpaque(const std::vector<Layer>& layers, std::size_t first, std::size_t end,
                    const TileRect& tile, const std::vector<Share>& shares) {
    const auto isHiding = [&](std::size_t i) {
        return shares[i].kind == Share::whole && shares[i].touched.width == tile.width &&
               layers[i].opacity == 1 && layers[i].paint->isOpaque();
    };
    const auto takesAway = [&](std::size_t i) {
        return shares[i].kind != Share::none && layers[i].blend == Layer::Blend::replace &&
               !layers[i].paint->isOpaque();
    };
    bool isOpaque = isHiding(first);
    for (std::size_t i = first; i < end; ++i)
        isOpaque = isOpaque && !takesAway(i);
    return isOpaque;
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

/// Makes the scratch of this thread ready for a band of rows.
Scratch& scratchFor(const TileRect& band, const std::vector<LayerShape>& shapes) {
    thread_local Scratch scratch;
    scratch.layers.begin(band, shapes);
    scratch.shares.resize(shapes.size());
    return scratch;
}

/// Calls draw(band, scratch) for every row of tiles, each by one thread.
template <typename Draw>
void forEachBand(const TileGrid& grid, const std::vector<Layer>& layers, const Draw& draw) {
    const std::vector<LayerShape> shapes = shapesOf(layers, grid.rows.length);
    parallelFor(grid.rows.count(), [&](int row) {
        const int top = grid.rows.start(row);
        const TileRect band{0, top, grid.columns.length, grid.rows.start(row + 1) - top};
        draw(band, scratchFor(band, shapes));
    });
}

/// Draws a band of rows into `out`, whose first row is the band's. What is `drawn` already, if that is given,
/// is left as it is.
void drawBand(MutablePixelView out, const TileRect& band, const TileAxis& columns, Storing storing,
              const std::vector<Layer>& layers, DrawnTiles* drawn, Scratch& scratch) {
    const auto pack = storing == Storing::streamed ? streamPixels : packPixels;
    for (int column = 0; column < columns.count(); ++column) {
        const int x = columns.start(column);
        const TileRect tile{x, band.y, columns.start(column + 1) - x, band.height};
        const std::size_t first = firstSeen(layers, tile, scratch);
        if (drawn && !drawn->take(tile.x, tile.y, contentOf(*drawn, layers, first, scratch)))
            continue;
        const MutablePixelView target{reinterpret_cast<std::byte*>(out.row(0) + x), tile.width, tile.height,
                                      out.stride};
        if (first == layers.size()) {
            for (int y = 0; y < tile.height; ++y)
                std::memset(target.row(y), 0, std::size_t(tile.width) * sizeof(std::uint32_t));
            continue;
        }
        if (const Layer* sole = soleLayer(layers, first, tile, scratch.shares);
            sole && sole->paint->draw(tile, target, storing))
            continue;
        const std::size_t top = overlayOnTop(layers, first, tile, scratch.shares);
        mixLayers(layers, tile, first, top, scratch);
        if (top < layers.size()) {
            const MixRows under{scratch.mixed.data(), tile.width,
                                isSurelyOpaque(layers, first, top, tile, scratch.shares)};
            if (layers[top].paint->drawOverlaid(tile, under, target, storing))
                continue;
            blendLayer(layers[top], top, scratch.shares[top], tile, scratch);
        }
        for (int y = 0; y < tile.height; ++y)
            pack(scratch.mixed.data() + std::ptrdiff_t(y) * tile.width, std::size_t(tile.width),
                 target.row(y));
    }
}

} // namespace

bool hidesWhatLiesUnder(const Layer& layer) {
    return layer.opacity == 1 && (layer.blend == Layer::Blend::replace ||
                                  (layer.blend == Layer::Blend::normal && layer.paint->isOpaque()));
}

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
    forEachBand(grid, layers, [&](const TileRect& band, Scratch& scratch) {
        const MutablePixelView rows{reinterpret_cast<std::byte*>(output.row(band.y)), band.width, band.height,
                                    output.stride};
        drawBand(rows, band, grid.columns, isLarge ? Storing::streamed : Storing::cached, layers, drawn,
                 scratch);
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
        drawBand(out, band, grid.columns, Storing::cached, m_layers, nullptr,
                 scratchFor(band, m_shapes->ofLayers));
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
    forEachBand(grid, layers, [&](const TileRect& band, Scratch& scratch) {
        thread_local std::vector<TileTaker::Columns> wanted;
        wanted.clear();
        taker.findWanted(band.y, band.y + band.height, wanted);
        for (const TileTaker::Columns& piece : wanted)
            for (int x = piece.first; x < piece.end; x += grid.columns.size) {
                const TileRect tile{x, band.y, std::min(grid.columns.size, piece.end - x), band.height};
                const std::size_t first = firstSeen(layers, tile, scratch);
                const Layer* sole = soleLayer(layers, first, tile, scratch.shares);
                if (sole && taker.takeSole(tile, first))
                    continue;
                if (mixTile(layers, tile, first, scratch))
                    taker.take(tile, scratch.mixed.data());
            }
    });
}

} // namespace framora::raster

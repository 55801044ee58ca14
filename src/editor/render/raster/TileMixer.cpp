#include "editor/render/raster/TileMixer.h"

#include "editor/render/raster/MixKernels.h"
#include "editor/render/raster/PixelEffects.h"
#include "editor/render/raster/SharedEdge.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace framora::raster {
namespace {

/// A layer's colours in a block.
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
    std::array<Float4, TileMixer::mostColumns> colors;
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
    if (hidesWhatLiesUnder(layer))
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

} // namespace

void TileMixer::beginBand(const TileRect& band, const std::vector<Layer>& layers,
                          const std::vector<LayerShape>& shapes) {
    m_layers = &layers;
    m_coverage.begin(band, shapes);
    m_shares.resize(shapes.size());
}

/// The shares of what lies below the first layer that is seen are not written, and those above it are without
/// the columns at the tile's sides that an opaque layer hides.
void TileMixer::begin(const TileRect& tile) {
    m_tile = tile;
    std::size_t first = 0;
    int left = tile.x;
    int right = tile.x + tile.width;
    for (std::size_t i = m_layers->size(); i-- > 0;) {
        m_shares[i] = m_coverage.share(i, tile);
        TileRect& touched = m_shares[i].touched;
        const int end = std::min(touched.x + touched.width, right);
        touched.x = std::max(touched.x, left);
        touched.width = end - touched.x;
        if (touched.width <= 0)
            m_shares[i] = {};
        if (m_shares[i].kind == Share::none || !hidesWhatLiesUnder((*m_layers)[i]))
            continue;
        const auto [hiddenFirst, hiddenEnd] = m_coverage.wholeColumns(i);
        if (hiddenFirst <= left)
            left = std::max(left, hiddenEnd);
        if (hiddenEnd >= right)
            right = std::min(right, hiddenFirst);
        if (left >= right) {
            first = i;
            break;
        }
    }
    while (first < m_layers->size() && m_shares[first].kind == Share::none)
        ++first;
    m_first = first;
}

bool TileMixer::isSole() const {
    if (m_first == m_layers->size() || !coversTile(m_first))
        return false;
    const Layer& layer = (*m_layers)[m_first];
    const auto isSeen = [](const Share& share) { return share.kind != Share::none; };
    return hidesWhatLiesUnder(layer) && !layer.adjustment && !layer.noise &&
           std::none_of(m_shares.begin() + std::ptrdiff_t(m_first) + 1, m_shares.end(), isSeen);
}

/// Mixes a layer that shares its edge onto the pixels on it, and takes their coverage away.
void TileMixer::mixEdge(const Layer& layer, const TileRect& block) {
    const auto most = std::int16_t(replicated(layer.opacity).channel[0]);
    for (int y = 0; y < block.height; ++y)
        for (int x = 0; x < block.width; ++x) {
            const std::size_t i = std::size_t(y) * std::size_t(block.width) + std::size_t(x);
            MixPixel& coverage = m_covered[i];
            if (coverage.channel[0] <= 0 || coverage.channel[0] >= most)
                continue;
            MixPixel& under = m_mixed[std::size_t(block.y - m_tile.y + y) * std::size_t(m_tile.width) +
                                      std::size_t(block.x - m_tile.x + x)];
            under = toMix(mixedInside(toFloats(under), toFloats(m_shaded[i]) * splat(layer.opacity),
                                      float(coverage.channel[0]) / float(most),
                                      layer.blend == Layer::Blend::overlay));
            coverage = {};
        }
}

/// Mixes a layer onto the tile where it touches it.
void TileMixer::blendLayer(std::size_t index) {
    const Layer& layer = (*m_layers)[index];
    const TileRect& block = m_shares[index].touched;
    const bool isPartly = m_shares[index].kind == Share::partly;
    MixPixel* const first =
        m_mixed.data() + std::ptrdiff_t(block.y - m_tile.y) * m_tile.width + (block.x - m_tile.x);
    if (!isPartly && blendAtOnce(layer, block, first, m_tile.width))
        return;
    mixLayer(layer, block, m_shaded.data());
    if (isPartly)
        m_coverage.cover(index, layer.opacity, block,
                         layer.sharesEdge || (layer.blend == Layer::Blend::replace && layer.opacity < 1)
                             ? BandCoverage::Extent::all
                             : BandCoverage::Extent::edges,
                         m_covered.data());
    else if (layer.blend == Layer::Blend::replace && layer.opacity < 1)
        std::fill_n(m_covered.data(), block.area(), replicated(layer.opacity));
    if (isPartly && layer.sharesEdge)
        mixEdge(layer, block);
    const auto width = std::size_t(block.width);
    for (int y = 0; y < block.height; ++y) {
        MixPixel* under = first + std::ptrdiff_t(y) * m_tile.width;
        const MixPixel* shaded = m_shaded.data() + std::size_t(y) * width;
        const MixPixel* coverage = m_covered.data() + std::size_t(y) * width;
        if (isPartly)
            blendRow(layer, m_coverage.runs(index, block, block.y + y), block.x, block.y + y, under, shaded,
                     coverage);
        else
            blendWhole(layer, under, shaded, coverage, width);
    }
}

/// Mixes what is seen of the layers before `end`.
void TileMixer::mixLayers(std::size_t end) {
    std::size_t i = m_first;
    if (coversTile(i) && (*m_layers)[i].opacity == 1 && (*m_layers)[i].blend != Layer::Blend::overlay) {
        mixLayer((*m_layers)[i], m_tile, m_mixed.data());
        ++i;
    } else {
        std::fill_n(m_mixed.data(), m_tile.area(), MixPixel{});
    }
    for (; i < end; ++i)
        if (m_shares[i].kind != Share::none)
            blendLayer(i);
}

const MixPixel* TileMixer::mix() {
    mixLayers(m_layers->size());
    return m_mixed.data();
}

/// The layer that is the last one on the tile and lies over all of it in overlay mode; the layers' number for
/// none. Not the first one that is seen.
std::size_t TileMixer::overlayOnTop() const {
    std::size_t top = m_layers->size() - 1;
    while (top > m_first && m_shares[top].kind == Share::none)
        --top;
    return top > m_first && coversTile(top) && isPlainOverlay((*m_layers)[top]) ? top : m_layers->size();
}

/// Whether what the layers before `end` make of the tile is exactly opaque: mixing opaque pixels may round
/// the last bit of their alpha away.
bool TileMixer::isSurelyOpaque(std::size_t end) const {
    const auto isCopied = [this](std::size_t i) {
        const Layer& layer = (*m_layers)[i];
        return m_shares[i].kind == Share::whole && hidesWhatLiesUnder(layer) && layer.paint->isOpaque();
    };
    bool isOpaque = coversTile(m_first) && isCopied(m_first);
    for (std::size_t i = m_first + 1; i < end; ++i)
        isOpaque = isOpaque && (m_shares[i].kind == Share::none || isCopied(i) ||
                                (*m_layers)[i].blend == Layer::Blend::overlay);
    return isOpaque;
}

void TileMixer::draw(MutablePixelView out, Storing storing) {
    if (m_first == m_layers->size()) {
        for (int y = 0; y < out.height; ++y)
            std::memset(out.row(y), 0, std::size_t(out.width) * sizeof(std::uint32_t));
        return;
    }
    if (isSole() && (*m_layers)[m_first].paint->draw(m_tile, out, storing))
        return;
    const std::size_t top = overlayOnTop();
    mixLayers(top);
    if (top < m_layers->size()) {
        const MixRows under{m_mixed.data(), m_tile.width, isSurelyOpaque(top)};
        if ((*m_layers)[top].paint->drawOverlaid(m_tile, under, out, storing))
            return;
        blendLayer(top);
    }
    const auto pack = storing == Storing::streamed ? streamPixels : packPixels;
    for (int y = 0; y < m_tile.height; ++y)
        pack(m_mixed.data() + std::ptrdiff_t(y) * m_tile.width, std::size_t(m_tile.width), out.row(y));
}

} // namespace framora::raster

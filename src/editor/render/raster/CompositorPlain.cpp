#include "editor/render/raster/Compositor.h"

#include "editor/render/raster/Coverage.h"
#include "editor/render/raster/ParallelFor.h"
#include "editor/render/raster/PixelEffects.h"
#include "editor/render/raster/SharedEdge.h"

#include <algorithm>

namespace framora::raster::plain {
namespace {

constexpr int rowsPerBand = 8;
// Pixels of a row that are mixed together: small enough to stay in the nearest cache.
constexpr int chunkWidth = 256;

struct LayerCoverage {
    Coverage shape;
    Coverage hole;
    bool hasHole = false;
};

/// What one thread needs while it draws a row.
struct Scratch {
    std::vector<std::vector<float>> coverage; ///< One row for each layer.
    std::vector<Coverage::Run> runs;
    std::vector<float> hole;
    std::vector<double> sums;
    std::vector<Float4> mixed = std::vector<Float4>(chunkWidth);
    std::vector<Float4> shaded = std::vector<Float4>(chunkWidth);
};

void coverRow(const LayerCoverage& layer, int y, int width, std::vector<float>& out, Coverage::Run& run,
              Scratch& scratch) {
    run = layer.shape.row(y, 0, width, out.data(), scratch.sums);
    if (!layer.hasHole || run.isEmpty())
        return;
    const Coverage::Run hole = layer.hole.row(y, 0, width, scratch.hole.data(), scratch.sums);
    for (int x = std::max(run.first, hole.first); x < std::min(run.end, hole.end); ++x)
        out[std::size_t(x)] = std::max(0.0f, out[std::size_t(x)] - scratch.hole[std::size_t(x)]);
    if (!hole.isEmpty())
        run.fullFirst = run.fullEnd = run.end;
}

void shade(const Layer& layer, int x, int y, int count, Float4* out) {
    layer.paint->shade(x, y, count, out);
    if (layer.adjustment)
        adjustColors(out, count, layer.adjustment->saturation, layer.adjustment->brightness);
    if (layer.noise)
        addNoise(out, count, x - layer.noise->originX, y - layer.noise->originY, layer.noise->intensity);
}

void drawChunk(const std::vector<Layer>& layers, int x, int y, int count, std::uint32_t* out,
               Scratch& scratch) {
    // What lies under an opaque layer that fills the chunk is not seen.
    std::size_t first = 0;
    for (std::size_t i = layers.size(); i-- > 0;)
        if (scratch.runs[i].fullFirst <= x && scratch.runs[i].fullEnd >= x + count &&
            hidesWhatLiesUnder(layers[i])) {
            first = i;
            break;
        }
    Float4* mixed = scratch.mixed.data();
    std::fill_n(mixed, count, splat(0));
    for (std::size_t i = first; i < layers.size(); ++i) {
        const Coverage::Run run = scratch.runs[i];
        const int from = std::max(run.first, x);
        const int to = std::min(run.end, x + count);
        if (from >= to)
            continue;
        Float4* shaded = scratch.shaded.data();
        shade(layers[i], from, y, to - from, shaded);
        const float* coverage = scratch.coverage[i].data();
        for (int column = from; column < to; ++column) {
            const float part = coverage[column] * layers[i].opacity;
            const Float4 source = shaded[column - from] * splat(part);
            Float4& under = mixed[column - x];
            if (layers[i].sharesEdge && coverage[column] > 0 && coverage[column] < 1) {
                under = mixedInside(under, shaded[column - from] * splat(layers[i].opacity), coverage[column],
                                    layers[i].blend == Layer::Blend::overlay);
                continue;
            }
            switch (layers[i].blend) {
            case Layer::Blend::normal:
                under = source + under * splat(1 - source[3]);
                break;
            case Layer::Blend::overlay:
                under = overlaid(under, source);
                break;
            case Layer::Blend::replace:
                under = source + under * splat(1 - part);
                break;
            }
        }
    }
    for (int i = 0; i < count; ++i)
        out[i] = pack(mixed[i]);
}

} // namespace

void compose(MutablePixelView output, const std::vector<Layer>& layers) {
    if (output.isEmpty())
        return;
    std::vector<LayerCoverage> coverage;
    coverage.reserve(layers.size());
    for (const Layer& layer : layers)
        coverage.push_back({Coverage(layer.shape.outline(layer.placement)),
                            layer.hole ? Coverage(layer.hole->outline(layer.placement)) : Coverage(),
                            layer.hole.has_value()});
    parallelFor((output.height + rowsPerBand - 1) / rowsPerBand, [&](int band) {
        thread_local Scratch scratch;
        scratch.runs.resize(layers.size());
        scratch.coverage.resize(std::max(scratch.coverage.size(), layers.size()));
        for (std::vector<float>& row : scratch.coverage)
            if (row.size() < std::size_t(output.width))
                row.resize(std::size_t(output.width));
        if (scratch.hole.size() < std::size_t(output.width))
            scratch.hole.resize(std::size_t(output.width));
        const int end = std::min(output.height, (band + 1) * rowsPerBand);
        for (int y = band * rowsPerBand; y < end; ++y) {
            for (std::size_t i = 0; i < layers.size(); ++i)
                coverRow(coverage[i], y, output.width, scratch.coverage[i], scratch.runs[i], scratch);
            for (int x = 0; x < output.width; x += chunkWidth)
                drawChunk(layers, x, y, std::min(chunkWidth, output.width - x), output.row(y) + x, scratch);
        }
    });
}

} // namespace framora::raster::plain

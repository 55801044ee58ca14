#include "editor/render/BackgroundBlur.h"

#include "editor/render/raster/BlurredPaint.h"

#include <algorithm>
#include <cmath>

namespace framora {

using raster::BlurAxis;
using raster::BlurGrid;

namespace {

double fineDeviation(double deviation) {
    constexpr double largest = 32;
    return std::min(deviation, largest);
}

double cellCount(const BackgroundBlur::Canvas& canvas, double deviation) {
    const double cell = deviation / 4; // the least
    return (canvas.width / cell + 5) * (canvas.height / cell + 5);
}

} // namespace

raster::FineBlurredPaint::Canvas BackgroundBlur::Canvas::pixels() const {
    // Far outside, all is edge.
    constexpr double far = 1 << 29;
    const auto first = [=](double start) { return int(std::ceil(std::clamp(start, -far, far) - 0.5)); };
    const auto end = [=](double start, double size) {
        return std::max(first(start) + 1, int(std::ceil(std::clamp(start + size, -far, far) - 0.5)));
    };
    return {first(left), first(top), end(left, width), end(top, height)};
}

BackgroundBlur::Identity BackgroundBlur::Identity::ofColors(const ScreenshotStyleConfig& config) {
    Identity identity;
    ScreenshotStyleConfig& style = identity.style;
    style.backgroundType = config.backgroundType;
    style.gradientConfig = config.gradientConfig;
    style.gradientConfig.blurAmount = 0;
    style.gradientConfig.noiseAmount = 0;
    style.customColor = config.customColor;
    style.selectedSolidColor = config.selectedSolidColor;
    style.selectedGradient = config.selectedGradient;
    style.selectedMagicPreset = config.selectedMagicPreset;
    style.selectedGradientPreset = config.selectedGradientPreset;
    return identity;
}

double BackgroundBlur::deviation(double radius, double pixelsPerPoint) {
    constexpr double largestRadius = 1000;
    constexpr double largest = 20000; // pixels
    if (!std::isfinite(radius))
        return 0;
    const double pixels = std::min(std::min(radius, largestRadius) * pixelsPerPoint, largest);
    return pixels >= raster::FineBlurredPaint::leastDeviation ? pixels : 0;
}

bool BackgroundBlur::isWide(const Canvas& canvas, double deviation) {
    // Of a canvas far larger than the output most cells would never be seen.
    constexpr double mostCells = 1e8;
    constexpr double longest = 1e6; // pixels
    return deviation >= BlurAxis::leastDeviation && canvas.width < longest && canvas.height < longest &&
           cellCount(canvas, deviation) < mostCells;
}

std::shared_ptr<const raster::Paint> BackgroundBlur::wide(const Identity& identity, const Reduce& reduce,
                                                          const Canvas& canvas, double deviation,
                                                          bool isOpaque) {
    constexpr std::size_t mostKeptCells = 1 << 20;
    const BlurAxis columns(canvas.width, deviation);
    const BlurAxis rows(canvas.height, deviation);
    if (!m_kept || m_kept->identity != identity || m_kept->columns != columns || m_kept->rows != rows) {
        m_kept.reset();
        m_kept.emplace(Kept{identity, columns, rows, {}, 0, nullptr, {}, false, nullptr});
    }
    if (!m_kept->blurred || m_kept->deviation != deviation) {
        m_kept->blurred = nullptr;
        m_kept->paint = nullptr;
        BlurGrid grid = m_kept->reduced.isEmpty() ? reduce(columns, rows) : m_kept->reduced.copy();
        if (grid.isEmpty())
            return nullptr;
        if (m_kept->reduced.isEmpty() &&
            std::size_t(grid.width()) * std::size_t(grid.height()) <= mostKeptCells)
            m_kept->reduced = grid.copy();
        grid.blur(columns, rows, deviation);
        m_kept->blurred = std::make_shared<const BlurGrid>(std::move(grid));
        m_kept->deviation = deviation;
    }
    if (!m_kept->paint || m_kept->canvas != canvas || m_kept->isOpaque != isOpaque) {
        m_kept->paint =
            std::make_shared<raster::BlurredPaint>(m_kept->blurred, columns, rows, canvas.left, canvas.top,
                                                   canvas.outputWidth, canvas.outputHeight, isOpaque);
        m_kept->canvas = canvas;
        m_kept->isOpaque = isOpaque;
    }
    return m_kept->paint;
}

int BackgroundBlur::fineMargin(double deviation) {
    return raster::gaussianRadius(fineDeviation(deviation));
}

std::shared_ptr<const raster::Paint> BackgroundBlur::fine(const Identity& identity, const Make& make,
                                                          int margin, const Canvas& canvas,
                                                          double deviation) {
    return m_fine.get({identity, canvas, deviation}, [&] {
        if (identity != m_fineIdentity) {
            m_fineIdentity = identity;
            m_fineShades = {};
        }
        // No map, but what tells one place of the canvas and one blur from another as well as a map does.
        const raster::ShadeCache::Key key{
            raster::Homography({canvas.left, canvas.top, canvas.width, canvas.height, deviation, 0, 0, 0, 1}),
            0, 0, canvas.outputWidth, canvas.outputHeight};
        raster::ShadeCache* cache = m_fineShades.begin(key) ? &m_fineShades : nullptr;
        return std::make_shared<raster::FineBlurredPaint>(make(), margin, fineDeviation(deviation),
                                                          canvas.pixels(), cache);
    });
}

void BackgroundBlur::clearFine() {
    m_fine = KeptPaint<FineKey>{2};
    m_fineShades = {};
}

} // namespace framora

#include "editor/render/raster/ScenePaint.h"

#include "editor/render/raster/Dither.h"
#include "editor/render/raster/MixKernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace framora::raster {
namespace {

constexpr double pitch = 40;
// Along x; a stripe is 20 points across.
constexpr double halfWidth = 20 * std::numbers::sqrt2 / 2;

// So many steps from one corner of the canvas to the other are too fine to be seen.
constexpr int leastSteps = 4096;
constexpr int mostSteps = 1 << 16;

/// The part of a pixel about the origin where x - y is below `limit`, in pixels.
double areaBelow(double limit) {
    const double d = std::clamp(limit, -1.0, 1.0);
    return d < 0 ? (1 + d) * (1 + d) / 2 : 1 - (1 - d) * (1 - d) / 2;
}

std::int16_t toShare(double value) {
    return std::int16_t(std::lround(value * coverageOne));
}

} // namespace

ScenePaint::ScenePaint(Look look, double width, double height, const Homography& toCanvas, int outputWidth,
                       int outputHeight)
    : m_opacity(std::clamp(look.opacity, 0.0, 1.0)), m_white(toShare(m_opacity)), m_toCanvas(toCanvas),
      m_pixel(toCanvas(0, 0) / toCanvas(2, 2)),
      m_start((toCanvas(0, 2) - toCanvas(1, 2)) / toCanvas(2, 2) + (width - height) / 2 + height),
      m_firstDiagonal(1 - outputHeight), m_shift(height / width) {
    m_stripes.reserve(std::size_t(outputWidth) + std::size_t(outputHeight) + SceneRow::stripesSlack);
    for (int diagonal = m_firstDiagonal; diagonal < outputWidth; ++diagonal)
        m_stripes.push_back(std::int16_t(std::lround(coverage(diagonal) * SceneRow::covered)));
    m_stripes.resize(m_stripes.size() + SceneRow::stripesSlack);
    makeAlike();
    makeDither(look.tint);
    if (look.tint.empty())
        return;
    const double degrees = std::atan2(width, -height) * 180 / std::numbers::pi;
    m_gradient.emplace(GradientPaint::Kind::linear, degrees, width, height, std::move(look.tint), toCanvas);
    const double length = outputWidth + std::ceil((outputHeight - 1) * m_shift) + 1;
    if (!(length <= mostSteps))
        return;
    const int count = int(length);
    int phases = 1;
    while (phases * count < leastSteps)
        phases *= 2;
    m_tint.reserve(std::size_t(phases) * std::size_t(count));
    for (int phase = 0; phase < phases; ++phase)
        for (int x = 0; x < count; ++x)
            m_tint.push_back(tintAt(x + double(phase) / phases));
    for (int y = 0; y < outputHeight; ++y) {
        const int shift = int(y * m_shift * phases + 0.5);
        m_rowStarts.push_back(shift % phases * count + shift / phases);
    }
}

/// The row below has the diagonal before.
void ScenePaint::makeAlike() {
    constexpr auto strip = std::ptrdiff_t(SceneRow::strip);
    const std::ptrdiff_t count = std::ssize(m_stripes);
    m_alike.assign(m_stripes.size(), 0);
    std::ptrdiff_t run = 0; // so many diagonals up to here have the same
    for (std::ptrdiff_t i = 0, end = 0; i < count; ++i) {
        const std::int16_t here = m_stripes[std::size_t(i)];
        for (end = std::max(end, i); end < count && m_stripes[std::size_t(end)] == here;)
            ++end;
        const bool isAlike = end - i >= strip && (here == 0 || here == SceneRow::covered);
        const bool goesOn = run > 0 && m_stripes[std::size_t(i - 1)] == here;
        run = isAlike ? (goesOn ? run + 1 : 1) : 0;
        m_alike[std::size_t(i)] = std::uint8_t(std::min<std::ptrdiff_t>(run, 255));
    }
}

/// As if the tint were dithered before it fades. One colour needs no dither, and what shows through it all
/// would be dithered as well.
void ScenePaint::makeDither(const std::vector<Float4>& colors) {
    const auto isFaint = [](Float4 color) { return color[3] < 1.0f / 255; };
    const auto isOther = [&](Float4 color) {
        const Float4 difference = color - colors.front();
        return difference[0] != 0 || difference[1] != 0 || difference[2] != 0 || difference[3] != 0;
    };
    const bool isDithered = std::ranges::any_of(colors, isOther) && std::ranges::none_of(colors, isFaint);
    for (int y = 0; y < Dither::period; ++y)
        for (int x = 0; x < 2 * Dither::period; ++x) {
            MixPixel offset;
            for (int c = 0; c < 4; ++c)
                offset.channel[c] = std::int16_t(
                    isDithered ? std::lround(2 * m_opacity * Dither::row(x % Dither::period, y)->channel[c])
                               : 0);
            m_dither.push_back(offset);
        }
}

MixPixel ScenePaint::tintAt(double x) const {
    const Float4 color = m_gradient->color(m_gradient->position(m_toCanvas.map({x + 0.5, 0.5})));
    MixPixel tint;
    for (int c = 0; c < 4; ++c) {
        const double twice = c < 3 ? 2 * color[c] - color[3] : color[3];
        tint.channel[c] = toShare(std::clamp(twice * m_opacity, -1.0, 1.0));
    }
    return tint;
}

double ScenePaint::coverage(int diagonal) const {
    const double middle = m_start + diagonal * m_pixel;
    const double reach = halfWidth + m_pixel;
    double covered = 0;
    const double first = std::max(0.0, std::ceil((middle - reach) / pitch));
    const int stripes = int(std::floor((middle + reach) / pitch) - first) + 1;
    for (int i = 0; i < stripes; ++i) {
        const double distance = (first + i) * pitch - middle;
        covered += areaBelow((distance + halfWidth) / m_pixel) - areaBelow((distance - halfWidth) / m_pixel);
    }
    return covered;
}

void ScenePaint::shade(int x, int y, int count, Float4* out) const {
    if (m_gradient)
        m_gradient->shade(x, y, count, out);
    else
        std::fill_n(out, count, splat(0));
    for (int i = 0; i < count; ++i) {
        const auto white = float(coverage(x + i - y));
        out[i] = (splat(white) + out[i] * splat(1 - white)) * splat(float(m_opacity));
    }
}

const std::vector<SceneRow>& ScenePaint::rowsOf(const TileRect& tile) const {
    thread_local std::vector<SceneRow> rows;
    thread_local std::vector<MixPixel> told;
    rows.resize(std::size_t(tile.height));
    if (m_tint.empty())
        told.assign(m_gradient ? tile.area() : std::size_t(tile.width), MixPixel{});
    for (int y = tile.y; y < tile.y + tile.height; ++y) {
        const MixPixel* tint = told.data();
        if (!m_tint.empty()) {
            tint = m_tint.data() + m_rowStarts[std::size_t(y)] + tile.x;
        } else if (m_gradient) {
            MixPixel* row = told.data() + std::ptrdiff_t(y - tile.y) * tile.width;
            for (int x = 0; x < tile.width; ++x)
                row[x] = tintAt(tile.x + x + y * m_shift);
            tint = row;
        }
        const int diagonal = tile.x - y - m_firstDiagonal;
        const MixPixel* dither =
            m_dither.data() + y % Dither::period * 2 * Dither::period + tile.x % Dither::period;
        rows[std::size_t(y - tile.y)] = {tint, m_stripes.data() + diagonal, dither,
                                         m_alike.data() + diagonal};
    }
    return rows;
}

void ScenePaint::mix(const TileRect& tile, MixPixel* out) const {
    for (const SceneRow& row : rowsOf(tile)) {
        paintScene(row, m_white, std::size_t(tile.width), out);
        out += tile.width;
    }
}

bool ScenePaint::overlay(const TileRect& tile, MixPixel* under, std::ptrdiff_t stride) const {
    overlayScene(rowsOf(tile).data(), tile.height, m_white, std::size_t(tile.width), under, stride);
    return true;
}

bool ScenePaint::drawOverlaid(const TileRect& tile, const MixRows& under, MutablePixelView out,
                              Storing storing) const {
    // What goes past the caches goes out in whole lines of them.
    constexpr std::size_t line = 64;
    if (storing == Storing::streamed &&
        (reinterpret_cast<std::uintptr_t>(out.data) % line != 0 || std::size_t(out.stride) % line != 0))
        return false;
    drawScene(rowsOf(tile).data(), m_white, under, out, storing);
    return true;
}

} // namespace framora::raster

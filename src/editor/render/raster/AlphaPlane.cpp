#include "editor/render/raster/AlphaPlane.h"

#include "editor/render/raster/BlurKernels.h"
#include "editor/render/raster/ParallelFor.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

constexpr int together = sizeof(MixPixel) / sizeof(std::int16_t);
constexpr double mostDeviation = 16;

std::size_t roundedUp(std::size_t count) {
    return (count + together - 1) / together * together;
}

/// What sums pixels sums alphas as well: it does the same to each channel.
const MixPixel* asPixels(const std::int16_t* alphas) {
    return reinterpret_cast<const MixPixel*>(alphas);
}
MixPixel* asPixels(std::int16_t* alphas) {
    return reinterpret_cast<MixPixel*>(alphas);
}

/// A Gaussian whose middle lies `shift` before that of the taps, so that it moves what it sums.
BlurTaps shiftedTaps(double deviation, double shift, int radius) {
    std::vector<double> weights;
    double sum = 0;
    for (int i = -radius; i <= radius; ++i) {
        const double distance = (i + shift) / deviation;
        weights.push_back(std::exp(-0.5 * distance * distance));
        sum += weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return BlurTaps({0}, {weights}, BlurTaps::mixShift);
}

} // namespace

AlphaPlane::AlphaPlane(int width, int height)
    : m_width(width), m_height(height), m_stride(roundedUp(std::size_t(width))),
      m_alphas(m_stride * std::size_t(height)) {}

AlphaPlane AlphaPlane::blurred(double deviation, Vec2 shift) const {
    int cell = 1;
    while (deviation / cell > mostDeviation)
        cell *= 2;
    if (cell == 1)
        return weighed(deviation, shift);
    // A mean over a cell and a straight line between two of them blur as well.
    const double cells = deviation / cell;
    const double remaining = std::sqrt(cells * cells - (1 - 1.0 / (cell * cell)) / 12 - 1.0 / 6);
    return reduced(cell)
        .weighed(remaining, {shift.x / cell, shift.y / cell})
        .expanded(cell, m_width, m_height);
}

AlphaPlane AlphaPlane::weighed(double deviation, Vec2 shift) const {
    constexpr double least = 0.45; // a narrower Gaussian between two pixels would be all on one of them
    const double told = std::max(deviation, least);
    const int radius = gaussianRadius(told) + int(std::ceil(std::max(std::abs(shift.x), std::abs(shift.y))));
    const BlurTaps columns = shiftedTaps(told, shift.x, radius);
    const BlurTaps rows = shiftedTaps(told, shift.y, radius);
    const BlurTaps::Taps across = columns.taps(0);
    const BlurTaps::Taps down = rows.taps(0);
    AlphaPlane result(m_width, m_height);
    const std::vector<std::int16_t> nothing(m_stride);
    parallelFor(m_height, [&](int y) {
        thread_local std::vector<std::int16_t> padded; // a row with what lies beside it
        thread_local std::vector<const MixPixel*> sources;
        // There is an even number of taps; the last one may weigh nothing.
        padded.assign(m_stride + std::size_t(2 * radius) + 1, 0);
        sources.clear();
        for (int tap = 0; tap < down.count; ++tap) {
            const int from = y + tap - radius;
            sources.push_back(asPixels(from >= 0 && from < m_height ? row(from) : nothing.data()));
        }
        sumRows(sources.data(), down.weights, down.count, rows.shift(), m_stride / together,
                asPixels(padded.data() + radius));
        sources.clear();
        for (int tap = 0; tap < across.count; ++tap)
            sources.push_back(asPixels(padded.data() + tap));
        sumRows(sources.data(), across.weights, across.count, columns.shift(), m_stride / together,
                asPixels(result.row(y)));
    });
    return result;
}

AlphaPlane AlphaPlane::reduced(int cell) const {
    AlphaPlane cells((m_width + cell - 1) / cell, (m_height + cell - 1) / cell);
    parallelFor(cells.m_height, [&](int y) {
        thread_local std::vector<std::int64_t> sums;
        sums.assign(std::size_t(cells.m_width), 0);
        for (int j = y * cell; j < std::min(m_height, (y + 1) * cell); ++j)
            for (int x = 0; x < m_width; ++x)
                sums[std::size_t(x / cell)] += row(j)[x];
        const std::int64_t area = std::int64_t(cell) * cell;
        std::ranges::transform(sums, cells.row(y),
                               [=](std::int64_t sum) { return std::int16_t((sum + area / 2) / area); });
    });
    return cells;
}

AlphaPlane AlphaPlane::expanded(int cell, int width, int height) const {
    AlphaPlane result(width, height);
    const auto cellAt = [this](int x, int y) {
        return float(row(std::clamp(y, 0, m_height - 1))[std::clamp(x, 0, m_width - 1)]);
    };
    // Before which cell a pixel lies, and how far behind the one before.
    const auto place = [=](int pixel) {
        const float at = (float(pixel) + 0.5f) / float(cell) - 0.5f;
        const float first = std::floor(at);
        return std::pair(int(first), at - first);
    };
    parallelFor(height, [&](int y) {
        thread_local std::vector<float> lowered; // from one cell before the first to one behind the last
        const auto [above, part] = place(y);
        lowered.clear();
        for (int x = -1; x <= m_width; ++x)
            lowered.push_back(cellAt(x, above) + (cellAt(x, above + 1) - cellAt(x, above)) * part);
        for (int x = 0; x < width; ++x) {
            const auto [left, share] = place(x);
            const float* from = lowered.data() + left + 1;
            result.row(y)[x] = std::int16_t(from[0] + (from[1] - from[0]) * share + 0.5f);
        }
    });
    return result;
}

} // namespace framora::raster

#include "editor/render/raster/BlurAxis.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {
namespace {

double quadraticSpline(double x) {
    x = std::abs(x);
    if (x < 0.5)
        return 0.75 - x * x;
    return x < 1.5 ? 0.5 * (1.5 - x) * (1.5 - x) : 0;
}

/// The cubic spline's weights of the cells -1, 0, 1 and 2 at 0 <= x <= 1.
std::vector<double> cubicSpline(double x) {
    const double rest = 1 - x;
    return {rest * rest * rest / 6, (4 + x * x * (3 * x - 6)) / 6, (4 + rest * rest * (3 * rest - 6)) / 6,
            x * x * x / 6};
}

} // namespace

BlurAxis::BlurAxis(double length, double deviation) : m_length(length) {
    double cell = 1;
    while (4 * cell <= deviation && cell < 1 << 20)
        cell *= 2;
    m_samples = std::max(1, int(std::lround(length)));
    m_cells = std::max(1, int(std::ceil(length / cell)));
}

BlurTaps BlurAxis::reducing(const ResampleKernel* samplesOf, int largestShift) const {
    const double cell = double(m_samples) / m_cells; // in samples
    std::vector<int> firsts;
    std::vector<std::vector<double>> rows;
    std::vector<double> bump;
    for (int index = -padding; index < m_cells + padding; ++index) {
        const double centre = (index + 0.5) * cell - 0.5;
        const int from = int(std::ceil(centre - 1.5 * cell));
        const int to = std::max(from, int(std::floor(centre + 1.5 * cell)));
        const int firstSample = std::clamp(from, 0, m_samples - 1);
        const int lastSample = std::clamp(to, 0, m_samples - 1);
        bump.assign(std::size_t(lastSample - firstSample + 1), 0.0);
        double sum = 0;
        for (int sample = from; sample <= to; ++sample) {
            const double weight = quadraticSpline((sample - centre) / cell);
            bump[std::size_t(std::clamp(sample, firstSample, lastSample) - firstSample)] += weight;
            sum += weight;
        }
        for (double& weight : bump)
            weight /= sum;
        if (!samplesOf) {
            firsts.push_back(firstSample);
            rows.push_back(bump);
            continue;
        }
        int first = samplesOf->taps(firstSample).first;
        int end = first;
        for (int sample = firstSample; sample <= lastSample; ++sample) {
            const ResampleKernel::Taps taps = samplesOf->taps(sample);
            first = std::min(first, taps.first);
            end = std::max(end, taps.first + taps.count);
        }
        std::vector<double> row(std::size_t(end - first), 0.0);
        for (int sample = firstSample; sample <= lastSample; ++sample) {
            const ResampleKernel::Taps taps = samplesOf->taps(sample);
            for (int tap = 0; tap < taps.count; ++tap)
                row[std::size_t(taps.first - first + tap)] +=
                    bump[std::size_t(sample - firstSample)] * double(taps.weights[tap]);
        }
        firsts.push_back(first);
        rows.push_back(std::move(row));
    }
    return BlurTaps(firsts, rows, largestShift);
}

BlurTaps BlurAxis::blurring(double deviation) const {
    // The variance of a spline of order n is n / 12 cells.
    constexpr double splines = (3 + 4) / 12.0;
    const double variance = (deviation / cell()) * (deviation / cell()) - splines;
    return gaussianTaps(std::sqrt(std::max(variance, 0.01)), cells());
}

BlurTaps BlurAxis::restoring(double start, int count, int step) const {
    std::vector<int> firsts;
    std::vector<std::vector<double>> rows;
    for (int pixel = 0; pixel < count; ++pixel) {
        const double inside = std::clamp((pixel + 0.5) * step - start, 0.0, m_length);
        const double place = inside / m_length * m_cells - 0.5 + padding;
        const int whole = std::clamp(int(std::floor(place)), 1, cells() - 3);
        firsts.push_back(whole - 1);
        rows.push_back(cubicSpline(std::clamp(place - whole, 0.0, 1.0)));
    }
    return BlurTaps(firsts, rows, BlurTaps::mixShift);
}

} // namespace framora::raster

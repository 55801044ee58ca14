#include "editor/render/raster/ResampleKernel.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

namespace {

/// catmullRom(), without a call.
inline double curve(double x) {
    x = std::abs(x);
    if (x < 1)
        return (1.5 * x - 2.5) * x * x + 1;
    if (x < 2)
        return ((-0.5 * x + 2.5) * x - 4) * x + 2;
    return 0;
}

} // namespace

double stretchedWidth(double step) {
    return step <= 1 ? 1 : step * (1 + 0.15 * std::min(1.0, (step - 1) * 10));
}

double catmullRom(double x) {
    return curve(x);
}

ResampleKernel::ResampleKernel(double step, double origin, int sourceSize, int firstOutput, int endOutput)
    : m_firstOutput(firstOutput) {
    // A picture smaller than an output pixel is one mean; a wider kernel would only repeat its edges.
    const double width = std::min(stretchedWidth(step), double(sourceSize));
    std::vector<double> weights;
    const auto count = std::size_t(std::max(endOutput - firstOutput, 1));
    m_entries.reserve(count);
    m_weights.reserve(count * std::min(std::size_t(4 * width + 1), std::size_t(sourceSize)));
    for (int output = firstOutput; output < std::max(endOutput, firstOutput + 1); ++output) {
        const double centre = (output + 0.5) * step + origin - 0.5;
        // Far outside, all taps repeat the edge; staying near keeps the numbers whole.
        const double near =
            std::isfinite(centre) ? std::clamp(centre, -2 * width - 2, sourceSize + 2 * width + 2) : 0;
        const int from = int(std::ceil(near - 2 * width));
        const int to = int(std::floor(near + 2 * width));
        const int first = std::clamp(from, 0, sourceSize - 1);
        const int last = std::clamp(to, first, sourceSize - 1);
        weights.assign(std::size_t(last - first + 1), 0.0);
        double sum = 0;
        for (int source = from; source <= to; ++source) {
            const double weight = curve((source - near) / width);
            weights[std::size_t(std::clamp(source, first, last) - first)] += weight;
            sum += weight;
        }
        // What one to one leaves of the neighbours is rounding only; without them a copy is a copy.
        constexpr double negligible = 1e-7;
        std::size_t begin = 0;
        std::size_t end = weights.size();
        while (begin + 1 < end && std::abs(weights[begin]) < negligible * sum)
            ++begin;
        while (end > begin + 1 && std::abs(weights[end - 1]) < negligible * sum)
            --end;
        m_entries.push_back({first + int(begin), int(end - begin), m_weights.size()});
        for (std::size_t i = begin; i < end; ++i)
            m_weights.push_back(end - begin == 1 ? 1.0f : float(weights[i] / sum));
    }
}

ResampleKernel::Taps ResampleKernel::taps(int output) const {
    const int last = int(m_entries.size()) - 1;
    const Entry& entry = m_entries[std::size_t(std::clamp(output - m_firstOutput, 0, last))];
    return {entry.first, entry.count, m_weights.data() + entry.weights};
}

} // namespace framora::raster

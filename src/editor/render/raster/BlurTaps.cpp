#include "editor/render/raster/BlurTaps.h"

#include <algorithm>
#include <cmath>

namespace framora::raster {

BlurTaps::BlurTaps(const std::vector<int>& firsts, const std::vector<std::vector<double>>& rows,
                   int largestShift)
    : m_shift(largestShift) {
    double largest = 0;
    for (const std::vector<double>& row : rows)
        for (const double weight : row)
            largest = std::max(largest, std::abs(weight));
    while (largest * double(1 << m_shift) > 32766)
        --m_shift;
    for (std::size_t output = 0; output < rows.size(); ++output) {
        const std::vector<double>& row = rows[output];
        const int padded = int(row.size() + row.size() % 2);
        m_entries.push_back({firsts[output], padded, m_weights.size()});
        // The sums are rounded, not the weights: no error adds up over many taps.
        double sum = 0;
        int before = 0;
        for (std::size_t i = 0; i < row.size(); ++i) {
            sum += row[i];
            const int here = i + 1 < row.size() ? int(std::lround(sum * double(1 << m_shift))) : 1 << m_shift;
            m_weights.push_back(std::int16_t(here - before));
            before = here;
        }
        m_weights.resize(m_entries.back().weights + std::size_t(padded));
    }
}

int gaussianRadius(double deviation) {
    return std::max(1, int(std::ceil(4 * deviation)));
}

std::vector<double> gaussianHalf(double deviation, int radius) {
    std::vector<double> weights;
    double sum = 0;
    for (int i = 0; i <= radius; ++i) {
        weights.push_back(std::exp(-0.5 * (i / deviation) * (i / deviation)));
        sum += i == 0 ? weights.back() : 2 * weights.back();
    }
    for (double& weight : weights)
        weight /= sum;
    return weights;
}

BlurTaps gaussianTaps(double deviation, int size) {
    const int radius = gaussianRadius(deviation);
    const std::vector<double> half = gaussianHalf(deviation, radius);
    std::vector<int> firsts;
    std::vector<std::vector<double>> rows;
    for (int output = 0; output < size; ++output) {
        const int first = std::max(0, output - radius);
        const int last = std::min(size - 1, output + radius);
        std::vector<double> row(std::size_t(last - first + 1), 0.0);
        for (int i = -radius; i <= radius; ++i)
            row[std::size_t(std::clamp(output + i, first, last) - first)] += half[std::size_t(std::abs(i))];
        firsts.push_back(first);
        rows.push_back(std::move(row));
    }
    return BlurTaps(firsts, rows, BlurTaps::mixShift);
}

} // namespace framora::raster

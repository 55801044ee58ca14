#include "editor/render/raster/FixedTaps.h"

#include "editor/render/raster/ResampleKernels.h"

#include <algorithm>

namespace framora::raster {
namespace {

/// std::lround(), which is a call.
int rounded(double value) {
    return value < 0 ? -int(0.5 - value) : int(value + 0.5);
}

/// Rounds weights whose sum is 1 so that their sum is FixedTaps::one: a plain surface stays what it is.
void roundWeights(const ResampleKernel::Taps& taps, std::int16_t* out) {
    int sum = 0;
    int largest = 0;
    for (int i = 0; i < taps.count; ++i) {
        out[i] = std::int16_t(rounded(taps.weights[i] * float(FixedTaps::one)));
        sum += out[i];
        if (out[i] > out[largest])
            largest = i;
    }
    out[largest] = std::int16_t(out[largest] + FixedTaps::one - sum);
}

} // namespace

FixedTaps::FixedTaps(const ResampleKernel& kernel, int first, int end) : m_firstOutput(first) {
    const auto count = std::size_t(std::max(0, end - first));
    m_starts.resize(count);
    // An output that uses fewer sources may start behind its next one; starts that never decrease are had by
    // weights of zero in front.
    for (std::size_t i = count; i-- > 0;) {
        const ResampleKernel::Taps taps = kernel.taps(first + int(i));
        m_starts[i] = i + 1 < count ? std::min<std::int64_t>(taps.first, m_starts[i + 1]) : taps.first;
        m_taps = std::max(m_taps, taps.first + taps.count - start(int(i)));
    }
    m_weights.assign(count * std::size_t(m_taps), 0);
    for (std::size_t i = 0; i < count; ++i) {
        const ResampleKernel::Taps taps = kernel.taps(first + int(i));
        roundWeights(taps, m_weights.data() + i * std::size_t(m_taps) + (taps.first - m_starts[i]));
        if (i > 0 && m_starts[i] - m_starts[i - 1] > 1)
            m_isDense = false;
        m_reach = std::max(m_reach, int(m_starts[i] - m_starts[i - std::min<std::size_t>(i, 7)]));
    }
    m_isDense = m_isDense && m_taps <= mostDenseTaps;
    if (m_isDense && m_taps == 4)
        findRegular(2, 1, m_doubledFirst, m_doubledEnd);
    if (!m_isDense)
        findRegular(1, 2, m_halvedFirst, m_halvedEnd);
}

void FixedTaps::findRegular(int period, int distance, int& first, int& end) const {
    // From the middle to both sides; only the edges are different.
    const auto goesOn = [&](int index) {
        return start(index + period) == start(index) + distance &&
               std::equal(weights(index), weights(index) + m_taps, weights(index + period));
    };
    const int middle = count() / 2;
    first = end = middle;
    while (first > 0 && first - 1 + period < count() && goesOn(first - 1))
        --first;
    if (first == middle)
        return;
    end = middle - 1 + period;
    while (end < count() && goesOn(end - period))
        ++end;
}

FixedTaps::Span FixedTaps::span(int index, int count) const {
    return {start(index), start(index + count - 1) + m_taps};
}

void FixedTaps::spreadWeights() {
    const std::size_t count = m_starts.size();
    const auto taps = std::size_t(m_taps);
    const auto spreadOne = [](std::int16_t weight) { return MixPixel{{weight, weight, weight, weight}}; };
    m_isByTaps = m_isDense || m_reach <= mostSortableReach();
    if (m_isByTaps) {
        m_tapStride = count + 8; // a last vector may read beyond the last output
        m_spread.assign(m_tapStride * ((taps + together - 1) / together * together), MixPixel{});
        for (std::size_t i = 0; i < count; ++i)
            for (std::size_t tap = 0; tap < taps; ++tap)
                m_spread[tap * m_tapStride + i] = spreadOne(m_weights[i * taps + tap]);
        return;
    }
    const auto padded = std::size_t(paddedTaps());
    m_spread.assign(count * padded, MixPixel{});
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t tap = 0; tap < taps; ++tap)
            m_spread[i * padded + tap] = spreadOne(m_weights[i * taps + tap]);
}

} // namespace framora::raster

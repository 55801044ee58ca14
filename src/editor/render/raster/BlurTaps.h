#pragma once

#include "editor/render/raster/ResampleKernel.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace framora::raster {

/// For every output along one axis the sources that it is the weighted sum of. Weights are 16 bit numbers in
/// 2^-shift(); those of an output sum up to exactly 1, so that a plain surface stays what it is.
class BlurTaps {
public:
    /// With MixPixels as sources a sum stays within 32 bits.
    static constexpr int mixShift = 15;
    /// The same for sources of 0...255.
    static constexpr int byteShift = 22;

    struct Taps {
        int first;
        int count; ///< Even. The last source may lie one behind the axis; its weight is 0.
        const std::int16_t* weights;
    };

    BlurTaps() = default;
    /// The weights `rows[o]` of the sources from `firsts[o]` on, whose sum is 1 for every output.
    BlurTaps(const std::vector<int>& firsts, const std::vector<std::vector<double>>& rows, int largestShift);

    int count() const { return int(m_entries.size()); }
    int shift() const { return m_shift; }
    Taps taps(int output) const {
        const Entry& entry = m_entries[std::size_t(output)];
        return {entry.first, entry.count, m_weights.data() + entry.weights};
    }

private:
    struct Entry {
        int first;
        int count;
        std::size_t weights;
    };
    int m_shift = 0;
    std::vector<Entry> m_entries;
    std::vector<std::int16_t> m_weights;
};

/// A Gaussian of the given deviation over `size` sources, beyond whose ends the outermost repeat.
BlurTaps gaussianTaps(double deviation, int size);

/// The weights of a Gaussian from its middle to `radius`, which it may be cut at; the whole sums up to 1.
std::vector<double> gaussianHalf(double deviation, int radius);
/// Where a Gaussian may be cut: what lies beyond is a 16000th.
int gaussianRadius(double deviation);

} // namespace framora::raster
